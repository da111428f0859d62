#include "shared/cli/Process.h"

#include <ace/Log_Msg.h>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <csignal>
#include <iostream>

namespace zarn {

namespace {

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
