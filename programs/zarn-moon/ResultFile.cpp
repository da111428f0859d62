#include "ResultFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "Printable.h"
#include "Reading.h"

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

void writeAll(int fd, const std::string& content, const std::string& fileName) {
    std::size_t done = 0;
    while (done < content.size()) {
        const ssize_t count = ::write(fd, content.data() + done, content.size() - done);
        if (count == -1 && errno != EINTR) fail(fileName);
        if (count > 0) done += static_cast<std::size_t>(count);
    }
}

/// A new file beside the one that it will replace, removed at the end unless it has.
class Substitute {
public:
    explicit Substitute(const std::string& replaced)
        : replaced_(replaced),
          name_(replaced + ".XXXXXX"),
          file_(::mkostemp(name_.data(), O_CLOEXEC)) {
        if (file_.get() == -1) fail(replaced);
    }
    Substitute(const Substitute&) = delete;
    Substitute& operator=(const Substitute&) = delete;
    ~Substitute() {
        if (!name_.empty()) ::unlink(name_.c_str());
    }

    void fill(const std::string& content) {
        const mode_t mask = ::umask(0);
        ::umask(mask);
        constexpr mode_t READ_AND_WRITE = 0666;
        if (::fchmod(file_.get(), READ_AND_WRITE & ~mask) != 0) fail(replaced_);
        writeAll(file_.get(), content, replaced_);
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

/// Whether a name is free or belongs to an ordinary file.
bool isOrdinary(const std::string& fileName) {
    struct stat status = {};
    return ::stat(fileName.c_str(), &status) != 0 || S_ISREG(status.st_mode);
}

}  // namespace

void writeWhole(const std::string& fileName, const std::string& content) {
    if (!isOrdinary(fileName)) {
        const Descriptor file(::open(fileName.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY));
        if (file.get() == -1) fail(fileName);
        writeAll(file.get(), content, fileName);
        return;
    }
    const SignalHold hold;
    std::error_code error;
    const bool isLink = std::filesystem::is_symlink(fileName, error);
    Substitute file(isLink ? std::filesystem::weakly_canonical(fileName).string() : fileName);
    file.fill(content);
    file.putInPlace();
}
