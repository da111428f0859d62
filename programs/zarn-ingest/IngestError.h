/// Why one input is not converted.
#ifndef ZARN_INGEST_INGESTERROR_H
#define ZARN_INGEST_INGESTERROR_H

#include <cstddef>
#include <stdexcept>
#include <string>

class IngestError : public std::runtime_error {
public:
    /// @param text  the reason, for the operator
    /// @param line  line of the header text, counted from 1; 0: the file as a whole
    explicit IngestError(const std::string& text, std::size_t line = 0)
        : std::runtime_error(text), line_(line) {}

    std::size_t line() const { return line_; }

private:
    std::size_t line_;
};

#endif  // ZARN_INGEST_INGESTERROR_H
