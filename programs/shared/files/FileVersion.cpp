#include "shared/files/FileVersion.h"

#include <sys/stat.h>

namespace zarn {

std::optional<FileVersion> versionOf(const std::string& name) {
    constexpr std::int64_t NANOSECONDS = 1000000000;
    struct stat status = {};
    if (::stat(name.c_str(), &status) != 0 && ::lstat(name.c_str(), &status) != 0) return {};
    if (!S_ISREG(status.st_mode) && !S_ISLNK(status.st_mode)) return {};
    return FileVersion{status.st_ino, status.st_size,
                       status.st_mtim.tv_sec * NANOSECONDS + status.st_mtim.tv_nsec};
}

}  // namespace zarn
