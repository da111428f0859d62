#include "Gnuplot.h"

#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <stdexcept>
#include <system_error>

#include "Printable.h"
#include "Reading.h"

namespace {

/// A file in memory: neither side waits for the other, and nothing is left on disk.
class MemoryFile {
public:
    explicit MemoryFile(const std::string& content = "")
        : file_(::memfd_create("gnuplot", MFD_CLOEXEC)) {
        if (file_.get() == -1) fail();
        for (std::size_t done = 0; done < content.size();) {
            const ssize_t count =
                ::write(file_.get(), content.data() + done, content.size() - done);
            if (count == -1) fail();
            done += static_cast<std::size_t>(count);
        }
        rewind();
    }

    int fd() const { return file_.get(); }

    std::string content() const {
        rewind();
        std::string bytes;
        while (readChunk(file_.get(), bytes)) {
        }
        return bytes;
    }

private:
    [[noreturn]] static void fail() {
        throw std::system_error(errno, std::generic_category(), "memory for gnuplot");
    }
    void rewind() const { ::lseek(file_.get(), 0, SEEK_SET); }

    Descriptor file_;
};

/// Where a process's standard streams lead.
class Streams {
public:
    Streams() { ::posix_spawn_file_actions_init(&actions_); }
    Streams(const Streams&) = delete;
    Streams& operator=(const Streams&) = delete;
    ~Streams() { ::posix_spawn_file_actions_destroy(&actions_); }

    void lead(int stream, const MemoryFile& file) {
        ::posix_spawn_file_actions_adddup2(&actions_, file.fd(), stream);
    }
    const posix_spawn_file_actions_t* get() const { return &actions_; }

private:
    posix_spawn_file_actions_t actions_ = {};
};

int waitFor(pid_t process) {
    int status = 0;
    while (::waitpid(process, &status, 0) == -1) {
        if (errno != EINTR) return -1;
    }
    return status;
}

}  // namespace

std::string runGnuplot(const std::string& script) {
    const MemoryFile input(script);
    const MemoryFile output;
    const MemoryFile messages;
    Streams streams;
    streams.lead(STDIN_FILENO, input);
    streams.lead(STDOUT_FILENO, output);
    streams.lead(STDERR_FILENO, messages);
    std::array<std::string, 3> words = {"gnuplot", "--default-settings", "-"};
    std::array<char*, 4> arguments = {words[0].data(), words[1].data(), words[2].data(), nullptr};
    pid_t process = 0;
    const int error = ::posix_spawnp(&process, words[0].c_str(), streams.get(), nullptr,
                                     arguments.data(), environ);
    if (error == ENOENT) throw std::runtime_error("--plot needs gnuplot, which is not installed");
    if (error != 0) throw std::system_error(error, std::generic_category(), "gnuplot");
    const int status = waitFor(process);
    std::string result = output.content();
    if (status != 0 || result.empty())
        throw std::runtime_error("gnuplot failed: " + printable(messages.content()));
    return result;
}
