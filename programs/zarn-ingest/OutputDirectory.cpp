#include "OutputDirectory.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/utsname.h>
#include <unistd.h>
#include <zarnsys/util/FileIO.h>
#include <zarnsys/util/ZarnSysEx.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "Moving.h"

namespace {

const char WORK_PREFIX[] = ".zarn-ingest-";  // the host's name and a dash follow
const char WORK_RANDOM[] = "XXXXXX";         // filled in by the system

// Characters to which CFITSIO gives no meaning in the directory part of a name.
const char PLAIN_CHARACTERS[] =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789/._-";
constexpr std::size_t MAX_PLAIN_LENGTH = 900;  // CFITSIO holds names of 1024 characters

[[noreturn]] void fail(const std::string& what) {
    throw std::system_error(errno, std::generic_category(), what);
}

int openDirectory(const std::string& name) {
    return ::open(name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
}

/// Locks a working directory; false while another run holds it.
bool lock(const Descriptor& directory) {
    return directory.get() != -1 && ::flock(directory.get(), LOCK_EX | LOCK_NB) == 0;
}

bool isRemoved(const Descriptor& directory) {
    struct stat status = {};
    return ::fstat(directory.get(), &status) != 0 || status.st_nlink == 0;
}

/// How the working directories of this host's runs begin. On file systems of a network, locks on
/// directories may hold on one host alone: none can judge whether the runs of another still live.
std::string workPrefix() {
    struct utsname system = {};
    ::uname(&system);
    std::string host = system.nodename;
    for (char& c : host) {
        if (std::strchr(PLAIN_CHARACTERS, c) == nullptr || c == '/') c = '_';
    }
    return WORK_PREFIX + host + "-";
}

bool isOfThisHost(const std::string& name, const std::string& prefix) {
    return name.size() == prefix.size() + std::strlen(WORK_RANDOM) && name.rfind(prefix, 0) == 0;
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
void removeAbandoned(const std::string& output) {
    std::error_code ignored;  // what cannot be listed or removed does no harm
    const std::string prefix = workPrefix();
    for (const auto& entry : std::filesystem::directory_iterator(output, ignored)) {
        if (!isOfThisHost(entry.path().filename(), prefix)) continue;
        const Descriptor directory(openDirectory(entry.path()));
        if (lock(directory)) std::filesystem::remove_all(entry.path(), ignored);
    }
}

/// The directory that would hold a directory.
std::string parentOf(std::string name) {
    while (name.size() > 1 && name.back() == '/') name.pop_back();
    return FileIO(name, true, false).getPath();
}

std::string makeDirectory(const std::string& output) {
    std::string name = output + "/" + workPrefix() + WORK_RANDOM;
    if (::mkdtemp(name.data()) == nullptr) fail("output directory " + output);
    return name;
}

/// Gives up a working directory for the reason in `errno`: no descriptor, or no locks there.
[[noreturn]] void failRemoving(const std::string& name) {
    const int error = errno;
    ::rmdir(name.c_str());
    errno = error;
    fail("working directory " + name);
}

/// Makes a working directory and locks it, again if another run took it for abandoned in between.
int makeLocked(const std::string& output, std::string& name) {
    for (;;) {
        name = makeDirectory(output);
        const Descriptor directory(openDirectory(name));
        const bool locked = lock(directory);
        if (!locked && errno != EWOULDBLOCK && errno != ENOENT) failRemoving(name);
        if (!locked || isRemoved(directory)) continue;
        const int kept = ::fcntl(directory.get(), F_DUPFD_CLOEXEC, 0);  // the lock goes with it
        if (kept == -1) failRemoving(name);
        return kept;
    }
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
        fail("output directory " + name);
}

std::string OutputDirectory::path(const std::string& entry) const {
    return name_.back() == '/' ? name_ + entry : name_ + "/" + entry;
}

WorkDirectory::WorkDirectory(const OutputDirectory& output)
    : directory_((removeAbandoned(output.name()), makeLocked(output.name(), name_))) {}

WorkDirectory::~WorkDirectory() {
    std::error_code ignored;  // the next run tries again
    std::filesystem::remove_all(name_, ignored);
}

std::string WorkDirectory::path(const std::string& entry) const { return name_ + "/" + entry; }

std::string WorkDirectory::fitsPath(const std::string& entry) const {
    const bool plain = name_.find_first_not_of(PLAIN_CHARACTERS) == std::string::npos;
    if (!plain || name_.size() > MAX_PLAIN_LENGTH)
        return "/proc/self/fd/" + std::to_string(directory_.get()) + "/" + entry;
    return name_.front() == '/' ? path(entry) : "./" + path(entry);
}

WorkFile::~WorkFile() { ::unlink(path().c_str()); }

void WorkFile::putInPlace(const std::string& result, bool overwrite) const {
    const bool moved =
        overwrite ? ::rename(path().c_str(), result.c_str()) == 0 : renameToNew(path(), result);
    if (!moved) fail("the result cannot be renamed to " + result);
}
