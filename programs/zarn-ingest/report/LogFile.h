/// The file behind the rolling log, watched.
#ifndef ZARN_INGEST_LOGFILE_H
#define ZARN_INGEST_LOGFILE_H

#include <sys/types.h>

#include <atomic>
#include <fstream>
#include <streambuf>
#include <string>

namespace zarn::ingest {

/// What passes between ACE and the log file.
///
/// ACE writes on to a file that was removed, and takes one on a full disk, whose size it cannot
/// tell, for too large: it rolls over at every look until all files kept are empty. So each line
/// goes to the file that has the log's name now, one removed is made anew, and while the disk takes
/// no line, lines go to standard error and the file seems empty. Both troubles are said there.
class LogFileGuard : public std::streambuf {
public:
    /// @param file   the file, unbuffered; must outlive this object
    /// @param limit  the size above which ACE rolls over [bytes]
    LogFileGuard(std::filebuf& file, const std::string& name, std::streamoff limit);

protected:
    int_type overflow(int_type character) override;
    std::streamsize xsputn(const char* text, std::streamsize length) override;
    int sync() override;
    pos_type seekoff(off_type offset, std::ios_base::seekdir from,
                     std::ios_base::openmode which) override;

private:
    bool isInPlace() const;
    bool reopen();
    bool put(const std::string& line);
    void tell(bool written, const std::string& line);

    std::filebuf& file_;
    const std::string name_;
    const std::streamoff limit_;
    std::string line_;  ///< of which parts have come
    dev_t device_ = 0;
    ino_t inode_ = 0;                       ///< of the file that is open, with its device
    bool torn_ = false;                     ///< the file ends within a line
    std::atomic<bool> fails_ = false;       ///< read by the reactor's thread
    std::atomic<std::streamoff> size_ = 0;  ///< likewise [bytes]
};

/// The stream that ACE's logging strategy writes to, closes, renames and opens.
class LogFile : public std::ofstream {
public:
    LogFile(const std::string& name, std::streamoff limit);

private:
    LogFileGuard guard_;
};

}  // namespace zarn::ingest

#endif  // ZARN_INGEST_LOGFILE_H
