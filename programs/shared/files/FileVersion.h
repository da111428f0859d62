/// What shows that a file was written to.
#ifndef ZARN_PROGRAMS_FILEVERSION_H
#define ZARN_PROGRAMS_FILEVERSION_H

#include <sys/types.h>

#include <cstdint>
#include <optional>
#include <string>

/// A file at one moment: another file of its name, or other content, shows in one of these.
struct FileVersion {
    ino_t inode = 0;
    off_t size = 0;             ///< [bytes]
    std::int64_t modified = 0;  ///< [ns since the epoch]

    bool operator==(const FileVersion& other) const {
        return inode == other.inode && size == other.size && modified == other.modified;
    }
};

/// A regular file's version, through links; of a link that dangles its own; none of anything else,
/// or with `errno` set when the name cannot be looked at.
std::optional<FileVersion> versionOf(const std::string& name);

#endif  // ZARN_PROGRAMS_FILEVERSION_H
