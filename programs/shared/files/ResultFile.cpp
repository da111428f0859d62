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

namespace {

[[noreturn]] void fail(const std::string& fileName) {
    throw std::system_error(errno, std::generic_category(), printable(fileName));
}

/// Keeps signals that would end the process waiting.
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

/// `action` with the file's name in its error.
template <typename Action>
void naming(const std::string& fileName, Action action) {
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

/// A new file beside the one that it will replace, removed at the end unless it has.
class Substitute {
public:
    explicit Substitute(const std::filesystem::path& replaced)
        : replaced_(replaced.string()),
          name_((replaced.parent_path() / ".zarn-moon-XXXXXX").string()),
          file_(::mkostemp(name_.data(), O_CLOEXEC)) {
        if (file_.get() == -1) fail(replaced_);
    }
    Substitute(const Substitute&) = delete;
    Substitute& operator=(const Substitute&) = delete;
    ~Substitute() {
        if (file_.get() != -1 && !name_.empty()) ::unlink(name_.c_str());
    }

    void fill(const std::string& content) const {
        if (::fchmod(file_.get(), bitsFor(replaced_)) != 0) fail(replaced_);
        naming(replaced_, [&] { writeAll(file_.get(), content); });
        if (::fsync(file_.get()) != 0) fail(replaced_);
    }
    void putInPlace() {
        if (std::rename(name_.c_str(), replaced_.c_str()) != 0) fail(replaced_);
        name_.clear();
    }

private:
    std::string replaced_;
    std::string name_;
    Descriptor file_;
};

/// Whether a name is free or belongs to an ordinary file that may be written.
bool isOrdinary(const std::string& fileName) {
    struct stat status = {};
    if (::stat(fileName.c_str(), &status) != 0) {
        if (errno != ENOENT) fail(fileName);
        return true;
    }
    if (::access(fileName.c_str(), W_OK) != 0) fail(fileName);
    return S_ISREG(status.st_mode);
}

/// Where links lead, also to nowhere yet; of a circle `isOrdinary` has known.
std::filesystem::path behindLinks(std::filesystem::path name) {
    while (std::filesystem::is_symlink(std::filesystem::symlink_status(name)))
        name = name.parent_path() / std::filesystem::read_symlink(name);
    return name;
}

}  // namespace

void writeWhole(const std::string& fileName, const std::string& content) {
    if (!isOrdinary(fileName)) {
        const Descriptor file(::open(fileName.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY));
        if (file.get() == -1) fail(fileName);
        naming(fileName, [&] { writeAll(file.get(), content); });
        return;
    }
    const SignalHold hold;
    Substitute file(behindLinks(fileName));
    file.fill(content);
    file.putInPlace();
}
