/// The program's log file, which rolls over, and the thread that sees to it.
#ifndef ZARN_INGEST_ROLLINGLOG_H
#define ZARN_INGEST_ROLLINGLOG_H

#include "zarn-ingest/settings/Settings.h"

namespace zarn::ingest {

/// The log of a process: there is at most one. It and its thread end with the object.
class RollingLog {
public:
    /// Sends this process's log lines to the file of the settings, whose directory is created when
    /// missing, and makes sure that they arrive there: ACE itself says nothing when they do not.
    ///
    /// @throw std::exception  with the reason when they do not
    explicit RollingLog(const Settings& settings);
    RollingLog(const RollingLog&) = delete;
    RollingLog& operator=(const RollingLog&) = delete;

    /// Lets lines reach the file again after a roll-over that could not open it. Call it now and
    /// then.
    static void keepOpen();

    /// Ends the reactor and waits for its thread: a process must not end while it runs.
    ~RollingLog();
};

}  // namespace zarn::ingest

#endif  // ZARN_INGEST_ROLLINGLOG_H
