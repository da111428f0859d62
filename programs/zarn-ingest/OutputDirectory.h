/// The directory of the results: names in it, and files that appear there complete or not at all.
#ifndef ZARN_INGEST_OUTPUTDIRECTORY_H
#define ZARN_INGEST_OUTPUTDIRECTORY_H

#include <cstddef>
#include <string>

#include "Reading.h"

class OutputDirectory {
public:
    /// Makes sure of the directory; `create` makes one level of it when missing.
    ///
    /// @throw std::exception  with the reason when results could not be written there
    OutputDirectory(const std::string& name, bool create);

    /// Path of an entry, for the system.
    std::string path(const std::string& entry) const;

    /// Path of an entry, for CFITSIO: one in which it sees no brackets, suffixes or other syntax of
    /// its own, whatever the directory is called. Valid while this object lives.
    std::string fitsPath(const std::string& entry) const;

    /// Name of an entry that does not exist, for a file not yet complete.
    std::string newTemporary();

private:
    std::string name_;
    Descriptor directory_;
    std::size_t temporaries_ = 0;  ///< names given out
};

/// A temporary entry of a directory, removed at the end unless it was put in place.
class TemporaryFile {
public:
    explicit TemporaryFile(OutputDirectory& directory);
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile();

    std::string path() const { return directory_.path(name_); }
    std::string fitsPath() const { return directory_.fitsPath(name_); }

    /// Gives the file its result's name in one step.
    ///
    /// @param overwrite  replace a file of this name; false: refuse to
    /// @throw std::system_error  when it cannot; the file is then still temporary
    void putInPlace(const std::string& result, bool overwrite);

private:
    OutputDirectory& directory_;
    std::string name_;
};

#endif  // ZARN_INGEST_OUTPUTDIRECTORY_H
