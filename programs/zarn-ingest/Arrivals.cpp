#include "Arrivals.h"

#include <sys/stat.h>
#include <zarnsys/util/FileIO.h>

#include <cerrno>
#include <system_error>
#include <utility>

#include "IngestError.h"
#include "Pattern.h"
#include "UsageError.h"

namespace {

constexpr std::int64_t NANOSECONDS = 1000000000;

std::string reasonFor(int error) { return std::generic_category().message(error); }

}  // namespace

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
        Seen file = {};
        errno = 0;
        if (!look(name, file)) {
            if (errno != 0 && errno != ENOENT)
                unseen_.push_back(name + " cannot be looked at: " + reasonFor(errno));
            continue;
        }
        file.since = now;
        const auto before = seen_.find(name);
        if (before != seen_.end() && isSame(before->second, file))
            file.since = before->second.since;
        seen.emplace(name, file);
        if (now - file.since >= settle_) settled.push_back(name);
    }
    seen_ = std::move(seen);
    unsettled_ = seen_.size() - settled.size();
    return settled;
}

bool Arrivals::isUnchanged(const std::string& name) const {
    Seen now = {};
    const auto before = seen_.find(name);
    return before != seen_.end() && look(name, now) && isSame(before->second, now);
}

std::vector<std::string> Arrivals::present() const {
    std::vector<std::string> names;
    for (const auto& [name, seen] : seen_) names.push_back(name);
    return names;
}

/// Looks at a file, through a link unless that dangles; false for what is no file.
bool Arrivals::look(const std::string& name, Seen& seen) {
    struct stat status = {};
    if (::stat(name.c_str(), &status) != 0 && ::lstat(name.c_str(), &status) != 0) return false;
    if (!S_ISREG(status.st_mode) && !S_ISLNK(status.st_mode)) return false;
    seen.inode = status.st_ino;
    seen.size = status.st_size;
    seen.modified = status.st_mtim.tv_sec * NANOSECONDS + status.st_mtim.tv_nsec;
    return true;
}

bool Arrivals::isSame(const Seen& left, const Seen& right) {
    return left.inode == right.inode && left.size == right.size && left.modified == right.modified;
}
