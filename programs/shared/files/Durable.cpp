#include "shared/files/Durable.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "shared/files/Reading.h"
#include "shared/files/SystemError.h"

namespace zarn {

bool renameToNew(const std::string& from, const std::string& to) {
    return renameToNew(AT_FDCWD, from, AT_FDCWD, to);
}

bool renameToNew(int fromDirectory, const std::string& from, int toDirectory,
                 const std::string& to) {
    const char* source = from.c_str();
    const char* target = to.c_str();
    if (::renameat2(fromDirectory, source, toDirectory, target, RENAME_NOREPLACE) == 0) return true;
    if (errno != EINVAL && errno != ENOSYS) return false;
    // A file system without this kind of renaming has links: a link replaces nothing either.
    return ::linkat(fromDirectory, source, toDirectory, target, 0) == 0 &&
           ::unlinkat(fromDirectory, source, 0) == 0;
}

void syncToDisk(const std::string& path) {
    const Descriptor file = openForReading(path);
    if (::fsync(file.get()) != 0) throwSystemError(path + " cannot be made safe on disk");
}

}  // namespace zarn
