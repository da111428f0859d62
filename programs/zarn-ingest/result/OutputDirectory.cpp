#include "zarn-ingest/result/OutputDirectory.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/utsname.h>
#include <unistd.h>
#include <zarnsys/util/FileIO.h>
#include <zarnsys/util/ZarnSysEx.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <system_error>
#include <utility>

#include "shared/cli/BeginsWith.h"
#include "shared/files/Durable.h"
#include "shared/files/SystemError.h"
#include "zarn-ingest/header/IngestError.h"

namespace zarn::ingest {

namespace {

const char WORK_PREFIX[] = ".zarn-ingest-";  // the host's name and a dash follow
const char WORK_RANDOM[] = "XXXXXX";         // filled in by the system

constexpr mode_t RESULT_BITS = S_IRUSR | S_IWUSR | S_IRGRP | S_IWGRP | S_IROTH;  // as FileIO's

// Errors of a name that no file can get, however sound the directory is.
constexpr int ERRORS_OF_NAMES[] = {ENAMETOOLONG, EINVAL, EILSEQ};
constexpr int ERRORS_OF_OCCUPANTS[] = {EEXIST, EISDIR, ENOTEMPTY};

template <std::size_t Size>
bool contains(const int (&errors)[Size], int error) {
    return std::find(std::begin(errors), std::end(errors), error) != std::end(errors);
}

std::string reasonFor(int error) { return std::generic_category().message(error); }

int openWithin(int directory, const std::string& name) {
    return ::openat(directory, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
}

/// Locks a working directory; false while another run holds it.
bool lock(const Descriptor& directory) {
    return directory.get() != -1 && ::flock(directory.get(), LOCK_EX | LOCK_NB) == 0;
}

/// Whether a directory is known to be removed: where the system cannot say, its use will tell.
bool isRemoved(const Descriptor& directory) {
    struct stat status = {};
    return ::fstat(directory.get(), &status) == 0 && status.st_nlink == 0;
}

/// How the working directories of this host's runs begin. On file systems of a network, locks on
/// directories may hold on one host alone: none can judge whether the runs of another still live.
std::string workPrefix() {
    struct utsname system = {};
    ::uname(&system);
    std::string host = system.nodename;
    for (char& c : host) {
        if (std::isalnum(static_cast<unsigned char>(c)) == 0 && c != '.' && c != '-') c = '_';
    }
    return WORK_PREFIX + host + "-";
}

bool isOfThisHost(const std::string& name, const std::string& prefix) {
    return name.size() == prefix.size() + std::strlen(WORK_RANDOM) && beginsWith(name, prefix);
}

/// Creates one level of a directory, or finds that someone else was faster.
void create(const std::string& name) {
    try {
        FileIO(name, true, false).checkCreateDir(name);
    } catch (ZarnSysEx&) {
        if (!std::filesystem::is_directory(name)) throw;
    }
}

/// Removes the working directories of this host's runs that were killed.
void removeAbandoned(const Directory& output) {
    std::error_code ignored;  // what cannot be listed or removed does no harm
    const std::string prefix = workPrefix();
    for (const auto& entry : std::filesystem::directory_iterator(output.ownPath(""), ignored)) {
        const std::string name = entry.path().filename();
        if (!isOfThisHost(name, prefix)) continue;
        const Descriptor directory(openWithin(output.fd(), name));
        if (lock(directory)) std::filesystem::remove_all(entry.path(), ignored);
    }
}

/// The directory that would hold a directory.
std::string parentOf(std::string name) {
    while (name.size() > 1 && name.back() == '/') name.pop_back();
    return FileIO(name, true, false).getPath();
}

/// The same words for every way in which the directory takes no file.
WorkStops noResult(const Directory& output, const std::string& reason) {
    return WorkStops("no result can be written in " + output.name() + ": " + reason);
}

/// The same words for results that a crash could take.
WorkStops notSafe(const Directory& output) {
    return WorkStops("no result can be made safe on disk in " + output.name() + ": " +
                     reasonFor(errno));
}

/// Makes a working directory; its name within the output directory.
std::string makeDirectory(const Directory& output) {
    const std::string name = workPrefix() + WORK_RANDOM;
    std::string path = output.ownPath(name);
    if (::mkdtemp(path.data()) == nullptr) throw noResult(output, reasonFor(errno));
    return path.substr(path.size() - name.size());
}

/// Gives up a working directory for the reason in `errno`: no descriptor, or no locks there.
[[noreturn]] void failRemoving(const Directory& output, const std::string& name) {
    const int error = errno;
    ::unlinkat(output.fd(), name.c_str(), AT_REMOVEDIR);
    errno = error;
    throwSystemError("working directory in " + output.name());
}

/// Makes a working directory and locks it, again if another run took it for abandoned in between.
Descriptor makeLocked(const Directory& output, std::string& name) {
    for (;;) {
        name = makeDirectory(output);
        Descriptor directory(openWithin(output.fd(), name));
        const bool locked = lock(directory);
        if (!locked && errno != EWOULDBLOCK && errno != ENOENT) failRemoving(output, name);
        if (locked && !isRemoved(directory)) return directory;
    }
}

/// Removes an entry at its end.
class Removal {
public:
    Removal(int directory, std::string name) : directory_(directory), name_(std::move(name)) {}
    Removal(const Removal&) = delete;
    Removal& operator=(const Removal&) = delete;
    ~Removal() { ::unlinkat(directory_, name_.c_str(), 0); }

private:
    int directory_;
    std::string name_;
};

std::string nextName() {
    static unsigned long number = 0;
    return std::to_string(++number) + ".fits";
}

}  // namespace

OutputDirectory::OutputDirectory(const std::string& name, Missing missing) : name_(name) {
    const bool exists = std::filesystem::exists(std::filesystem::symlink_status(name));
    if (!exists && missing == Missing::CREATE) create(name);
    const bool asked = exists || missing == Missing::CREATE;
    const std::string checked = asked ? name : parentOf(name);
    std::error_code error;
    const bool isDirectory = std::filesystem::is_directory(checked, error);
    if (error) throw std::system_error(error, "output directory " + name);
    if (!isDirectory) errno = ENOTDIR;
    if (!isDirectory || ::access(checked.c_str(), W_OK | X_OK) != 0)
        throwSystemError("output directory " + name);
}

std::string OutputDirectory::path(const std::string& entry) const {
    return name_.back() == '/' ? name_ + entry : name_ + "/" + entry;
}

WorkDirectory::WorkDirectory(const OutputDirectory& output) : output_(output.name()), fd_(-1) {
    removeAbandoned(output_);
    fd_ = makeLocked(output_, name_);
}

WorkDirectory::~WorkDirectory() {
    try {
        std::filesystem::remove_all(output_.ownPath(name_));
    } catch (const std::exception&) {  // NOLINT(bugprone-empty-catch): the next run removes it
    }
}

std::string WorkDirectory::ownPath(const std::string& entry) const {
    return descriptorPath(fd_.get()) + "/" + entry;
}

void WorkDirectory::sync() const {
    if (::syncfs(fd_.get()) != 0) throw notSafe(output_);
}

void WorkDirectory::checkRoom(std::size_t size) const {
    if (isRemoved(fd_)) throw noResult(output_, "the working directory was removed");
    const std::string name = nextName();
    const Descriptor file(::openat(fd_.get(), name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC,
                                   S_IRUSR | S_IWUSR));
    if (file.get() == -1) throw noResult(output_, reasonFor(errno));
    const Removal removal(fd_.get(), name);
    try {
        writeAll(file.get(), std::string(size, ' '));
    } catch (const std::system_error& error) {
        throw noResult(output_, error.code().message());
    }
    if (::fsync(file.get()) != 0) throw noResult(output_, reasonFor(errno));
}

WorkFile::WorkFile(const WorkDirectory& directory) : directory_(directory), name_(nextName()) {}

WorkFile::~WorkFile() {
    if (!name_.empty()) ::unlinkat(directory_.fd(), name_.c_str(), 0);
}

void WorkFile::open() {
    file_ = Descriptor(::openat(directory_.fd(), name_.c_str(), O_RDONLY | O_CLOEXEC));
    struct stat status = {};
    if (file_.get() == -1 || ::fstat(file_.get(), &status) != 0)
        throw WorkStops("the working directory in " + directory_.output().name() +
                        " lost a file: " + reasonFor(errno));
    id_ = idIn(status);
    size_ = static_cast<std::size_t>(status.st_size);
    static_cast<void>(::fchmod(file_.get(), RESULT_BITS));  // some file systems have none
}

void WorkFile::sync() const {
    if (::fsync(file_.get()) != 0) throw notSafe(directory_.output());
}

void WorkFile::putInPlace(const std::string& entry, bool force) {
    const Directory& output = directory_.output();
    output.checkCurrent();
    const bool moved =
        force ? ::renameat(directory_.fd(), name_.c_str(), output.fd(), entry.c_str()) == 0
              : renameToNew(directory_.fd(), name_, output.fd(), entry);
    const int error = errno;
    if (moved) {
        name_.clear();
        return checkPlaced(entry);
    }
    if (contains(ERRORS_OF_OCCUPANTS, error))
        throw IngestError("the result " + entry + " exists already: " + reasonFor(error));
    if (contains(ERRORS_OF_NAMES, error))
        throw IngestError("the result cannot be named " + entry + ": " + reasonFor(error));
    throw WorkStops("no result can be put in its place in " + output.name() + ": " +
                    reasonFor(error));
}

/// Makes sure that the file which was opened, and no other, now has the result's path.
void WorkFile::checkPlaced(const std::string& entry) const {
    const Directory& output = directory_.output();
    struct stat placed = {};
    const bool same = ::fstatat(output.fd(), entry.c_str(), &placed, AT_SYMLINK_NOFOLLOW) == 0 &&
                      idIn(placed) == id_;
    if (!same) throw WorkStops("someone changes results in " + output.name() + " meanwhile");
    output.checkCurrent();
}

}  // namespace zarn::ingest
