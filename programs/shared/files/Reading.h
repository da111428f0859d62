/// Reading files and standard input whole, and writing.
///
/// The programs' inputs are read here rather than through `FileIO`, which sets permission bits on
/// what it opens and ends a chunk at a NUL byte: an archive's sources stay untouched, and lists may
/// be separated by NUL.
#ifndef ZARN_PROGRAMS_READING_H
#define ZARN_PROGRAMS_READING_H

#include <string>
#include <utility>

namespace zarn {

/// Owns a file descriptor and closes it when destroyed. A move hands it on; -1 stands for none.
class Descriptor {
public:
    explicit Descriptor(int fd) : fd_(fd) {}
    Descriptor(Descriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(fd_, other.fd_);  // the other one closes what was held here
        return *this;
    }
    ~Descriptor();

    /// The descriptor itself, for a system call. It stays this object's.
    int get() const { return fd_; }

private:
    int fd_;
};

/// A path to the file that a descriptor of this process has open, whatever its name is by now. It
/// has no characters with a special meaning to CFITSIO or a shell.
std::string descriptorPath(int fd);

/// Opens a file for reading. It does not wait for the writer of a pipe.
///
/// @throw std::system_error  when it cannot be opened
Descriptor openForReading(const std::string& fileName);

/// Goes back to a file's beginning, for all who share the descriptor's position.
void rewind(int fd);

/// Appends what one read call gives, perhaps nothing yet. False at the end of the file.
///
/// @throw std::system_error  when reading fails
[[nodiscard]] bool readChunk(int fd, std::string& bytes);

/// All bytes of a file. A pipe without a writer is empty.
///
/// @throw std::system_error  when it cannot be opened or read
std::string readFile(const std::string& fileName);

/// The same, but waits until the writer of a pipe closes it.
std::string readFileOrPipe(const std::string& fileName);

/// All bytes of standard input.
///
/// @throw std::system_error  when it cannot be read
std::string readStandardInput();

/// Writes all of `bytes`.
///
/// @throw std::system_error  when writing fails
void writeAll(int fd, const std::string& bytes);

}  // namespace zarn

#endif  // ZARN_PROGRAMS_READING_H
