/// What became of one input.
#ifndef ZARN_INGEST_OUTCOME_H
#define ZARN_INGEST_OUTCOME_H

#include <cstddef>
#include <cstdint>
#include <string>

#include "zarn-ingest/header/HeaderText.h"
#include "zarn-ingest/header/moon/MoonCards.h"

namespace zarn::ingest {

/// What became of an input, and all that there is to tell of it.
struct Outcome {
    enum class Status {
        CONVERTED,
        FAILED,   ///< the header or its name is at fault
        WAITS,    ///< this input cannot be converted at present
        STOPPED,  ///< no input can be converted at present
    };

    Status status = Status::FAILED;
    std::string result;       ///< path; of a failed file: where it would have been
    std::size_t cards = 0;    ///< in the text as it came, without END and what the program adds
    std::size_t hdus = 0;     ///< headers of the result
    std::uintmax_t size = 0;  ///< of the result [bytes]
    std::string problem;      ///< why it was not converted; empty: it was
    std::size_t line = 0;     ///< to which the problem belongs, counted from 1; 0: to the whole
    int fitsStatus = 0;       ///< CFITSIO's word for the problem; 0: it has none
    Repairs repairs;          ///< that the text needed
    Notes notes;              ///< what the text had that needed none
    MoonCards moon;           ///< of the converted text

    bool converted() const { return status == Status::CONVERTED; }

    /// Whether the input is done with: another try would end the same way.
    bool isFinal() const { return status == Status::CONVERTED || status == Status::FAILED; }
};

}  // namespace zarn::ingest

#endif  // ZARN_INGEST_OUTCOME_H
