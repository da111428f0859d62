#include "StopSignals.h"

#include <poll.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <system_error>

namespace {

constexpr int WAIT_FOREVER = -1;

int blockAndOpen() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) sigaddset(&signals, signal);
    ::sigprocmask(SIG_BLOCK, &signals, nullptr);
    const int fd = ::signalfd(-1, &signals, SFD_NONBLOCK | SFD_CLOEXEC);
    if (fd == -1) throw std::system_error(errno, std::generic_category(), "signalfd");
    return fd;
}

}  // namespace

StopSignals::StopSignals() : source_(blockAndOpen()) {}

int StopSignals::received() {
    signalfd_siginfo info = {};
    if (received_ == 0 && ::read(source_.get(), &info, sizeof info) == sizeof info)
        received_ = static_cast<int>(info.ssi_signo);
    return received_;
}

bool StopSignals::waitFor(int fd) {
    std::array<pollfd, 2> sources = {{{fd, POLLIN, 0}, {source_.get(), POLLIN, 0}}};
    static_cast<void>(::poll(sources.data(), sources.size(), WAIT_FOREVER));
    return received() == 0;
}
