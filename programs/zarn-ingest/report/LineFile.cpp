#include "zarn-ingest/report/LineFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zarnsys/util/FileIO.h>

#include <cerrno>
#include <filesystem>
#include <system_error>

#include "zarn-ingest/result/Directory.h"

namespace zarn::ingest {

namespace {

[[noreturn]] void failWith(const std::string& what) {
    throw std::system_error(errno, std::generic_category(), what);
}

std::string directoryOf(const std::string& fileName) {
    const std::string directory = std::filesystem::path(fileName).parent_path();
    return directory.empty() ? "." : directory;
}

}  // namespace

void mendLastLine(const std::string& fileName) {
    const std::string text = readFile(fileName);
    const std::size_t whole = text.rfind('\n') + 1;  // npos + 1 is 0: no whole line
    if (whole < text.size()) std::filesystem::resize_file(fileName, whole);
}

void LineFile::add(const std::string& lines) {
    if (lines.empty()) return;
    try {
        do {
            if (!isOpen()) open();
        } while (!put(lines));
    } catch (...) {
        file_ = Descriptor(-1);  // the next lines open the file again and mend it
        throw;
    }
}

/// Writes lines, safe on disk, or takes them back: they will be written again. False when the file
/// was removed meanwhile, and the lines with it.
bool LineFile::put(const std::string& lines) {
    struct stat before = {};
    if (::fstat(file_.get(), &before) != 0) failWith(name_);
    try {
        writeAll(file_.get(), lines);
        if (::fsync(file_.get()) != 0) failWith("not safe on disk");
        return isOpen();
    } catch (const std::system_error&) {
        static_cast<void>(!::ftruncate(file_.get(), before.st_size));
        throw;
    }
}

/// Whether the name leads to the file that is written to: someone may have removed it.
bool LineFile::isOpen() const {
    struct stat held = {};
    struct stat named = {};
    if (file_.get() == -1) return false;
    if (::fstat(file_.get(), &held) != 0) failWith(name_);
    if (::stat(name_.c_str(), &named) != 0 && errno != ENOENT) failWith(name_);
    return held.st_dev == named.st_dev && held.st_ino == named.st_ino;
}

void LineFile::open() {
    const Directory folder(directoryOf(name_));  // one that is gone is not made anew, as by FileIO
    FileIO(name_, false, true).open(name_, false, true);  // with the archive's bits
    mendLastLine(name_);
    file_ = Descriptor(::open(name_.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC));
    if (file_.get() == -1) failWith(name_);
    folder.sync();
}

}  // namespace zarn::ingest
