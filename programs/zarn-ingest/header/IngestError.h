/// Why an input is not converted: for a reason of its own, or of the machine's.
///
/// The difference decides what becomes of a source that arrived: one whose header is at fault is
/// put aside, all others wait until the fault is mended.
#ifndef ZARN_INGEST_INGESTERROR_H
#define ZARN_INGEST_INGESTERROR_H

#include <cstddef>
#include <stdexcept>
#include <string>

namespace zarn::ingest {

/// The header, or the name that it came under, gives no result: trying again would not help.
class IngestError : public std::runtime_error {
public:
    /// @param text    the reason, for the operator
    /// @param line    line of the header text, counted from 1; 0: the file as a whole
    /// @param status  CFITSIO's, or 0
    explicit IngestError(const std::string& text, std::size_t line = 0, int status = 0)
        : std::runtime_error(text), line_(line), status_(status) {}

    std::size_t line() const { return line_; }
    int status() const { return status_; }

private:
    std::size_t line_;
    int status_;
};

/// This input cannot be converted at present; others perhaps can.
class InputWaits : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// No input can be converted at present. The text names what is broken, and no input, so that it is
/// the same for all of them.
class WorkStops : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}  // namespace zarn::ingest

#endif  // ZARN_INGEST_INGESTERROR_H
