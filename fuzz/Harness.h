/// What the fuzzers have in common. Each defines `tryInput`; an exception that leaves it, and a
/// promise that is not kept, end the process, and libFuzzer keeps the input.
#ifndef FUZZ_HARNESS_H
#define FUZZ_HARNESS_H

#include <string>
#include <vector>

#include "shared/cli/UsageError.h"

namespace zarn {

/// Tries one input.
void tryInput(const std::string& input);

/// Ends the process unless a promise is kept, which the message names.
void require(bool isKept, const char* promise);

/// Requires that a number lies in its range, as not-a-number does not.
void requireWithin(double number, double least, double most);

/// Runs an action that may refuse its input by an exception, whose message has one line.
template <typename Refusal = UsageError, typename Action>
void tryOrRefuse(Action action) {
    try {
        action();
    } catch (Refusal& refusal) {  // what() of ZarnSysEx is not const
        const std::string message = refusal.what();
        require(message.find('\n') == std::string::npos, "messages have one line");
    }
}

/// Empties the library's one object for properties, which keeps what was loaded before.
void renewProperties();

/// The lines of a text, NUL bytes left out: where programs and system take a C string.
std::vector<std::string> linesOf(const std::string& text);

}  // namespace zarn

#endif  // FUZZ_HARNESS_H
