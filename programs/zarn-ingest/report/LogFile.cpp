#include "zarn-ingest/report/LogFile.h"

#include <sys/stat.h>
#include <zarnsys/util/FileIO.h>

#include <cerrno>
#include <iostream>
#include <system_error>
#include <utility>

#include "shared/cli/Printable.h"

namespace zarn::ingest {

namespace {

constexpr std::ios_base::openmode APPENDING = std::ios_base::out | std::ios_base::app;

}  // namespace

LogFileGuard::LogFileGuard(std::filebuf& file, const std::string& name, std::streamoff limit)
    : file_(file), name_(name), limit_(limit) {}

LogFileGuard::int_type LogFileGuard::overflow(int_type character) {
    if (!traits_type::eq_int_type(character, traits_type::eof()))
        line_ += traits_type::to_char_type(character);
    return traits_type::not_eof(character);
}

std::streamsize LogFileGuard::xsputn(const char* text, std::streamsize length) {
    line_.append(text, static_cast<std::size_t>(length));
    return length;
}

/// The end of a line, which ACE never writes without. It always succeeds: a stream that failed
/// would take no further line.
int LogFileGuard::sync() {
    const std::string line = std::exchange(line_, {});
    if (!line.empty()) tell(put(line), line);
    return 0;
}

/// ACE asks for the size by this, and rolls over at once when it exceeds the limit.
LogFileGuard::pos_type LogFileGuard::seekoff(off_type /*unused*/, std::ios_base::seekdir /*unused*/,
                                             std::ios_base::openmode /*unused*/) {
    if (fails_) return 0;
    const std::streamoff size = size_;
    if (size > limit_) size_ = 0;
    return size;
}

bool LogFileGuard::isInPlace() const {
    struct stat status = {};
    return file_.is_open() && ::stat(name_.c_str(), &status) == 0 && status.st_dev == device_ &&
           status.st_ino == inode_;
}

/// Opens the file that has the name now: after a roll-over, or after someone removed the former
/// one, perhaps with its directory.
bool LogFileGuard::reopen() {
    struct stat status = {};
    const bool isThere = ::stat(name_.c_str(), &status) == 0;
    file_.close();
    // No FileIO here: it would log, into the very log that is being mended.
    if (!isThere) ::mkdir(FileIO(name_, true, true).getPath().c_str(), S_IRWXU | S_IRWXG | S_IRWXO);
    if (file_.open(name_, APPENDING) == nullptr || ::stat(name_.c_str(), &status) != 0)
        return false;
    const bool isFirst = inode_ == 0;
    if (!isThere && !isFirst)
        std::cerr << "zarn-ingest: the log " + printable(name_) + " was removed; it begins anew\n";
    device_ = status.st_dev;
    inode_ = status.st_ino;
    torn_ = false;
    return true;
}

bool LogFileGuard::put(const std::string& line) {
    if (!isInPlace() && !reopen()) return false;
    const std::string text = (torn_ ? "\n" : "") + line;
    const auto length = static_cast<std::streamsize>(text.size());
    const std::streamsize written = file_.sputn(text.data(), length);
    if (written > 0) torn_ = written < length;
    size_ = file_.pubseekoff(0, std::ios_base::cur, std::ios_base::out);
    return written == length;
}

void LogFileGuard::tell(bool written, const std::string& line) {
    const std::string reason = std::generic_category().message(errno);
    const std::string log = "zarn-ingest: the log " + printable(name_);
    if (!written && !fails_)
        std::cerr << log + " cannot be written: " + reason + "; its lines come here until it can\n";
    if (!written) std::cerr << line;
    if (written && fails_) std::cerr << log + " is written again\n";
    fails_ = !written;
}

LogFile::LogFile(const std::string& name, std::streamoff limit) : guard_(*rdbuf(), name, limit) {
    rdbuf()->pubsetbuf(nullptr, 0);  // what a write call did not take is not tried again unasked
    std::ios::rdbuf(&guard_);
}

}  // namespace zarn::ingest
