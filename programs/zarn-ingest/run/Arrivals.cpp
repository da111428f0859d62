#include "zarn-ingest/run/Arrivals.h"

#include <zarnsys/util/FileIO.h>

#include <cerrno>
#include <utility>

#include "shared/cli/UsageError.h"
#include "shared/files/Pattern.h"
#include "shared/files/SystemError.h"
#include "zarn-ingest/header/IngestError.h"

namespace zarn::ingest {

Arrivals::Arrivals(const std::string& pattern, std::chrono::seconds settle)
    : pattern_(pattern), directory_(FileIO(pattern, true, false).getPath()), settle_(settle) {
    if (directory_.find_first_of("*?[\\") != std::string::npos)
        throw UsageError("pattern " + pattern + ": only its last component may hold wildcards");
}

std::vector<std::string> Arrivals::settled() {
    const auto [names, unlisted] = matchesOf(pattern_);
    for (const auto& [directory, error] : unlisted)
        throw WorkStops("the directory " + directory + " cannot be listed: " + error.message());
    const Clock::time_point now = Clock::now();
    std::map<std::string, Seen> seen;
    std::vector<std::string> settled;
    unseen_.clear();
    for (const std::string& name : names) {
        errno = 0;
        const std::optional<FileVersion> version = versionOf(name);
        if (!version && errno != 0 && errno != ENOENT)
            unseen_.push_back(name + " cannot be looked at: " + systemReason(errno));
        if (!version) continue;
        const auto before = seen_.find(name);
        const bool isSame = before != seen_.end() && before->second.version == *version;
        const Clock::time_point since = isSame ? before->second.since : now;
        seen.emplace(name, Seen{*version, since});
        if (now - since >= settle_) settled.push_back(name);
    }
    seen_ = std::move(seen);
    unsettled_ = seen_.size() - settled.size();
    return settled;
}

bool Arrivals::isUnchanged(const std::string& name) const {
    const auto before = seen_.find(name);
    return before != seen_.end() && versionOf(name) == before->second.version;
}

std::vector<std::string> Arrivals::present() const {
    std::vector<std::string> names;
    for (const auto& [name, seen] : seen_) names.push_back(name);
    return names;
}

}  // namespace zarn::ingest
