/// What a run of zarn-ingest is asked to do.
#ifndef ZARN_INGEST_SETTINGS_H
#define ZARN_INGEST_SETTINGS_H

#include <zarnsys/util/ZarnMoonVal.h>

#include <optional>
#include <string>
#include <vector>

#include "zarn-ingest/settings/Shard.h"

/// Everything that options and properties set. A member holds its default until then.
struct Settings {
    // Which files.
    std::vector<std::string> arguments;  ///< paths and patterns
    std::vector<std::string> lists;      ///< files that hold names
    bool standardInput = false;          ///< names from there, too
    bool nulSeparated = false;           ///< names in lists end in NUL, instead of one a line
    Shard shard;                         ///< of all these, what this run converts
    std::string pattern;                 ///< where new files arrive; empty: nowhere

    // What becomes of them.
    std::string outputDir = ".";
    bool force = false;  ///< replace existing results
    bool checksum = false;
    bool strict = false;       ///< refuse headers that need a repair
    bool primaryOnly = false;  ///< of each text the first header alone
    std::string report;        ///< file of one JSON line per input; empty: none
    bool resume = false;       ///< a result that is there already from the same text is one
    bool dryRun = false;
    std::optional<Telescope> moon;  ///< for which the moon's values are added
    std::string journalDir;         ///< where each file is told of; empty: nowhere

    // How the run behaves.
    bool quiet = false;
    bool verbose = false;
    bool help = false;
    bool version = false;
    bool bashCompletion = false;
    bool watch = false;        ///< look for files again and again
    bool retryFailed = false;  ///< put failed files back first

    // The service: what `pattern` names is moved when it is done.
    std::string properties;      ///< file that these come from; empty: none
    std::string doneDir;         ///< of sources converted; empty: they stay
    std::string failedDir;       ///< of sources not converted; empty: they stay
    unsigned pollInterval = 10;  ///< [s], 1 at least
    unsigned settleTime = 5;     ///< how long a file stays unchanged before it is taken [s]
    unsigned leastFree = 100;    ///< room in the output directory, below which work waits [MiB]

    // The log; without a file, messages go to standard error.
    std::string logFile;
    unsigned logSize = 10240;   ///< of one log file [kB]
    unsigned logFiles = 5;      ///< kept
    unsigned logInterval = 60;  ///< at which the size is sampled [s]
    std::string logPriorities;  ///< ACE's names joined by '|'; empty: INFO and ERROR
    std::string logFlags;       ///< ACE's names joined by '|'; empty: the file alone
    std::string logProgram = "zarn-ingest";

    /// Whether names give the files: by arguments, lists or standard input.
    bool isNamed() const { return !arguments.empty() || !lists.empty() || standardInput; }

    /// Whether the run is a service's: its files are those that arrive, and move when they are
    /// done.
    bool isService() const { return !isNamed() && !dryRun; }
};

#endif  // ZARN_INGEST_SETTINGS_H
