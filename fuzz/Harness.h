/// What the fuzzers have in common. Each defines `tryInput`; an exception that leaves it, and a
/// promise that is not kept, end the process, and libFuzzer keeps the input.
#ifndef FUZZ_HARNESS_H
#define FUZZ_HARNESS_H

#include <string>
#include <vector>

namespace zarn {

/// Tries one input.
void tryInput(const std::string& input);

/// Ends the process unless a promise is kept, which the message names.
void require(bool isKept, const char* promise);

/// The lines of a text, NUL bytes left out: where programs and system take a C string.
std::vector<std::string> linesOf(const std::string& text);

}  // namespace zarn

#endif  // FUZZ_HARNESS_H
