#include "OutputDirectory.h"

#include <fcntl.h>
#include <unistd.h>
#include <zarnsys/util/FileIO.h>

#include <cerrno>
#include <cstdio>
#include <system_error>

namespace {

// Characters to which CFITSIO gives no meaning in the directory part of a name.
const char PLAIN_CHARACTERS[] =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789/._-";
constexpr std::size_t MAX_PLAIN_LENGTH = 900;  // CFITSIO holds names of 1024 characters

[[noreturn]] void fail(const std::string& what) {
    throw std::system_error(errno, std::generic_category(), what);
}

int openDirectory(const std::string& name, bool create) {
    if (create) FileIO(name, true, false).checkCreateDir(name);
    const int fd = ::open(name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd == -1) fail("output directory " + name);
    return fd;
}

/// Moves a file to a name that no file has; a failure leaves `errno`.
bool renameToNew(const std::string& from, const std::string& to) {
    if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0)
        return true;
    if (errno != EINVAL && errno != ENOSYS) return false;
    // A file system without this kind of renaming has links: a link replaces nothing either.
    return ::link(from.c_str(), to.c_str()) == 0 && ::unlink(from.c_str()) == 0;
}

}  // namespace

OutputDirectory::OutputDirectory(const std::string& name, bool create)
    : name_(name), directory_(openDirectory(name, create)) {
    if (::access(name.c_str(), W_OK | X_OK) != 0) fail("output directory " + name);
}

std::string OutputDirectory::path(const std::string& entry) const {
    return name_.back() == '/' ? name_ + entry : name_ + "/" + entry;
}

std::string OutputDirectory::fitsPath(const std::string& entry) const {
    const bool plain = name_.find_first_not_of(PLAIN_CHARACTERS) == std::string::npos;
    if (!plain || name_.size() > MAX_PLAIN_LENGTH)
        return "/proc/self/fd/" + std::to_string(directory_.get()) + "/" + entry;
    return name_.front() == '/' ? path(entry) : "./" + path(entry);
}

std::string OutputDirectory::newTemporary() {
    std::string entry;
    do {
        entry = ".zarn-ingest-" + std::to_string(::getpid()) + "-" +
                std::to_string(++temporaries_) + ".tmp";
    } while (FileIO(path(entry), true, false).exists());
    return entry;
}

TemporaryFile::TemporaryFile(OutputDirectory& directory)
    : directory_(directory), name_(directory.newTemporary()) {}

TemporaryFile::~TemporaryFile() {
    if (!name_.empty()) ::unlink(path().c_str());
}

void TemporaryFile::putInPlace(const std::string& result, bool overwrite) {
    const std::string to = directory_.path(result);
    const bool moved =
        overwrite ? ::rename(path().c_str(), to.c_str()) == 0 : renameToNew(path(), to);
    if (!moved) fail("the result cannot be renamed to " + to);
    name_.clear();
}
