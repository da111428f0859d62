/// A directory that stays the same one while its name may come to lead elsewhere.
#ifndef ZARN_INGEST_DIRECTORY_H
#define ZARN_INGEST_DIRECTORY_H

#include <sys/stat.h>

#include <string>
#include <utility>

#include "shared/files/Reading.h"

namespace zarn::ingest {

/// Which file or directory it is, whatever its names.
using FileId = std::pair<dev_t, ino_t>;

inline FileId idIn(const struct stat& status) { return {status.st_dev, status.st_ino}; }

/// Keeps a directory open. What is done through `fd` or `ownPath` is done in this very directory,
/// even after it was renamed or removed and another one took its name.
class Directory {
public:
    /// @throw WorkStops  with the reason when no directory of this name can be opened
    explicit Directory(std::string name);

    const std::string& name() const { return name_; }
    int fd() const { return fd_.get(); }

    /// A path by which this process reaches an entry, without characters that mean something to
    /// CFITSIO. Valid while this object lives.
    std::string ownPath(const std::string& entry) const;

    /// Whether the name still leads here.
    bool isCurrent() const;

    /// @throw WorkStops  when the name leads nowhere, or to another directory
    void checkCurrent() const;

    /// Waits until the entries are safe on disk.
    ///
    /// @throw WorkStops  when the system cannot say so
    void sync() const;

    /// Waits until the directory's own name is safe on disk, as far as its parent can be asked.
    ///
    /// @throw WorkStops  when the system cannot say so
    void syncName() const;

private:
    std::string name_;
    Descriptor fd_;
    FileId id_;
};

}  // namespace zarn::ingest

#endif  // ZARN_INGEST_DIRECTORY_H
