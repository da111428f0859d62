#include "zarn-ingest/run/StopSignals.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <limits>

#include "shared/files/SystemError.h"

namespace zarn::ingest {

namespace {

constexpr int WAIT_FOREVER = -1;
constexpr std::int64_t LONGEST_WAIT = std::numeric_limits<int>::max();  // [ms], 24 days

// All that the signal handler may use; the descriptor belongs to the StopSignals object.
volatile std::sig_atomic_t firstSignal = 0;
volatile std::sig_atomic_t wakeDescriptor = -1;

extern "C" void noteSignal(int signal) {
    const int error = errno;
    if (firstSignal == 0) firstSignal = signal;
    const std::uint64_t one = 1;
    static_cast<void>(!::write(wakeDescriptor, &one, sizeof one));
    errno = error;
}

/// A new event for StopSignals to own, which the handler can write to without waiting.
int openWake() {
    const int fd = ::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
    if (fd == -1) throwSystemError("no descriptor for signals");
    return fd;
}

/// Lets a signal be noted, unless it is ignored.
void handle(int signal) {
    struct sigaction action = {};
    ::sigaction(signal, nullptr, &action);
    if (action.sa_handler == SIG_IGN) return;
    action.sa_handler = noteSignal;
    action.sa_flags = static_cast<int>(SA_RESETHAND);  // the second one ends the process
    ::sigaction(signal, &action, nullptr);
}

}  // namespace

StopSignals::StopSignals() : wake_(openWake()) {
    wakeDescriptor = wake_.get();
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) handle(signal);
}

int StopSignals::received() const { return firstSignal; }

bool StopSignals::waitFor(int fd) const {
    std::array<pollfd, 2> sources = {{{fd, POLLIN, 0}, {wake_.get(), POLLIN, 0}}};
    while (received() == 0 && ::poll(sources.data(), sources.size(), WAIT_FOREVER) == -1) {
    }
    return received() == 0;
}

bool StopSignals::sleep(std::chrono::milliseconds interval) const {
    pollfd wake = {wake_.get(), POLLIN, 0};
    static_cast<void>(
        ::poll(&wake, 1, static_cast<int>(std::min<std::int64_t>(interval.count(), LONGEST_WAIT))));
    return received() == 0;
}

}  // namespace zarn::ingest
