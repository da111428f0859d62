/// @file
/// Files by name: opening, reading, writing, renaming, testing, removing and finding them.
#ifndef ZARNSYS_UTIL_FILEIO_H
#define ZARNSYS_UTIL_FILEIO_H

#include <sys/types.h>

#include <sstream>
#include <string>
#include <vector>

#include "Export.h"
#include "ZarnSysEx.h"

/// One file (for `match`: a pattern), known by a single string, its complete name.
///
/// Constructing an object touches no file. An operation that needs the file open opens it with the
/// access given at construction and leaves it open until `close`, `clear`, `setFileName`, `rename`,
/// `remove`, the next `open` or the destructor. The object owns the descriptor. It never truncates
/// a file and never appends to one: writing starts at the beginning and keeps what lies beyond.
///
/// Changing the name by `addPath`, `buildFileName`, `setExtension` or through `getCompleteName`
/// leaves an open file open: the descriptor stays with the file opened under the earlier name.
///
/// A failure that a comment names is logged at ERROR and thrown as `ZarnSysEx`, whose text reads:
/// the failed action, the name, ". Error: " and the system's text. Others are ignored on purpose.
/// An object is used by one thread at a time; distinct objects are independent. Names hold no NUL
/// byte.
class ZARNSYS_EXPORT FileIO {
public:
    /// @param fileName  complete name: a path or a pattern
    /// @param read      read access wanted when an operation opens the file by itself
    /// @param write     write access wanted then; it is also what neither of both means
    FileIO(const std::string& fileName, bool read, bool write);

    /// The same, with the name joined from a list as `buildFileName` does.
    FileIO(const std::vector<std::string>& pathList, bool read, bool write);

    FileIO(const FileIO&) = delete;
    FileIO& operator=(const FileIO&) = delete;

    /// Closes the file. Nothing is buffered here, so nothing can be lost.
    ~FileIO();

    /// Closes the file and empties the name; the access wanted stays.
    FileIO& clear();

    /// Appends `path` to the name, after a '/' unless the name is empty or ends in one.
    FileIO& addPath(const std::string& path);

    /// Closes the file and takes a new name.
    FileIO& setFileName(const std::string& fileName);

    /// Extends the name by `addPath` of each element. The name is not emptied first.
    FileIO& buildFileName(const std::vector<std::string>& pathList);

    /// Whether the directory of the name (`getPath`) exists. Throws nothing.
    bool pathExists();

    /// Whether anything of this name exists, symbolic links followed. Throws nothing.
    bool exists();

    /// Opens a file, which becomes the one that the object names. The offset starts at 0.
    ///
    /// A file open before is closed first. The new name's directory is created when missing, as
    /// `checkCreateDir` does, and the file, too. Its permission bits become 0664 wherever the
    /// system allows it, also when it existed. No other flag is given to the system.
    ///
    /// @param fileName  name of the file to open
    /// @param read      read access; false with `write` false opens for writing only
    /// @param write     write access
    /// @throw ZarnSysEx  the name and the access stay as they were. When the directory failed, no
    ///                   file is open. When opening failed, the object counts as holding an invalid
    ///                   descriptor until `close` or a successful `open`: reading and writing fail.
    FileIO& open(const std::string& fileName, bool read, bool write);

    /// Closes the file, if one is open. Reports no failure.
    FileIO& close();

    /// The complete name, which the caller may change.
    std::string& getCompleteName();

    /// The directory in which the file lies: the name before its last '/'. It is "." for a name
    /// without '/', and "/" for one whose only '/' comes first.
    std::string& getPath();

    /// The name after its last '/', or the whole name without one.
    std::string& getBaseName();

    /// Appends the text of the rest of the file to `buf`, reading 1024 bytes at a time.
    ///
    /// Of a chunk that holds a NUL byte, what follows the byte within the chunk is dropped. Reading
    /// goes on where the last operation stopped; a short read ends it. A file that does not exist
    /// is created, empty.
    ///
    /// @param buf  receives the text at its write position; what it holds before that stays
    /// @throw ZarnSysEx  when reading fails (the file stays open), or from `open`
    FileIO& load(std::stringstream& buf);

    /// Makes sure that a directory exists, creating its last component with permission bits 755.
    ///
    /// Anything that exists under the name is accepted, also if it came to exist meanwhile. The
    /// bits of a new directory are set by /bin/chmod through the shell if its name has only
    /// letters, digits and /._-+,:@%= and does not begin with a dash; else by the system call of
    /// that name, so that nothing of it is ever run.
    ///
    /// @param path  the directory; empty: the one of the complete name (`getPath`)
    /// @throw ZarnSysEx  when it cannot be created, for example since its parent is missing
    FileIO& checkCreateDir(const std::string& path);

    /// @{
    /// Writes a text by one system call, up to its first NUL byte, where the last operation
    /// stopped. There is no retry: a text of which only a part was written is a failure.
    ///
    /// @throw ZarnSysEx  when not everything was written (the file stays open), or from `open`.
    ///                   The system gives a partial write no error number: the text is "Success".
    FileIO& write(const std::string& buf);
    FileIO& write(const char* buf);
    /// @}

    /// Moves the file, replacing what `newPath` names, and holds it open under that name.
    ///
    /// @param newPath  the new name, in a directory that exists
    /// @throw ZarnSysEx  when it cannot be moved (the name stays, no file is open), or from `open`
    FileIO& rename(const std::string& newPath);

    /// What follows the last '.' of the complete name, directories included; empty without one.
    std::string& getExtension();

    /// Appends '.' and `ext` to the name unless `ext` is its extension already.
    FileIO& setExtension(const std::string& ext);

    /// Expands the complete name as a POSIX `glob` pattern.
    ///
    /// @param fileList    is replaced by the names found, in the order in which directories deliver
    ///                    them; a pattern that matches nothing, or fails, gives none
    /// @param maxMatches  ignored: every name found is returned
    /// @throw ZarnSysEx  when the list cannot be filled; `fileList` is then unchanged
    FileIO& match(std::vector<std::string>& fileList, int maxMatches);

    /// Whether the name is a regular file (or a socket: one bit of the type is tested).
    ///
    /// @throw ZarnSysEx  when nothing can be found out about the name, as for a missing file
    bool isFile();

    /// Closes the file, removes it or an empty directory, and clears the object. A removal that
    /// fails is not reported.
    ///
    /// @param force  changes nothing
    FileIO& remove(bool force);

private:
    FileIO& getExtension(std::string& ext);

    mode_t mode_;               ///< permission bits of files opened, always 0664
    std::string completeName_;  ///< the only name that counts; the next three are caches
    std::string ext_;           ///< as last worked out or set
    std::string path_;          ///< as last worked out
    std::string baseName_;      ///< as last worked out
    int fd_;                    ///< open descriptor, never 0; 0: none; -1: opening failed
    bool read_;                 ///< read access wanted
    bool write_;                ///< write access wanted
    std::stringstream buf_;     ///< always empty
};

#endif  // ZARNSYS_UTIL_FILEIO_H
