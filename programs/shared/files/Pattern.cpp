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
#include <utility>

namespace zarn {

namespace {

// `glob` gives its callbacks no context, so they note here what it would pass over in silence.
thread_local std::vector<Unlisted> noted;

/// A directory that `glob` is listing. Owned by `glob` between openListing and closeListing.
struct Listing {
    std::string name;
    DIR* stream;
};

/// Notes a directory with the error in `errno`.
void note(const std::string& directory) {
    if (errno != ENOTDIR) noted.push_back({directory, {errno, std::generic_category()}});
}

void* openListing(const char* name) {
    DIR* stream = ::opendir(name);
    if (stream == nullptr) note(name);
    return stream == nullptr ? nullptr : new Listing{name, stream};
}

dirent* readListing(void* opened) {
    const auto* listing = static_cast<Listing*>(opened);
    errno = 0;
    dirent* entry = ::readdir(listing->stream);
    if (entry == nullptr && errno != 0) note(listing->name);
    return entry;
}

void closeListing(void* opened) {
    const std::unique_ptr<Listing> listing(static_cast<Listing*>(opened));
    ::closedir(listing->stream);
}

/// Reads the state of a name, and notes the directory if that is not allowed.
int lookAt(int (*look)(const char*, struct stat*), const char* name, struct stat* status) {
    const int result = look(name, status);
    if (result == 0 || errno == ENOENT) return result;
    const std::string path = name;
    note(path.substr(0, path.rfind('/')));
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
        // Names and notes say all that the result code does.
        static_cast<void>(::glob(pattern.c_str(), GLOB_NOSORT | GLOB_ALTDIRFUNC, nullptr, &glob_));
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
    Matches matches;
    matches.names = Expansion(pattern).names();
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
