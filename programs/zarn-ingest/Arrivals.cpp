#include "Arrivals.h"

#include <sys/stat.h>
#include <zarnsys/util/FileIO.h>

#include <algorithm>
#include <utility>

#include "Settings.h"

namespace {

constexpr int NO_LIMIT = 0;  // of matches
constexpr std::int64_t NANOSECONDS = 1000000000;

}  // namespace

Arrivals::Arrivals(const std::string& pattern, std::chrono::seconds settle)
    : pattern_(pattern), directory_(FileIO(pattern, true, false).getPath()), settle_(settle) {
    if (directory_.find_first_of("*?[\\") != std::string::npos)
        throw UsageError("pattern " + pattern + ": only its last component may hold wildcards");
}

std::vector<std::string> Arrivals::settled() {
    std::vector<std::string> names;
    FileIO(pattern_, true, false).match(names, NO_LIMIT);
    std::sort(names.begin(), names.end());
    const Clock::time_point now = Clock::now();
    std::map<std::string, Seen> seen;
    std::vector<std::string> settled;
    for (const std::string& name : names) {
        struct stat status = {};
        if (::lstat(name.c_str(), &status) != 0) continue;
        if (!S_ISREG(status.st_mode) && !S_ISLNK(status.st_mode)) continue;
        const std::int64_t modified = status.st_mtim.tv_sec * NANOSECONDS + status.st_mtim.tv_nsec;
        Seen file = {status.st_size, modified, now};
        const auto before = seen_.find(name);
        if (before != seen_.end() && before->second.size == file.size &&
            before->second.modified == file.modified)
            file.since = before->second.since;
        seen.emplace(name, file);
        if (now - file.since >= settle_) settled.push_back(name);
    }
    seen_ = std::move(seen);
    unsettled_ = seen_.size() - settled.size();
    return settled;
}
