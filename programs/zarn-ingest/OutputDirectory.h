/// The directory of the results, and the files that are not results yet.
#ifndef ZARN_INGEST_OUTPUTDIRECTORY_H
#define ZARN_INGEST_OUTPUTDIRECTORY_H

#include <string>

#include "Reading.h"

class OutputDirectory {
public:
    enum class Missing {
        CREATE,      ///< one level of it
        CAN_CREATE,  ///< only make sure that it could be created
    };

    /// Makes sure of the directory.
    ///
    /// @throw std::exception  with the reason when results could not be written there
    OutputDirectory(const std::string& name, Missing missing);

    const std::string& name() const { return name_; }
    std::string path(const std::string& entry) const;

private:
    std::string name_;
};

/// A directory of this run's own inside the output directory, for files not yet complete. It is
/// removed at the end, or by this host's next run when this one is killed: a lock tells whose run
/// lives.
class WorkDirectory {
public:
    /// @throw std::system_error  when it cannot be made
    explicit WorkDirectory(const OutputDirectory& output);
    WorkDirectory(const WorkDirectory&) = delete;
    WorkDirectory& operator=(const WorkDirectory&) = delete;
    ~WorkDirectory();

    std::string path(const std::string& entry) const;

    /// The path for CFITSIO: one in which it sees no brackets, suffixes or other syntax of its own,
    /// whatever the directories are called. Valid while this object lives.
    std::string fitsPath(const std::string& entry) const;

private:
    std::string name_;
    Descriptor directory_;
};

/// A file in a working directory, removed at the end unless it was put in place.
class WorkFile {
public:
    WorkFile(const WorkDirectory& directory, const std::string& name)
        : directory_(directory), name_(name) {}
    WorkFile(const WorkFile&) = delete;
    WorkFile& operator=(const WorkFile&) = delete;
    ~WorkFile();

    std::string path() const { return directory_.path(name_); }
    std::string fitsPath() const { return directory_.fitsPath(name_); }

    /// Gives the file its result's name in one step.
    ///
    /// @param overwrite  replace a file of this name; false: refuse to
    /// @throw std::system_error  when it cannot; the file is then still the working directory's
    void putInPlace(const std::string& result, bool overwrite) const;

private:
    const WorkDirectory& directory_;
    std::string name_;
};

#endif  // ZARN_INGEST_OUTPUTDIRECTORY_H
