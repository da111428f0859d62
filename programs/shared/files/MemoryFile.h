/// A file without a name, in memory.
#ifndef ZARN_PROGRAMS_MEMORYFILE_H
#define ZARN_PROGRAMS_MEMORYFILE_H

#include <string>

#include "shared/files/Reading.h"

namespace zarn {

/// Passes text to and from a library or a process that knows only files: neither side waits for the
/// other, and nothing is left on disk. Owns the file, which is gone when the object is.
class MemoryFile {
public:
    /// @throw std::system_error  when memory or descriptors have run out
    explicit MemoryFile(const std::string& content = "");

    /// The descriptor, which stays this object's.
    int fd() const { return file_.get(); }

    /// A path by which this process can open it while the object lives.
    std::string path() const { return descriptorPath(file_.get()); }

    /// Gives it other content, for those who open it afterwards.
    ///
    /// @throw std::system_error  when memory has run out
    void replace(const std::string& content);

    /// The whole content, whoever wrote it. Moves the position that all users of the descriptor
    /// share.
    std::string content() const;

private:
    Descriptor file_;
};

}  // namespace zarn

#endif  // ZARN_PROGRAMS_MEMORYFILE_H
