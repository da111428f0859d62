/// The directory of the results, and the files that are not results yet.
#ifndef ZARN_INGEST_OUTPUTDIRECTORY_H
#define ZARN_INGEST_OUTPUTDIRECTORY_H

#include <cstddef>
#include <string>

#include "shared/files/Reading.h"
#include "zarn-ingest/result/Directory.h"

namespace zarn::ingest {

/// Where results go, by its name: what the name leads to can change.
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
/// lives. Both directories stay the ones that they were at the beginning.
class WorkDirectory {
public:
    /// @throw std::exception  with the reason when it cannot be made
    explicit WorkDirectory(const OutputDirectory& output);
    WorkDirectory(const WorkDirectory&) = delete;
    WorkDirectory& operator=(const WorkDirectory&) = delete;
    ~WorkDirectory();

    const Directory& output() const { return output_; }
    int fd() const { return fd_.get(); }
    std::string ownPath(const std::string& entry) const;

    /// Waits until all that is written here is safe on disk, and with it whatever else waits to be
    /// written to this file system. Before Linux 5.8 the system does not tell of a failed write.
    ///
    /// @throw WorkStops  when the system cannot say so
    void sync() const;

    /// Makes sure that a file of so many bytes can be written here now.
    ///
    /// @throw WorkStops  with the reason when it cannot
    void checkRoom(std::size_t size) const;

private:
    Directory output_;
    std::string name_;  ///< within the output directory
    Descriptor fd_;     ///< keeps the lock, too
};

/// A file in a working directory, removed at the end unless it was put in place.
class WorkFile {
public:
    /// Chooses a name, different from all earlier ones of this process: a file of a former name may
    /// have stayed.
    explicit WorkFile(const WorkDirectory& directory);
    WorkFile(const WorkFile&) = delete;
    WorkFile& operator=(const WorkFile&) = delete;
    ~WorkFile();

    /// A path for CFITSIO, which makes the file: `open` then keeps hold of it.
    std::string path() const { return directory_.ownPath(name_); }

    /// Also gives the file the permission bits that the archive's files have.
    ///
    /// @throw WorkStops  when the file is not there
    void open();

    /// The very file that was opened.
    int fd() const { return file_.get(); }

    std::size_t size() const { return size_; }  ///< of the file that was opened [bytes]

    /// Waits until the content is safe on disk.
    ///
    /// @throw WorkStops  when the system cannot say so
    void sync() const;

    /// Gives the opened file its result's name in one step.
    ///
    /// @param entry  the name within the output directory
    /// @param force  replace a file of this name; false: refuse to
    /// @throw IngestError  when no file can have that name, or something has it already
    /// @throw WorkStops    when it cannot be done, or was done to another file or directory than
    ///                     those that this run opened
    void putInPlace(const std::string& entry, bool force);

private:
    void checkPlaced(const std::string& entry) const;

    const WorkDirectory& directory_;
    std::string name_;  ///< empty once it has its result's
    Descriptor file_{-1};
    FileId id_;
    std::size_t size_ = 0;
};

}  // namespace zarn::ingest

#endif  // ZARN_INGEST_OUTPUTDIRECTORY_H
