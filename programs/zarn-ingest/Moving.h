/// Moving files so that nothing is replaced and a crash loses nothing.
#ifndef ZARN_INGEST_MOVING_H
#define ZARN_INGEST_MOVING_H

#include <string>
#include <vector>

#include "Directory.h"

/// Gives a file a name that no file has yet, in one step; false with `errno` set when it cannot.
bool renameToNew(const std::string& from, const std::string& to);

/// The same for names within directories that are open.
bool renameToNew(int fromDirectory, const std::string& from, int toDirectory,
                 const std::string& to);

/// Waits until a file's content, or a directory's entries, are safe on disk.
///
/// @throw std::system_error  when the system cannot say so
void syncToDisk(const std::string& path);

/// Moves a file into a directory of the same file system, safe on disk at the end. Where its name
/// is taken there, the name gets a number: x.hdr, x.hdr.~1~, x.hdr.~2~ and so on.
///
/// @return                   its path there
/// @throw std::system_error  when it cannot be moved
std::string moveInto(const std::string& file, const std::string& directory);

/// The name that a file had before `moveInto` gave it a number.
std::string withoutNumber(const std::string& name);

/// The same, and before it a text that tells the reason beside the file: x.hdr.reason, with x.hdr's
/// number.
std::string moveWithReason(const std::string& file, const std::string& directory,
                           const std::string& reason);

/// Name of the text that tells why a file failed.
std::string reasonName(const std::string& name);

/// Whether a name is one of these.
bool isReason(const std::string& name);

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

#endif  // ZARN_INGEST_MOVING_H
