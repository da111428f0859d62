/// CFITSIO's words for messages, its reading of values, and a handle that cleans up after itself.
#ifndef ZARN_INGEST_FITS_H
#define ZARN_INGEST_FITS_H

#include <zarnsys/util/FitsUtils.h>

#include <stdexcept>
#include <string>

namespace zarn::ingest {

/// "CFITSIO status 207: illegal character in keyword"
std::string statusText(int status);

/// A file that CFITSIO cannot create, write, read or hold in memory, whatever its header.
class FitsFileError : public std::runtime_error {
public:
    FitsFileError(const std::string& text, int status)
        : std::runtime_error(text), status_(status) {}

    int status() const { return status_; }

private:
    int status_;
};

/// Makes sure that a call of CFITSIO succeeded.
///
/// @param action  what could not be done otherwise, for the message
/// @throw FitsFileError  for a status of files
/// @throw IngestError    for one of headers
void check(int status, const std::string& action);

/// A card's value as text, a string in its quotes; empty where there is none that CFITSIO can read.
std::string valueOf(std::string card);

/// An open FITS file. One that is still open at the end is given up: its header is made to describe
/// no data first, since CFITSIO would otherwise write that much while closing.
class FitsHandle {
public:
    FitsHandle() = default;
    FitsHandle(const FitsHandle&) = delete;
    FitsHandle& operator=(const FitsHandle&) = delete;
    ~FitsHandle();

    FitsFile** receive() { return &file_; }
    FitsFile*& get() { return file_; }
    int close();  ///< CFITSIO status

private:
    FitsFile* file_ = nullptr;
};

}  // namespace zarn::ingest

#endif  // ZARN_INGEST_FITS_H
