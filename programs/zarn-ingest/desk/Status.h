/// What an operator or a monitor wants to know of a service.
#ifndef ZARN_INGEST_STATUS_H
#define ZARN_INGEST_STATUS_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "zarn-ingest/run/Journal.h"
#include "zarn-ingest/settings/Settings.h"

namespace zarn::ingest {

/// A service as its directories show it at one moment.
struct Status {
    bool isRunning = false;                    ///< a process holds the incoming directory
    std::size_t waiting = 0;                   ///< files in the incoming directory
    std::int64_t oldestAge = 0;                ///< since the oldest of them came or was changed [s]
    std::optional<JournalEntry> lastResult;    ///< none: the journal has none
    std::optional<std::size_t> failuresToday;  ///< by the journal; none: it cannot be read
    std::optional<std::size_t> failedFiles;    ///< none: their directory cannot be listed
    std::optional<float> freeSpace;            ///< for results [MiB]; none: unknown
    std::vector<std::string> problems;         ///< that need a person
};

/// Looks at the directories of a service, and changes nothing.
///
/// @throw UsageError  for a pattern with wildcards beyond its last component
Status statusOf(const Settings& settings);

}  // namespace zarn::ingest

#endif  // ZARN_INGEST_STATUS_H
