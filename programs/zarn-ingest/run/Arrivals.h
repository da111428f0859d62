/// Files that arrive, and which of them nobody is writing any more.
#ifndef ZARN_INGEST_ARRIVALS_H
#define ZARN_INGEST_ARRIVALS_H

#include <chrono>
#include <map>
#include <string>
#include <vector>

#include "shared/files/FileVersion.h"

namespace zarn::ingest {

/// Looks at a directory again and again, and tells which files have stopped changing.
class Arrivals {
public:
    using Clock = std::chrono::steady_clock;

    /// @param pattern  of the names; only its last component may have wildcards
    /// @param settle   how long size and modification time must stay the same
    /// @throw UsageError  when another component has wildcards
    Arrivals(const std::string& pattern, std::chrono::seconds settle);

    /// Looks at the directory.
    ///
    /// @return           the regular files and links that have settled, in alphabetical order
    /// @throw WorkStops  when the directory cannot be listed: it may not be taken for empty
    std::vector<std::string> settled();

    /// Names of the last look whose state the system did not tell, each with the reason, as
    /// messages.
    const std::vector<std::string>& unseen() const { return unseen_; }

    /// All files of the last look, settled or not, in alphabetical order.
    std::vector<std::string> present() const;

    /// Whether a file is still the same as at the last look.
    bool isUnchanged(const std::string& name) const;

    /// How many files of the last look have not settled.
    std::size_t unsettled() const { return unsettled_; }

    /// The directory in which files arrive.
    const std::string& directory() const { return directory_; }

private:
    /// A file as it was seen.
    struct Seen {
        FileVersion version;
        Clock::time_point since;  ///< when it was first seen in this version
    };

    std::string pattern_;
    std::string directory_;
    std::chrono::seconds settle_;
    std::map<std::string, Seen> seen_;  ///< files of the last look, by name
    std::size_t unsettled_ = 0;
    std::vector<std::string> unseen_;
};

}  // namespace zarn::ingest

#endif  // ZARN_INGEST_ARRIVALS_H
