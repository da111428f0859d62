#include "zarn-ingest/run/Moving.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <system_error>

#include "shared/cli/BeginsWith.h"
#include "shared/files/Durable.h"
#include "shared/files/Reading.h"
#include "shared/files/SystemError.h"

namespace zarn::ingest {

namespace {

const char NUMBER_BEGIN[] = ".~";
const char NUMBER_END = '~';
const char REASON_END[] = ".reason";

[[noreturn]] void throwCannotMove(const std::string& file, const std::string& directory) {
    throwSystemError("cannot move " + file + " to " + directory);
}

std::string baseName(const std::string& path) { return path.substr(path.rfind('/') + 1); }

/// A name with a number, cut where a file's name would be too long; 0: without number.
std::string numbered(const std::string& name, unsigned number) {
    if (number == 0) return name;
    const std::string suffix = NUMBER_BEGIN + std::to_string(number) + NUMBER_END;
    return name.substr(0, NAME_MAX - suffix.size()) + suffix;
}

/// Writes a reason, safe on disk, or completes one that a crash cut short. False if something else
/// has the name.
bool putReason(const std::string& fileName, const std::string& reason) {
    constexpr mode_t MODE = S_IRUSR | S_IWUSR | S_IRGRP | S_IROTH;
    constexpr int FLAGS = O_RDWR | O_CREAT | O_APPEND | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
    const Descriptor file(::open(fileName.c_str(), FLAGS, MODE));
    if (file.get() == -1 && (errno == EISDIR || errno == ELOOP || errno == ENXIO)) return false;
    struct stat status = {};
    if (file.get() == -1 || ::fstat(file.get(), &status) != 0)
        throwSystemError("cannot write " + fileName);
    if (!S_ISREG(status.st_mode) || status.st_size > static_cast<off_t>(reason.size()))
        return false;
    const std::string existing = readFile(fileName);
    if (!beginsWith(reason, existing)) return false;
    try {
        writeAll(file.get(), reason.substr(existing.size()));
    } catch (const std::system_error& error) {
        throw std::system_error(error.code(), "cannot write " + fileName);
    }
    if (::fsync(file.get()) != 0) throwSystemError(fileName + " cannot be made safe on disk");
    return true;
}

bool isTaken(const std::string& name) {
    struct stat status = {};
    return ::lstat(name.c_str(), &status) == 0;
}

}  // namespace

std::string moveInto(const std::string& file, const std::string& directory) {
    for (unsigned number = 0;; ++number) {
        std::string target = directory + "/" + numbered(baseName(file), number);
        if (renameToNew(file, target)) return target;
        if (errno != EEXIST) throwCannotMove(file, directory);
    }
}

std::string moveWithReason(const std::string& file, const std::string& directory,
                           const std::string& reason) {
    const std::string folder = directory + "/";
    for (unsigned number = 0;; ++number) {
        const std::string name = numbered(baseName(file), number);
        std::string target = folder + name;
        if (isTaken(target) || !putReason(folder + reasonName(name), reason)) continue;
        if (!renameToNew(file, target)) throwCannotMove(file, directory);
        return target;
    }
}

bool endMove(const std::string& file, const std::string& directory) {
    struct stat source = {};
    if (::lstat(file.c_str(), &source) != 0 || source.st_nlink == 1) return false;
    for (unsigned number = 0;; ++number) {
        const std::string name = directory + "/" + numbered(baseName(file), number);
        struct stat moved = {};
        if (::lstat(name.c_str(), &moved) != 0) return false;
        if (moved.st_ino != source.st_ino || moved.st_dev != source.st_dev) continue;
        if (::unlink(file.c_str()) != 0) throwCannotMove(file, directory);
        return true;
    }
}

void syncMoves(const std::string& from, const std::set<std::string>& to) {
    for (const std::string& directory : to) syncToDisk(directory);
    syncToDisk(from);
}

std::string reasonName(const std::string& name) {
    const std::size_t most = NAME_MAX - std::strlen(REASON_END);
    return name.substr(name.size() - std::min(name.size(), most)) + REASON_END;
}

bool isReason(const std::string& name) {
    const std::size_t length = std::strlen(REASON_END);
    return name.size() > length && name.compare(name.size() - length, length, REASON_END) == 0;
}

std::string withoutNumber(const std::string& name) {
    const std::string::size_type begin = name.rfind(NUMBER_BEGIN);
    if (begin == std::string::npos || name.back() != NUMBER_END) return name;
    const std::string::size_type digits = begin + 2;
    const bool numbered = name.find_first_not_of("0123456789", digits) == name.size() - 1;
    return numbered && digits < name.size() - 1 ? name.substr(0, begin) : name;
}

}  // namespace zarn::ingest
