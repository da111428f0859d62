/// Ctrl-C and termination, taken note of between two files.
///
/// While an object lives, the first SIGINT, SIGTERM or SIGHUP is noted, and the file in hand is
/// finished; a second one ends the process at once. A signal that was ignored at the start, as
/// under nohup, stays ignored. Create the object before any thread, and one only.
#ifndef ZARN_INGEST_STOPSIGNALS_H
#define ZARN_INGEST_STOPSIGNALS_H

#include <chrono>

#include "shared/files/Reading.h"

class StopSignals {
public:
    /// @throw std::system_error  when the process has no descriptor left for it
    StopSignals();

    /// The first signal that came, or 0. Does not wait.
    int received() const;

    /// Waits until `fd` can be read, or until a signal comes; false then.
    bool waitFor(int fd) const;

    /// Waits for an interval, or until a signal comes; false then.
    bool sleep(std::chrono::milliseconds interval) const;

private:
    Descriptor wake_;  ///< can be read from the first signal on
};

#endif  // ZARN_INGEST_STOPSIGNALS_H
