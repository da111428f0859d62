#include "zarn-ingest/result/Directory.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

#include "zarn-ingest/header/IngestError.h"

namespace zarn::ingest {

namespace {

[[noreturn]] void stopWork(const std::string& what) {
    throw WorkStops(what + ": " + std::generic_category().message(errno));
}

void syncEntries(const Descriptor& directory, const std::string& name) {
    if (::fsync(directory.get()) != 0)
        stopWork("the directory " + name + " cannot be made safe on disk");
}

}  // namespace

Directory::Directory(std::string name)
    : name_(std::move(name)), fd_(::open(name_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    struct stat status = {};
    if (fd_.get() == -1 || ::fstat(fd_.get(), &status) != 0) stopWork("directory " + name_);
    id_ = idIn(status);
}

std::string Directory::ownPath(const std::string& entry) const {
    return descriptorPath(fd_.get()) + "/" + entry;
}

bool Directory::isCurrent() const {
    struct stat named = {};
    return ::stat(name_.c_str(), &named) == 0 && idIn(named) == id_;
}

void Directory::checkCurrent() const {
    if (isCurrent()) return;
    static_cast<void>(Directory(name_));  // says what is the matter with the name, if anything
    throw WorkStops("the directory " + name_ + " was replaced by another one");
}

void Directory::sync() const { syncEntries(fd_, name_); }

void Directory::syncName() const {
    const Descriptor parent(::openat(fd_.get(), "..", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (parent.get() == -1 && errno == EACCES) return;
    if (parent.get() == -1) stopWork("the directory that holds " + name_);
    syncEntries(parent, name_);
}

}  // namespace zarn::ingest
