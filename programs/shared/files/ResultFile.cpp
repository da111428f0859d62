#include "shared/files/ResultFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "shared/cli/Printable.h"
#include "shared/files/Reading.h"
#include "shared/files/SystemError.h"

namespace zarn {

namespace {

[[noreturn]] void throwNaming(const std::string& fileName) {
    throwSystemError(printable(fileName));
}

/// Holds back signals that would end the process, until the object is destroyed.
class SignalHold {
public:
    SignalHold() {
        sigset_t signals;
        ::sigemptyset(&signals);
        for (const int signal : {SIGINT, SIGTERM, SIGHUP}) ::sigaddset(&signals, signal);
        ::sigprocmask(SIG_BLOCK, &signals, &before_);
    }
    SignalHold(const SignalHold&) = delete;
    SignalHold& operator=(const SignalHold&) = delete;
    ~SignalHold() { ::sigprocmask(SIG_SETMASK, &before_, nullptr); }

private:
    sigset_t before_ = {};
};

/// Runs an action, and puts the file's name into its error.
template <typename Action>
void runNaming(const std::string& fileName, Action action) {
    try {
        action();
    } catch (const std::system_error& error) {
        throw std::system_error(error.code(), printable(fileName));
    }
}

/// Permission bits of a file that is replaced, or of a new one.
mode_t bitsFor(const std::string& fileName) {
    constexpr mode_t ALL_BITS = 07777;
    constexpr mode_t READ_AND_WRITE = 0666;
    struct stat status = {};
    if (::stat(fileName.c_str(), &status) == 0) return status.st_mode & ALL_BITS;
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return READ_AND_WRITE & ~mask;
}

/// A new file beside the one that it will replace. The destructor removes it unless it did.
class Substitute {
public:
    explicit Substitute(const std::filesystem::path& replaced)
        : replaced_(replaced.string()),
          name_((replaced.parent_path() / ".zarn-moon-XXXXXX").string()),
          file_(::mkostemp(name_.data(), O_CLOEXEC)) {
        if (file_.get() == -1) throwNaming(replaced_);
    }
    Substitute(const Substitute&) = delete;
    Substitute& operator=(const Substitute&) = delete;
    ~Substitute() {
        if (!name_.empty()) ::unlink(name_.c_str());
    }

    /// Writes the content, with the permission bits of the replaced file, safe on disk.
    void fill(const std::string& content) const {
        if (::fchmod(file_.get(), bitsFor(replaced_)) != 0) throwNaming(replaced_);
        runNaming(replaced_, [&] { writeAll(file_.get(), content); });
        if (::fsync(file_.get()) != 0) throwNaming(replaced_);
    }
    void replace() {
        if (std::rename(name_.c_str(), replaced_.c_str()) != 0) throwNaming(replaced_);
        name_.clear();
    }

private:
    std::string replaced_;
    std::string name_;  ///< empty once the file has the other one's name
    Descriptor file_;
};

/// Whether a name is free or belongs to a regular file that may be written.
bool isOrdinary(const std::string& fileName) {
    struct stat status = {};
    if (::stat(fileName.c_str(), &status) != 0) {
        if (errno != ENOENT) throwNaming(fileName);
        return true;
    }
    if (::access(fileName.c_str(), W_OK) != 0) throwNaming(fileName);
    return S_ISREG(status.st_mode);
}

/// Where links lead, even if nothing is there yet. It ends: `isOrdinary` has refused circles.
std::filesystem::path behindLinks(std::filesystem::path name) {
    while (std::filesystem::is_symlink(std::filesystem::symlink_status(name)))
        name = name.parent_path() / std::filesystem::read_symlink(name);
    return name;
}

}  // namespace

void writeWhole(const std::string& fileName, const std::string& content) {
    if (!isOrdinary(fileName)) {
        const Descriptor file(::open(fileName.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY));
        if (file.get() == -1) throwNaming(fileName);
        runNaming(fileName, [&] { writeAll(file.get(), content); });
        return;
    }
    const SignalHold hold;
    Substitute file(behindLinks(fileName));
    file.fill(content);
    file.replace();
}

}  // namespace zarn
