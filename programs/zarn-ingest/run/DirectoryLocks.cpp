#include "zarn-ingest/run/DirectoryLocks.h"

#include <sys/file.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <stdexcept>
#include <thread>
#include <utility>

#include "shared/files/SystemError.h"
#include "zarn-ingest/header/IngestError.h"

namespace zarn::ingest {

namespace {

/// Takes a lock of this kind; false if another process holds one that excludes it.
bool tryLock(const Directory& directory, int kind) {
    if (::flock(directory.fd(), kind | LOCK_NB) == 0) return true;
    if (errno == EWOULDBLOCK) return false;
    throw WorkStops("directory " + directory.name() + " cannot be locked: " + systemReason(errno));
}

/// Locks a directory that this process may already have locked. `isLocked` in another process may
/// hold it for an instant.
void lock(const Directory& directory) {
    constexpr int TRIES = 10;
    constexpr std::chrono::milliseconds PAUSE{5};
    for (int i = 0; i < TRIES; ++i) {
        if (tryLock(directory, LOCK_EX)) return;
        std::this_thread::sleep_for(PAUSE);
    }
    throw WorkStops("another zarn-ingest is using the directory " + directory.name());
}

/// Whether two descriptors have the same file open.
bool sameFile(int left, int right) {
    struct stat a = {};
    struct stat b = {};
    return ::fstat(left, &a) == 0 && ::fstat(right, &b) == 0 && a.st_dev == b.st_dev &&
           a.st_ino == b.st_ino;
}

}  // namespace

bool isLocked(const std::string& directory) { return !tryLock(Directory(directory), LOCK_SH); }

DirectoryLocks::DirectoryLocks(const std::vector<std::string>& directories) {
    for (const std::string& directory : directories) add(directory);
}

void DirectoryLocks::add(const std::string& directory) {
    Directory opened(directory);
    const auto isSame = [&opened](const Directory& held) {
        return sameFile(held.fd(), opened.fd());
    };
    if (std::any_of(locked_.begin(), locked_.end(), isSame))
        throw std::runtime_error("the directory " + directory + " cannot serve two purposes");
    lock(opened);
    opened.syncName();
    locked_.push_back(std::move(opened));
}

std::vector<std::string> DirectoryLocks::renew() {
    std::vector<std::string> replaced;
    for (const Directory& held : locked_) {  // it may have another of the names now
        if (!held.isCurrent()) ::flock(held.fd(), LOCK_UN);
    }
    for (Directory& held : locked_) {
        if (held.isCurrent()) {
            lock(held);  // it is unlocked if its name led elsewhere for a while
            continue;
        }
        Directory successor(held.name());
        lock(successor);
        successor.syncName();
        held = std::move(successor);
        replaced.push_back(held.name());
    }
    return replaced;
}

}  // namespace zarn::ingest
