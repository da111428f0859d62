/// A file of lines that others read while it grows.
#ifndef ZARN_INGEST_LINEFILE_H
#define ZARN_INGEST_LINEFILE_H

#include <string>

#include "shared/files/Reading.h"

namespace zarn::ingest {

/// Cuts off what follows the last whole line of a file: a crash tore it.
///
/// @throw std::exception  when the file cannot be read or cut
void mendLastLine(const std::string& fileName);

/// Appends whole lines, safe on disk before `add` returns. Not for several threads or processes at
/// once: the owner keeps a lock.
class LineFile {
public:
    explicit LineFile(std::string fileName) : name_(std::move(fileName)) {}

    /// Appends lines to the file that has the name now: one that was removed is made anew, and a
    /// torn last line is cut off first.
    ///
    /// @param lines  each with its newline; empty: does nothing
    /// @throw std::exception  when they cannot be written; no part of them stays then
    void add(const std::string& lines);

private:
    bool put(const std::string& lines);
    bool isOpen() const;
    void open();

    std::string name_;
    Descriptor file_{-1};
};

}  // namespace zarn::ingest

#endif  // ZARN_INGEST_LINEFILE_H
