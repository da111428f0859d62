#include "shared/files/MemoryFile.h"

#include <sys/mman.h>
#include <unistd.h>

#include "shared/files/SystemError.h"

namespace zarn {

MemoryFile::MemoryFile(const std::string& content) : file_(::memfd_create("text", MFD_CLOEXEC)) {
    if (file_.get() == -1) throwSystemError("no file in memory");
    writeAll(file_.get(), content);
    rewind(file_.get());
}

void MemoryFile::replace(const std::string& content) {
    rewind(file_.get());
    writeAll(file_.get(), content);
    if (::ftruncate(file_.get(), static_cast<off_t>(content.size())) != 0)
        throwSystemError("no file in memory");
}

std::string MemoryFile::content() const {
    rewind(file_.get());
    std::string bytes;
    while (readChunk(file_.get(), bytes)) {
    }
    return bytes;
}

}  // namespace zarn
