#include "shared/files/Reading.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>

#include "shared/files/SystemError.h"

namespace zarn {

namespace {

constexpr std::size_t CHUNK = 65536;  // bytes per read call

Descriptor openOrThrow(const std::string& fileName, int flags) {
    Descriptor file(::open(fileName.c_str(), flags));
    if (file.get() == -1) throwSystemError();
    return file;
}

std::string readAll(int fd) {
    std::string bytes;
    while (readChunk(fd, bytes)) {
    }
    return bytes;
}

}  // namespace

Descriptor::~Descriptor() {
    if (fd_ != -1) ::close(fd_);
}

std::string descriptorPath(int fd) { return "/proc/self/fd/" + std::to_string(fd); }

Descriptor openForReading(const std::string& fileName) {
    return openOrThrow(fileName, O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
}

void rewind(int fd) { ::lseek(fd, 0, SEEK_SET); }

bool readChunk(int fd, std::string& bytes) {
    std::array<char, CHUNK> chunk;
    const ssize_t count = ::read(fd, chunk.data(), chunk.size());
    if (count == -1 && (errno == EAGAIN || errno == EINTR)) return true;
    if (count == -1) throwSystemError();
    bytes.append(chunk.data(), static_cast<std::size_t>(count));
    return count > 0;
}

std::string readFile(const std::string& fileName) {
    return readAll(openForReading(fileName).get());
}

std::string readFileOrPipe(const std::string& fileName) {
    return readAll(openOrThrow(fileName, O_RDONLY | O_CLOEXEC | O_NOCTTY).get());
}

std::string readStandardInput() { return readAll(STDIN_FILENO); }

void writeAll(int fd, const std::string& bytes) {
    for (std::size_t done = 0; done < bytes.size();) {
        const ssize_t count = ::write(fd, bytes.data() + done, bytes.size() - done);
        if (count == -1 && errno != EINTR) throwSystemError();
        if (count > 0) done += static_cast<std::size_t>(count);
    }
}

}  // namespace zarn
