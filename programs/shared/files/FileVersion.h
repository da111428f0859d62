/// Tells whether a file was changed or replaced.
#ifndef ZARN_PROGRAMS_FILEVERSION_H
#define ZARN_PROGRAMS_FILEVERSION_H

#include <sys/types.h>

#include <cstdint>
#include <optional>
#include <string>

namespace zarn {

/// The state of a file at one moment. Another file of its name, or other content, differs in one of
/// these.
struct FileVersion {
    ino_t inode = 0;
    off_t size = 0;             ///< [bytes]
    std::int64_t modified = 0;  ///< [ns since the epoch]

    bool operator==(const FileVersion& other) const {
        return inode == other.inode && size == other.size && modified == other.modified;
    }
};

/// The version of a regular file, also through links, or of a dangling link itself. None for
/// anything else, and, with `errno` set, if the system does not say.
std::optional<FileVersion> versionOf(const std::string& name);

/// The version of what a descriptor has open; none for anything but a regular file.
std::optional<FileVersion> versionOf(int fd);

}  // namespace zarn

#endif  // ZARN_PROGRAMS_FILEVERSION_H
