/// A row of a program's table of options.
#ifndef ZARN_PROGRAMS_OPTIONROW_H
#define ZARN_PROGRAMS_OPTIONROW_H

#include <zarnsys/util/GenConfig.h>

#include <string>

namespace zarn {

/// One option; without an argument it is a flag.
struct OptionRow {
    std::string name;
    char letter;  ///< GenConfig::NO_SHORT_NAME: none
    std::string argument;
    std::string help;
    std::string defaultText;  ///< for the help; empty: none is shown

    bool hasLetter() const { return letter != GenConfig::NO_SHORT_NAME; }
};

}  // namespace zarn

#endif  // ZARN_PROGRAMS_OPTIONROW_H
