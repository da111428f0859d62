/// Files that arrive: which of them nobody is writing any more.
#ifndef ZARN_INGEST_ARRIVALS_H
#define ZARN_INGEST_ARRIVALS_H

#include <chrono>
#include <map>
#include <string>
#include <vector>

#include "shared/files/FileVersion.h"

class Arrivals {
public:
    using Clock = std::chrono::steady_clock;

    /// @param pattern  of the names; its last component alone may hold wildcards
    /// @param settle   how long size and modification time stay the same before a file is taken
    Arrivals(const std::string& pattern, std::chrono::seconds settle);

    /// The regular files and links there that have settled, in alphabetical order.
    ///
    /// @throw WorkStops  when the directory cannot be listed: it may be anything but empty
    std::vector<std::string> settled();

    /// What keeps names of the last look from being looked at, for the operator.
    const std::vector<std::string>& unseen() const { return unseen_; }

    /// All that were there at the last look, in alphabetical order.
    std::vector<std::string> present() const;

    /// Whether a file is still as it was at the last look.
    bool isUnchanged(const std::string& name) const;

    /// How many more are there.
    std::size_t unsettled() const { return unsettled_; }

    const std::string& directory() const { return directory_; }

private:
    struct Seen {
        FileVersion version;
        Clock::time_point since;  ///< when it was first seen so
    };

    std::string pattern_;
    std::string directory_;
    std::chrono::seconds settle_;
    std::map<std::string, Seen> seen_;  ///< by name, of the last look
    std::size_t unsettled_ = 0;
    std::vector<std::string> unseen_;
};

#endif  // ZARN_INGEST_ARRIVALS_H
