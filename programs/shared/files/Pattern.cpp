#include "shared/files/Pattern.h"

#include <dirent.h>
#include <fnmatch.h>
#include <glob.h>
#include <sys/stat.h>
#include <zarnsys/util/FileIO.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <memory>
#include <new>
#include <utility>

#include "shared/files/SystemError.h"

namespace zarn {

namespace {

// `glob` gives its callbacks no context, so they note here what it would pass over in silence.
thread_local std::vector<Unlisted> noted;
thread_local bool memoryRanOut = false;

/// Runs a part of a callback. No exception may pass through `glob`, which is C.
template <typename Part>
auto guarded(Part part) -> decltype(part()) {
    try {
        return part();
    } catch (const std::bad_alloc&) {
        memoryRanOut = true;
        errno = ENOMEM;
        return {};
    }
}

/// A directory that `glob` is listing. Owned by `glob` between openListing and closeListing.
struct Listing {
    std::string name;
    DIR* stream;
};

/// Notes a directory with the error in `errno`, and keeps that.
bool note(const std::string& directory) {
    const int error = errno;
    if (error != ENOTDIR) noted.push_back({directory, {error, std::generic_category()}});
    errno = error;
    return true;
}

void* openListing(const char* name) {
    return guarded([name]() -> void* {
        auto listing = std::make_unique<Listing>(Listing{name, nullptr});
        listing->stream = ::opendir(name);
        if (listing->stream != nullptr) return listing.release();
        note(name);
        return nullptr;
    });
}

dirent* readListing(void* opened) {
    const auto* listing = static_cast<Listing*>(opened);
    errno = 0;
    dirent* entry = ::readdir(listing->stream);
    if (entry == nullptr && errno != 0) guarded([listing] { return note(listing->name); });
    return entry;
}

void closeListing(void* opened) {
    const std::unique_ptr<Listing> listing(static_cast<Listing*>(opened));
    ::closedir(listing->stream);
}

/// Reads the state of a name, and notes the directory if it may have the name and does not tell.
int lookAt(int (*look)(const char*, struct stat*), const char* name, struct stat* status) {
    const int result = look(name, status);
    if (result == 0 || leadsNowhere(errno)) return result;
    guarded([name] {
        const std::string path = name;
        return note(path.substr(0, path.rfind('/')));
    });
    return result;
}

int statNoting(const char* name, struct stat* status) { return lookAt(::stat, name, status); }

int lstatNoting(const char* name, struct stat* status) { return lookAt(::lstat, name, status); }

/// The names that `glob` found. Owns their storage.
class Expansion {
public:
    explicit Expansion(const std::string& pattern) {
        glob_.gl_opendir = openListing;
        glob_.gl_readdir = readListing;
        glob_.gl_closedir = closeListing;
        glob_.gl_stat = statNoting;
        glob_.gl_lstat = lstatNoting;
        const int flags = GLOB_NOSORT | GLOB_ALTDIRFUNC;
        // Names and notes say all else that the result code does.
        memoryRanOut |= ::glob(pattern.c_str(), flags, nullptr, &glob_) == GLOB_NOSPACE;
    }
    Expansion(const Expansion&) = delete;
    Expansion& operator=(const Expansion&) = delete;
    ~Expansion() { ::globfree(&glob_); }

    std::vector<std::string> names() const {
        return {glob_.gl_pathv, glob_.gl_pathv + glob_.gl_pathc};
    }

private:
    glob_t glob_ = {};
};

}  // namespace

Matches matchesOf(const std::string& pattern) {
    noted.clear();
    memoryRanOut = false;
    Matches matches;
    matches.names = Expansion(pattern).names();
    if (memoryRanOut) throw std::bad_alloc();
    matches.unlisted = std::exchange(noted, {});
    std::sort(matches.names.begin(), matches.names.end());
    return matches;
}

bool matches(const std::string& pattern, const std::string& fileName) {
    FileIO patternName(pattern, true, false);
    FileIO name(fileName, true, false);
    std::error_code ignored;  // what is not there holds no such file
    return std::filesystem::equivalent(patternName.getPath(), name.getPath(), ignored) &&
           ::fnmatch(patternName.getBaseName().c_str(), name.getBaseName().c_str(), FNM_PERIOD) ==
               0;
}

}  // namespace zarn
