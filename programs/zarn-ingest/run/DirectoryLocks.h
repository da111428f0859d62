/// One process in a directory.
#ifndef ZARN_INGEST_DIRECTORYLOCKS_H
#define ZARN_INGEST_DIRECTORYLOCKS_H

#include <string>
#include <vector>

#include "zarn-ingest/result/Directory.h"

/// Locks on directories, for this process alone, until the object or the process ends.
class DirectoryLocks {
public:
    /// @throw std::exception  with the reason, for example since another process holds one
    explicit DirectoryLocks(const std::vector<std::string>& directories);

    /// Locks what took a directory's name meanwhile.
    ///
    /// @return           the names of the directories that were replaced
    /// @throw WorkStops  when one is gone, or another process holds its successor
    std::vector<std::string> renew();

private:
    void add(const std::string& directory);

    std::vector<Directory> locked_;
};

#endif  // ZARN_INGEST_DIRECTORYLOCKS_H
