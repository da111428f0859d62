/// What a run of zarn-ingest is asked to do.
#ifndef ZARN_INGEST_SETTINGS_H
#define ZARN_INGEST_SETTINGS_H

#include <zarnsys/util/ZarnMoonVal.h>

#include <optional>
#include <string>
#include <vector>

#include "zarn-ingest/settings/Shard.h"

namespace zarn::ingest {

/// Forms of a service's status.
enum class StatusFormat { TEXT, JSON, PROMETHEUS };

/// Everything that options and properties set. A member holds its default until then.
struct Settings {
    // Which files.
    std::vector<std::string> arguments;  ///< paths and patterns
    std::vector<std::string> lists;      ///< files that hold names
    bool standardInput = false;          ///< also takes names from there
    bool nulSeparated = false;           ///< names in lists end in NUL instead of the line's end
    Shard shard;                         ///< the part of all these that this run converts
    std::string pattern;                 ///< of new files; empty: none arrive

    // What becomes of them.
    std::string outputDir = ".";
    bool force = false;  ///< replace existing results
    bool checksum = false;
    bool strict = false;       ///< refuse headers that need a repair
    bool primaryOnly = false;  ///< convert only the first header of each text
    std::string report;        ///< file for one JSON line per input; empty: none
    bool resume = false;       ///< an existing result of the same text counts as converted
    bool dryRun = false;
    std::optional<Telescope> moon;  ///< for which to add the moon's values; none: do not
    std::string journalDir;         ///< of the journal; empty: none

    // How the run behaves.
    bool quiet = false;
    bool verbose = false;
    bool help = false;
    bool version = false;
    bool completion = false;   ///< write a completion script
    bool watch = false;        ///< keep looking for files
    bool retryFailed = false;  ///< first move failed files back

    // Looks that change nothing.
    bool status = false;                       ///< at a service
    StatusFormat format = StatusFormat::TEXT;  ///< of the status
    bool verify = false;                       ///< at an archive, against journal and sources

    // The service: what `pattern` names is moved when it is done.
    std::string properties;      ///< file that these were read from; empty: none
    std::string doneDir;         ///< for converted sources; empty: they stay
    std::string failedDir;       ///< for failed sources; empty: they stay
    unsigned pollInterval = 10;  ///< time between two looks [s], at least 1
    unsigned settleTime = 5;     ///< how long a file must stay unchanged before [s]
    unsigned leastFree = 100;    ///< free space in the output directory that work needs [MiB]

    // The log; without a file, messages go to standard error.
    std::string logFile;
    unsigned logSize = 10240;   ///< largest size of one log file [kB]
    unsigned logFiles = 5;      ///< number of log files kept
    unsigned logInterval = 60;  ///< time between two looks at the size [s]
    std::string logPriorities;  ///< ACE's names joined by '|'; empty: INFO and ERROR
    std::string logFlags;       ///< ACE's names joined by '|'; empty: the file alone
    std::string logProgram = "zarn-ingest";

    /// Whether the files are named: by arguments, lists or standard input.
    bool isNamed() const { return !arguments.empty() || !lists.empty() || standardInput; }

    /// Whether the run only looks at what other runs did.
    bool looks() const { return status || verify; }

    /// Whether the run works as a service: on files that arrive, which move when they are done.
    bool isService() const { return !isNamed() && !dryRun; }
};

}  // namespace zarn::ingest

#endif  // ZARN_INGEST_SETTINGS_H
