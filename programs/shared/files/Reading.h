/// Reading files and standard input whole, and writing.
///
/// The programs' inputs are read here rather than through `FileIO`, which sets permission bits on
/// what it opens and ends a chunk at a NUL byte: an archive's sources stay untouched, and lists may
/// be separated by NUL.
#ifndef ZARN_PROGRAMS_READING_H
#define ZARN_PROGRAMS_READING_H

#include <string>
#include <utility>

/// Owns a descriptor, which it closes at its end; -1 stands for none.
class Descriptor {
public:
    explicit Descriptor(int fd) : fd_(fd) {}
    Descriptor(Descriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(fd_, other.fd_);
        return *this;
    }
    ~Descriptor();

    int get() const { return fd_; }

private:
    int fd_;
};

/// A path that leads to what a descriptor of this process is open for, whatever its name is by now.
/// It holds no character to which CFITSIO or a shell gives a meaning.
std::string descriptorPath(int fd);

/// Opens a file for reading, a pipe without waiting for its writer.
///
/// @throw std::system_error  when it cannot be opened
int openForReading(const std::string& fileName);

/// Appends what one read call gives, which can be nothing yet; false at the end.
///
/// @throw std::system_error  when reading fails
bool readChunk(int fd, std::string& bytes);

/// All bytes of a file; a pipe without writer is empty.
///
/// @throw std::system_error  when it cannot be opened or read
std::string readFile(const std::string& fileName);

/// The same, but waits for what a pipe's writer has to say.
std::string readFileOrPipe(const std::string& fileName);

/// Writes all of `bytes`.
///
/// @throw std::system_error  when writing fails
void writeAll(int fd, const std::string& bytes);

#endif  // ZARN_PROGRAMS_READING_H
