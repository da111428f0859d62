#include "shared/files/FileVersion.h"

#include <sys/stat.h>

namespace zarn {

namespace {

std::optional<FileVersion> versionIn(const struct stat& status) {
    constexpr std::int64_t NANOSECONDS = 1000000000;
    if (!S_ISREG(status.st_mode) && !S_ISLNK(status.st_mode)) return {};
    return FileVersion{status.st_ino, status.st_size,
                       status.st_mtim.tv_sec * NANOSECONDS + status.st_mtim.tv_nsec};
}

}  // namespace

std::optional<FileVersion> versionOf(const std::string& name) {
    struct stat status = {};
    if (::stat(name.c_str(), &status) != 0 && ::lstat(name.c_str(), &status) != 0) return {};
    return versionIn(status);
}

std::optional<FileVersion> versionOf(int fd) {
    struct stat status = {};
    if (::fstat(fd, &status) != 0) return {};
    return versionIn(status);
}

}  // namespace zarn
