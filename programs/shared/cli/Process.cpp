#include "shared/cli/Process.h"

#include <ace/Log_Msg.h>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <new>
#include <string_view>

namespace zarn {

namespace {

std::atomic<bool> lackedMemory{false};

/// What `new` calls before it gives up.
void noteMissingMemory() {
    lackedMemory = true;
    throw std::bad_alloc();
}

/// Why std::terminate is called; libstdc++ before 13 does not always know the exception, as that of
/// a directory's iterator.
bool isForMemory(const std::exception_ptr& thrown) {
    if (!thrown) return lackedMemory;
    try {
        std::rethrow_exception(thrown);
    } catch (const std::bad_alloc&) {
        return true;
    } catch (...) {
        return false;
    }
}

[[noreturn]] void terminate() {
    if (!isForMemory(std::current_exception())) std::abort();
    constexpr std::string_view MESSAGE = "zarn: out of memory\n";
    [[maybe_unused]] const ssize_t ignored = ::write(STDERR_FILENO, MESSAGE.data(), MESSAGE.size());
    std::_Exit(EXIT_SOME_FAILED);
}

/// Whether a descriptor leads into a pipe that nobody reads from any more.
bool readerLeft(int fd) {
    pollfd pipe = {fd, 0, 0};
    return ::poll(&pipe, 1, 0) == 1 && (pipe.revents & POLLERR) != 0;
}

}  // namespace

const u_long ERROR_AND_ABOVE = LM_ERROR | LM_CRITICAL | LM_ALERT | LM_EMERGENCY;

void setPriorityMask(u_long mask) {
    ACE_Log_Msg::instance()->priority_mask(mask, ACE_Log_Msg::PROCESS);
}

std::vector<const char*> argumentsOf(const char* program, int argc, char** argv) {
    std::vector<const char*> arguments(argv, argv + argc);
    if (arguments.empty()) arguments.resize(1);
    arguments.front() = program;
    return arguments;
}

void ignoreWriteSignals() {
    for (const int signal : {SIGPIPE, SIGXFSZ}) std::signal(signal, SIG_IGN);
}

void reportMissingMemory() {
    std::set_new_handler(noteMissingMemory);
    std::set_terminate(terminate);
}

int finishOutput(const std::string& program, int status) {
    if (std::cout.flush()) return status;
    if (readerLeft(STDOUT_FILENO)) {
        std::signal(SIGPIPE, SIG_DFL);
        std::raise(SIGPIPE);
        return EXIT_SIGNAL + SIGPIPE;  // while the signal is blocked
    }
    std::cerr << program + ": cannot write to standard output\n";
    return EXIT_SOME_FAILED;
}

void reserveStandardStreams() {
    for (const int fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(fd, F_GETFD) == -1)
            static_cast<void>(::open("/dev/null", fd == STDIN_FILENO ? O_WRONLY : O_RDONLY));
    }
}

}  // namespace zarn
