/// Reading files and standard input whole, and writing.
///
/// The programs' inputs are read here rather than through `FileIO`, which sets permission bits on
/// what it opens and ends a chunk at a NUL byte: an archive's sources stay untouched, and lists may
/// be separated by NUL.
#ifndef ZARN_PROGRAMS_READING_H
#define ZARN_PROGRAMS_READING_H

#include <string>

/// Owns a descriptor.
class Descriptor {
public:
    explicit Descriptor(int fd) : fd_(fd) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor();

    int get() const { return fd_; }

private:
    int fd_;
};

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
