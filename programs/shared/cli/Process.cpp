#include "shared/cli/Process.h"

#include <ace/Log_Msg.h>
#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <exception>
#include <new>
#include <string_view>

namespace zarn {

namespace {

bool isForMemory(const std::exception_ptr& thrown) {
    try {
        if (thrown) std::rethrow_exception(thrown);
    } catch (const std::bad_alloc&) {
        return true;
    } catch (...) {
        return false;
    }
    return false;
}

[[noreturn]] void terminate() {
    if (!isForMemory(std::current_exception())) std::abort();
    constexpr std::string_view MESSAGE = "zarn: out of memory\n";
    static_cast<void>(::write(STDERR_FILENO, MESSAGE.data(), MESSAGE.size()));
    std::_Exit(EXIT_SOME_FAILED);
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

void reportMissingMemory() { std::set_terminate(terminate); }

void reserveStandardStreams() {
    for (const int fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(fd, F_GETFD) == -1)
            static_cast<void>(::open("/dev/null", fd == STDIN_FILENO ? O_WRONLY : O_RDONLY));
    }
}

}  // namespace zarn
