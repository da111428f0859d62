/// A file without a name, in memory.
#ifndef ZARN_PROGRAMS_MEMORYFILE_H
#define ZARN_PROGRAMS_MEMORYFILE_H

#include <string>

#include "shared/files/Reading.h"

/// Passes text to a library or a process that takes files only: neither side waits for the other,
/// and nothing is left on disk.
class MemoryFile {
public:
    /// @throw std::system_error  when there is no memory or no descriptor for it
    explicit MemoryFile(const std::string& content = "");

    int fd() const { return file_.get(); }

    /// A path by which this process can open it while the object lives.
    std::string path() const { return descriptorPath(file_.get()); }

    /// All of it, whoever wrote it. Other readers of the descriptor begin anew.
    std::string content() const;

private:
    Descriptor file_;
};

#endif  // ZARN_PROGRAMS_MEMORYFILE_H
