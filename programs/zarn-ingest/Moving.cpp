#include "Moving.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <stdexcept>
#include <system_error>

namespace {

const char NUMBER_BEGIN[] = ".~";
const char NUMBER_END = '~';

[[noreturn]] void fail(const std::string& what) {
    throw std::system_error(errno, std::generic_category(), what);
}

[[noreturn]] void failMove(const std::string& file, const std::string& directory) {
    fail("cannot move " + file + " to " + directory);
}

std::string::size_type afterSlash(const std::string& path) { return path.rfind('/') + 1; }

bool sameFile(int left, int right) {
    struct stat a = {};
    struct stat b = {};
    return ::fstat(left, &a) == 0 && ::fstat(right, &b) == 0 && a.st_dev == b.st_dev &&
           a.st_ino == b.st_ino;
}

}  // namespace

bool renameToNew(const std::string& from, const std::string& to) {
    if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0)
        return true;
    if (errno != EINVAL && errno != ENOSYS) return false;
    // A file system without this kind of renaming has links: a link replaces nothing either.
    return ::link(from.c_str(), to.c_str()) == 0 && ::unlink(from.c_str()) == 0;
}

void syncToDisk(const std::string& path) {
    const Descriptor file(openForReading(path));
    if (::fsync(file.get()) != 0) fail(path + " cannot be made safe on disk");
}

std::string moveInto(const std::string& file, const std::string& directory) {
    const std::string name = file.substr(afterSlash(file));
    const std::string folder = directory + "/";
    std::string target = folder + name;
    for (unsigned number = 1; !renameToNew(file, target); ++number) {
        if (errno != EEXIST) failMove(file, directory);
        const std::string suffix = NUMBER_BEGIN + std::to_string(number) + NUMBER_END;
        target = folder;
        target.append(name, 0, NAME_MAX - suffix.size()).append(suffix);
    }
    syncToDisk(directory);
    const std::string::size_type slash = file.rfind('/');
    syncToDisk(slash == std::string::npos ? "." : file.substr(0, slash + 1));
    return target;
}

std::string withoutNumber(const std::string& name) {
    const std::string::size_type begin = name.rfind(NUMBER_BEGIN);
    if (begin == std::string::npos || name.back() != NUMBER_END) return name;
    const std::string::size_type digits = begin + 2;
    const bool numbered = name.find_first_not_of("0123456789", digits) == name.size() - 1;
    return numbered && digits < name.size() - 1 ? name.substr(0, begin) : name;
}

DirectoryLocks::DirectoryLocks(const std::vector<std::string>& directories) {
    for (const std::string& directory : directories) add(directory);
}

void DirectoryLocks::add(const std::string& directory) {
    locked_.emplace_back(::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    const int fd = locked_.back().get();
    if (fd == -1) fail("directory " + directory);
    const bool again = std::any_of(locked_.begin(), std::prev(locked_.end()),
                                   [fd](const auto& held) { return sameFile(held.get(), fd); });
    if (again)
        throw std::runtime_error("the directory " + directory + " cannot serve two purposes");
    if (::flock(fd, LOCK_EX | LOCK_NB) == 0) return;
    if (errno == EWOULDBLOCK)
        throw std::runtime_error("another zarn-ingest works in the directory " + directory);
    fail("directory " + directory + " cannot be locked");
}
