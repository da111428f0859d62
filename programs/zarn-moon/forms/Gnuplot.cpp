#include "zarn-moon/forms/Gnuplot.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <stdexcept>
#include <system_error>

#include "shared/cli/Printable.h"
#include "shared/files/MemoryFile.h"

namespace zarn::moon {

namespace {

/// Which files a new process gets as its standard streams. Owns the list that posix_spawn takes.
class Streams {
public:
    Streams() { ::posix_spawn_file_actions_init(&actions_); }
    Streams(const Streams&) = delete;
    Streams& operator=(const Streams&) = delete;
    ~Streams() { ::posix_spawn_file_actions_destroy(&actions_); }

    void redirect(int stream, const MemoryFile& file) {
        ::posix_spawn_file_actions_adddup2(&actions_, file.fd(), stream);
    }
    const posix_spawn_file_actions_t* get() const { return &actions_; }

private:
    posix_spawn_file_actions_t actions_ = {};
};

std::string firstLine(const std::string& text) {
    const std::string::size_type begin = text.find_first_not_of(" \n");
    if (begin == std::string::npos) return "no message";
    return printable(text.substr(begin, text.find('\n', begin) - begin));
}

/// The exit status of a process, as waitpid gives it; -1: unknown.
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
    streams.redirect(STDIN_FILENO, input);
    streams.redirect(STDOUT_FILENO, output);
    streams.redirect(STDERR_FILENO, messages);
    std::array<std::string, 3> words = {"gnuplot", "--default-settings", "-"};
    std::array<char*, 4> arguments = {words[0].data(), words[1].data(), words[2].data(), nullptr};
    std::signal(SIGCHLD, SIG_DFL);  // a parent may leave it ignored: no exit status would come then
    pid_t process = 0;
    const int error = ::posix_spawnp(&process, words[0].c_str(), streams.get(), nullptr,
                                     arguments.data(), environ);
    if (error == ENOENT) throw std::runtime_error("--plot needs gnuplot, which is not installed");
    if (error != 0) throw std::system_error(error, std::generic_category(), "gnuplot");
    const int status = waitFor(process);
    std::string result = output.content();
    if (WIFSIGNALED(status))
        throw std::runtime_error("gnuplot was killed by signal " +
                                 std::to_string(WTERMSIG(status)));
    if (status != 0) throw std::runtime_error("gnuplot failed: " + firstLine(messages.content()));
    return result;
}

}  // namespace zarn::moon
