#include "zarnsys/util/FileIO.h"

#include <fcntl.h>
#include <glob.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <utility>

#include "zarnsys/util/Log.h"
#include "zarnsys/util/ZarnSysEx.h"

namespace {

// The what and ident tools find this text in the built library.
const char rcsId[] = "@(#) $Id: FileIO.cpp,v " ZARNSYS_VERSION " " ZARNSYS_SOURCE_DATE " $";
// An optimiser drops a text that nothing reads; this pointer must stay, and the text with it.
[[gnu::used]] const char* const use_rcsId = rcsId;

constexpr mode_t FILE_MODE = 0664;             // rw-rw-r--, whatever the umask
constexpr mode_t NEW_DIRECTORY_MODE = 01755;   // at creation, less the umask
constexpr mode_t DIRECTORY_MODE = 0755;        // rwxr-xr-x, set afterwards
constexpr mode_t ID_BITS = S_ISUID | S_ISGID;  // inherited ones stay, as /bin/chmod leaves them
constexpr std::size_t READ_CHUNK = 1024;       // bytes per read call
constexpr int NO_FILE = 0;                     // value of fd_ without an open file
constexpr char CURRENT_DIRECTORY[] = ".";      // always there, even if it cannot be searched
constexpr char ROOT_DIRECTORY[] = "/";         // likewise
constexpr char CHMOD_COMMAND[] = "/bin/chmod 755 ";

// Characters that mean themselves to the shell, anywhere in a word.
constexpr char PLAIN_CHARACTERS[] =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789/._-+,:@%=";

/// Logs, as of the caller's line, and throws `action` + `name` + the system's text for `error`.
[[noreturn]] void fail(const char* action, const std::string& name, int error,
                       int line = __builtin_LINE()) {
    const std::string message = action + name + ". Error: " + std::strerror(error);
    errno = error;  // building the text may have changed it, and the log context shows it
    logError(__builtin_FILE(), line)("%s", message.c_str());
    throw ZarnSysEx(message);
}

bool nameExists(const std::string& name) {
    struct stat status = {};
    return ::stat(name.c_str(), &status) == 0;
}

/// The directory that holds `name`; both special kinds of name lie in one that exists.
std::string directoryOf(const std::string& name) {
    const std::string::size_type slash = name.rfind('/');
    if (slash == std::string::npos) return CURRENT_DIRECTORY;
    if (slash == 0) return ROOT_DIRECTORY;
    return name.substr(0, slash);
}

int accessMode(bool read, bool write) {
    if (read && write) return O_RDWR;
    return read ? O_RDONLY : O_WRONLY;
}

/// `fd`, or another descriptor of the same file when `fd` is the value that stands for "no file".
int otherThanNoFile(int fd) {
    if (fd != NO_FILE) return fd;
    const int moved = ::fcntl(fd, F_DUPFD, STDERR_FILENO + 1);  // nor a standard stream's
    const int error = errno;
    ::close(fd);
    errno = error;
    return moved;
}

/// Gives a directory just created its final bits, whatever the umask was.
void setDirectoryMode(const std::string& directory) {
    const bool plain = directory.find_first_not_of(PLAIN_CHARACTERS) == std::string::npos;
    if (!plain || directory.front() == '-') {
        struct stat status = {};
        static_cast<void>(::stat(directory.c_str(), &status));
        static_cast<void>(::chmod(directory.c_str(), DIRECTORY_MODE | (status.st_mode & ID_BITS)));
        return;
    }
    const std::string chmodCmd = CHMOD_COMMAND + directory;
    // NOLINTNEXTLINE(cert-env33-c): the archive's hosts set these bits by their own /bin/chmod
    [[maybe_unused]] const int ignored = std::system(chmodCmd.c_str());
}

/// The names that a pattern matches. Owns the storage of the expansion.
class GlobBuffer {
public:
    explicit GlobBuffer(const std::string& pattern) {
        // The result code says nothing that the number of names does not say.
        static_cast<void>(::glob(pattern.c_str(), GLOB_NOSORT, nullptr, &glob_));
    }
    GlobBuffer(const GlobBuffer&) = delete;
    GlobBuffer& operator=(const GlobBuffer&) = delete;
    ~GlobBuffer() { ::globfree(&glob_); }

    char** begin() const { return glob_.gl_pathv; }
    char** end() const { return glob_.gl_pathv + glob_.gl_pathc; }

private:
    glob_t glob_ = {};
};

std::vector<std::string> expand(const std::string& pattern) {
    const GlobBuffer globBuf(pattern);
    std::vector<std::string> names;
    for (const char* name : globBuf) {
        logDebug()("Found matching file: |%s|", name);
        names.emplace_back(name);
    }
    return names;
}

}  // namespace

FileIO::FileIO(const std::string& fileName, bool read, bool write)
    : mode_(FILE_MODE), fd_(NO_FILE), read_(read), write_(write) {
    setFileName(fileName);
}

FileIO::FileIO(const std::vector<std::string>& pathList, bool read, bool write)
    : mode_(FILE_MODE), fd_(NO_FILE), read_(read), write_(write) {
    buildFileName(pathList);
}

FileIO::~FileIO() { close(); }

FileIO& FileIO::clear() {
    close();
    completeName_.clear();
    ext_.clear();
    path_.clear();
    baseName_.clear();
    buf_.str(std::string());
    mode_ = FILE_MODE;
    return *this;
}

FileIO& FileIO::addPath(const std::string& path) {
    // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): `path` may be this very name
    const std::string added = path;
    if (!completeName_.empty() && completeName_.back() != '/') completeName_ += '/';
    completeName_ += added;
    return *this;
}

FileIO& FileIO::setFileName(const std::string& fileName) {
    std::string name = fileName;  // `fileName` may be the name that is emptied here
    clear();
    logDebug()("Setting internal filename to: %s", name.c_str());
    completeName_ = std::move(name);
    return *this;
}

FileIO& FileIO::buildFileName(const std::vector<std::string>& pathList) {
    for (const std::string& path : pathList) addPath(path);
    logDebug()("Built fileName: %s", completeName_.c_str());
    return *this;
}

bool FileIO::pathExists() { return nameExists(getPath()); }

bool FileIO::exists() { return nameExists(completeName_); }

FileIO& FileIO::open(const std::string& fileName, bool read, bool write) {
    close();
    checkCreateDir(directoryOf(fileName));
    const int creation = nameExists(fileName) ? 0 : O_CREAT;
    fd_ = otherThanNoFile(::open(fileName.c_str(), creation | accessMode(read, write), mode_));
    if (fd_ == -1) fail("Error opening file: ", fileName, errno);
    static_cast<void>(::fchmod(fd_, mode_));  // not ours, or a read-only file system: stays as is
    completeName_ = fileName;
    read_ = read;
    write_ = write;
    return *this;
}

FileIO& FileIO::close() {
    if (fd_ > NO_FILE) ::close(fd_);
    fd_ = NO_FILE;
    return *this;
}

std::string& FileIO::getCompleteName() { return completeName_; }

std::string& FileIO::getPath() {
    path_ = directoryOf(completeName_);
    return path_;
}

std::string& FileIO::getBaseName() {
    baseName_ = completeName_.substr(completeName_.rfind('/') + 1);  // npos + 1 is 0: the whole
    return baseName_;
}

FileIO& FileIO::load(std::stringstream& buf) {
    logDebug()("Loading file: %s", completeName_.c_str());
    buf_.str(std::string());
    if (fd_ == NO_FILE) open(completeName_, read_, write_);
    std::array<char, READ_CHUNK + 1> chunk;
    ssize_t count = 0;
    do {
        count = ::read(fd_, chunk.data(), READ_CHUNK);
        if (count == -1) fail("Error reading from file: ", completeName_, errno);
        chunk[static_cast<std::size_t>(count)] = '\0';
        buf.write(chunk.data(), static_cast<std::streamsize>(std::strlen(chunk.data())));
    } while (count == static_cast<ssize_t>(READ_CHUNK));
    return *this;
}

FileIO& FileIO::checkCreateDir(const std::string& path) {
    const std::string checkPath = path.empty() ? getPath() : path;
    if (checkPath == CURRENT_DIRECTORY || checkPath == ROOT_DIRECTORY) return *this;
    if (nameExists(checkPath)) return *this;
    if (::mkdir(checkPath.c_str(), NEW_DIRECTORY_MODE) != 0) {
        const int error = errno;
        if (error == EEXIST && nameExists(checkPath)) return *this;  // another process was faster
        fail("Error creating path: ", checkPath, error);
    }
    setDirectoryMode(checkPath);
    return *this;
}

FileIO& FileIO::write(const std::string& buf) { return write(buf.c_str()); }

FileIO& FileIO::write(const char* buf) {
    const std::size_t length = std::strlen(buf);
    logDebug()("Writing into file: %s. Buffer length: %zu", completeName_.c_str(), length);
    if (fd_ == NO_FILE) open(completeName_, read_, write_);
    const ssize_t written = ::write(fd_, buf, length);
    // A partial write sets no error number; an old one would name a wrong reason.
    if (written != static_cast<ssize_t>(length))
        fail("Error writing to file: ", completeName_, written == -1 ? errno : 0);
    return *this;
}

FileIO& FileIO::rename(const std::string& newPath) {
    close();
    if (::rename(completeName_.c_str(), newPath.c_str()) != 0) {
        const int error = errno;
        fail("Error renaming file from: ", completeName_ + " to: " + newPath, error);
    }
    return open(newPath, read_, write_);
}

FileIO& FileIO::getExtension(std::string& ext) {
    const std::string::size_type dot = completeName_.rfind('.');
    ext = dot == std::string::npos ? std::string() : completeName_.substr(dot + 1);
    return *this;
}

std::string& FileIO::getExtension() {
    getExtension(ext_);
    return ext_;
}

FileIO& FileIO::setExtension(const std::string& ext) {
    // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): `ext` may be cache or name
    const std::string added = ext;
    const std::string actExt = getExtension();
    if (actExt == added) return *this;
    logDebug()("Adding extension - setting internal filename to: %s.%s", completeName_.c_str(),
               added.c_str());
    completeName_ += '.' + added;
    ext_ = added;
    return *this;
}

FileIO& FileIO::match(std::vector<std::string>& fileList, [[maybe_unused]] int maxMatches) {
    logDebug()("Executing match on path: %s", completeName_.c_str());
    try {
        fileList = expand(completeName_);
    } catch (const std::exception&) {
        fail("Error executing a glob operation with pattern: ", completeName_, errno);
    }
    return *this;
}

bool FileIO::isFile() {
    struct stat status = {};
    if (::stat(completeName_.c_str(), &status) != 0)
        fail("Error executing stats() on path: ", completeName_, errno);
    return (status.st_mode & S_IFREG) == S_IFREG;
}

FileIO& FileIO::remove([[maybe_unused]] bool force) {
    close();
    logDebug()("Removing file: %s", completeName_.c_str());
    static_cast<void>(::remove(completeName_.c_str()));
    return clear();
}
