/// Ctrl-C and termination, noticed between two files.
#ifndef ZARN_INGEST_STOPSIGNALS_H
#define ZARN_INGEST_STOPSIGNALS_H

#include <chrono>

#include "shared/files/Reading.h"

namespace zarn::ingest {

/// Notes the first SIGINT, SIGTERM or SIGHUP, so that the current file can be finished; the same
/// signal again ends the process at once. A signal that was ignored at the start, as under nohup,
/// stays ignored.
///
/// The handlers stay installed when the object is destroyed. They write to its descriptor, so it
/// must live until the end of the work. Create one object per process, before any thread.
class StopSignals {
public:
    /// @throw std::system_error  when the process has no free descriptor
    StopSignals();

    /// The first signal that came, or 0. Does not wait.
    int received() const;

    /// Waits until `fd` can be read. False if a signal came first.
    [[nodiscard]] bool waitFor(int fd) const;

    /// Waits for an interval. False if a signal came first.
    [[nodiscard]] bool sleep(std::chrono::milliseconds interval) const;

private:
    Descriptor wake_;  ///< an event that can be read from the first signal on; owned
};

}  // namespace zarn::ingest

#endif  // ZARN_INGEST_STOPSIGNALS_H
