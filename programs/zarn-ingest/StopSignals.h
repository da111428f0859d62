/// Ctrl-C and termination, taken note of between two files.
///
/// While an object lives the process ignores SIGINT, SIGTERM and SIGHUP until asked, so that the
/// file in hand is always finished. Create it before any thread, and one only.
#ifndef ZARN_INGEST_STOPSIGNALS_H
#define ZARN_INGEST_STOPSIGNALS_H

#include "Reading.h"

class StopSignals {
public:
    StopSignals();

    /// The first signal that came, or 0. Does not wait.
    int received();

    /// Waits until `fd` can be read, or until a signal comes; false then.
    bool waitFor(int fd);

private:
    Descriptor source_;
    int received_ = 0;
};

#endif  // ZARN_INGEST_STOPSIGNALS_H
