/// Option values that begin with a dash, which the library's parser takes for options.
#ifndef ZARN_MOON_DASHEDVALUES_H
#define ZARN_MOON_DASHEDVALUES_H

#include <string>
#include <vector>

#include "shared/cli/OptionRow.h"

namespace zarn::moon {

/// A command line that the parser takes.
struct ParsableArguments {
    std::vector<std::string> words;  ///< the values that begin with a dash marked
    std::string problem;             ///< why there is none; empty: there is
};

/// Marks the values that begin with a dash and must be values: those after an equals sign, a dash
/// alone, and numbers. Any other word that begins with a dash is an option, even where a value is
/// due; then `problem` names the option that lacks it and says how to write such a value.
ParsableArguments markDashes(const std::vector<const char*>& arguments,
                             const std::vector<OptionRow>& rows);

/// The value as it was given.
std::string unmarked(const std::string& value);

}  // namespace zarn::moon

#endif  // ZARN_MOON_DASHEDVALUES_H
