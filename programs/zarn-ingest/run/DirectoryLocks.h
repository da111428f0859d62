/// Locks that keep other processes out of directories.
#ifndef ZARN_INGEST_DIRECTORYLOCKS_H
#define ZARN_INGEST_DIRECTORYLOCKS_H

#include <string>
#include <vector>

#include "zarn-ingest/result/Directory.h"

namespace zarn::ingest {

/// Whether another process holds a directory.
///
/// @throw WorkStops  with the reason when the system does not say
bool isLocked(const std::string& directory);

/// Holds directories for this process alone, until the object is destroyed or the process ends.
/// What is made safe in them is found again: their own names are safe, too.
class DirectoryLocks {
public:
    /// @throw std::exception  with the reason, for example that another process holds one
    explicit DirectoryLocks(const std::vector<std::string>& directories);

    /// Locks the directories that have taken the names of locked ones meanwhile.
    ///
    /// @return           the names of the directories that were replaced
    /// @throw WorkStops  when one is missing, or another process holds its successor
    std::vector<std::string> renew();

private:
    void add(const std::string& directory);

    std::vector<Directory> locked_;  ///< each keeps its lock while it is open
};

}  // namespace zarn::ingest

#endif  // ZARN_INGEST_DIRECTORYLOCKS_H
