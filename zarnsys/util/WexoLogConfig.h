/// @file
/// Rolling log files: what ACE's logging strategy is asked for, and the thread that drives it.
#ifndef ZARNSYS_UTIL_WEXOLOGCONFIG_H
#define ZARNSYS_UTIL_WEXOLOGCONFIG_H

#include <string>

#include "Export.h"

/// The settings of a program's log, for one call of `configure`.
///
/// The strategy samples the size of the log file on a timer of ACE's process-wide reactor (without
/// an interval every 600 s), so a log rolls over only with a size set and while the reactor thread
/// runs, and a file can grow beyond its size by what is written between two samples:
///
///     configure();  runReactorEventLoop();  ...  endReactorEventLoop();  join the thread
///
/// End the loop before `main` returns: a process that exits while the reactor thread still runs may
/// crash, since ACE's singletons go while the thread uses them.
///
/// A text counts as set when it is not empty, a number when it is above 0. Values are handed to ACE
/// as they are, and ACE splits them at blanks, takes quotes (an unpaired one keeps the strategy
/// from being loaded, without a word) and puts in the environment variable that a $NAME names.
///
/// Failures are logged at ERROR and returned as -1; nothing is thrown but `std::bad_alloc`. An
/// object belongs to one thread; copies are independent.
class ZARNSYS_EXPORT WexoLogConfig {
public:
    WexoLogConfig();

    /// Logging flags: ACE's names joined by '|', for example "STDERR|OSTREAM".
    void setCtrlFlags(const std::string& ctrlFlags) { ctrlFlags_ = ctrlFlags; }
    /// Interval at which the file's size is sampled [s].
    void setInterval(int interval) { interval_ = interval; }
    /// Size above which a log file is followed by a new one [kB, 1024 bytes].
    void setMaxFileSize(int maxFileSize) { maxFileSize_ = maxFileSize; }
    /// Program name for lines that ask for it.
    void setProgramName(const std::string& programName) { programName_ = programName; }
    /// How many log files are kept.
    void setMaxNumFiles(int maxNumFiles) { maxNumFiles_ = maxNumFiles; }
    /// Changes of the process-wide priority mask: ACE's names joined by '|', each of which is
    /// switched on, or off by a '~' before it; the others stay.
    void setPriority(const std::string& priority) { priority_ = priority; }
    /// Path of the log file.
    void setFileName(const std::string& fileName) { fileName_ = fileName; }

    /// Loads ACE's logging strategy, as the service `Logger`, with the members that are set.
    ///
    /// The factory is looked up at run time in a shared library called ACE (libACE.so). After a
    /// second call lines go on to the first call's file until that call's log rolls over.
    ///
    /// @return  0, or -1 when nothing is set or ACE refuses the directive. ACE 7.0.8 refuses none
    ///          by -1: a missing library, a syntax error or a log file that cannot be opened give
    ///          0, too. A program that must know looks whether its lines arrive in the file.
    int configure();

    /// Starts a thread that owns ACE's process-wide reactor and runs its event loop. Called again,
    /// it takes the loop away from the thread before.
    ///
    /// The thread is joinable through `ACE_Thread_Manager::instance()->wait()`, which a program
    /// calls after `endReactorEventLoop`; the library keeps no record of it. After a loop was
    /// ended, a new thread's loop returns at once until
    /// `ACE_Reactor::instance()->reset_reactor_event_loop()`.
    ///
    /// @return  0, or -1 when no thread could be started
    static int runReactorEventLoop();

    /// Ends the reactor's event loop. The call may wait while a handler runs, but not for the
    /// thread to finish.
    ///
    /// @return  0, or -1 when the reactor could not be told
    static int endReactorEventLoop();

private:
    static void* runReactor(void* unused);

    std::string ctrlFlags_;    ///< -f; empty: not set
    int interval_;             ///< -i [s]; 0 or less: not set
    int maxFileSize_;          ///< -m [kB]; 0 or less: not set
    std::string programName_;  ///< -n; empty: not set
    int maxNumFiles_;          ///< -N; 0 or less: not set
    std::string priority_;     ///< -p; empty: not set
    std::string fileName_;     ///< -s; empty: not set
};

#endif  // ZARNSYS_UTIL_WEXOLOGCONFIG_H
