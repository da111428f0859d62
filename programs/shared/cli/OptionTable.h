/// A program's options as a table, from which parser, help and completion are made.
#ifndef ZARN_PROGRAMS_OPTIONTABLE_H
#define ZARN_PROGRAMS_OPTIONTABLE_H

#include <zarnsys/util/GenConfig.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "shared/cli/OptionRow.h"
#include "shared/cli/UsageError.h"

namespace zarn {

/// What is wrong with an option's value.
///
/// @param error  a WrongValue, which says what the value must be, or a text that quotes the value
UsageError wrongOption(const std::string& option, const std::invalid_argument& error,
                       const std::string& value);

/// Parser, help and completion of a table of options.
class OptionTable : public GenConfig {
public:
    /// @param arguments  the process's arguments, its name first
    OptionTable(std::vector<const char*> arguments, std::vector<OptionRow> rows);

    /// Writes the help of the options to standard output, without the heading of mandatory ones
    /// where there is none.
    void displayOptions() const;

    /// The script for the shell that the options ask for; empty: they ask for none.
    std::string completion(const std::string& program) const;

protected:
    bool given(const std::string& option) const;

    /// The values of an option, one per occurrence.
    const ValueVect& values(const std::string& option) const;

private:
    std::vector<OptionRow> rows_;
};

}  // namespace zarn

#endif  // ZARN_PROGRAMS_OPTIONTABLE_H
