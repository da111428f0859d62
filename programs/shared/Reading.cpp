#include "Reading.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>

namespace {

constexpr std::size_t CHUNK = 65536;  // bytes per read call

[[noreturn]] void fail() { throw std::system_error(errno, std::generic_category()); }

}  // namespace

Descriptor::~Descriptor() {
    if (fd_ != -1) ::close(fd_);
}

int openForReading(const std::string& fileName) {
    const int fd = ::open(fileName.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
    if (fd == -1) fail();
    return fd;
}

bool readChunk(int fd, std::string& bytes) {
    std::array<char, CHUNK> chunk;
    const ssize_t count = ::read(fd, chunk.data(), chunk.size());
    if (count == -1 && (errno == EAGAIN || errno == EINTR)) return true;
    if (count == -1) fail();
    bytes.append(chunk.data(), static_cast<std::size_t>(count));
    return count > 0;
}

std::string readFile(const std::string& fileName) {
    const Descriptor file(openForReading(fileName));
    std::string bytes;
    while (readChunk(file.get(), bytes)) {
    }
    return bytes;
}
