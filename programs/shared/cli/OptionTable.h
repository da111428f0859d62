/// A program's options as a table, from which the parser and the help are made.
#ifndef ZARN_PROGRAMS_OPTIONTABLE_H
#define ZARN_PROGRAMS_OPTIONTABLE_H

#include <zarnsys/util/GenConfig.h>

#include <string>
#include <vector>

/// One option; without an argument it is a flag.
struct OptionRow {
    const char* name;
    char shortName;  ///< GenConfig::NO_SHORT_NAME: none
    const char* argument;
    const char* help;
    const char* defaultValue;
};

class OptionTable : public GenConfig {
public:
    /// @param arguments  the process's arguments, its name first
    /// @param rows       the program's options, which must outlive the object
    OptionTable(std::vector<const char*> arguments, const std::vector<OptionRow>& rows);

    /// What bash needs to complete the program's options, and those of their values that are a
    /// choice of words ("table|csv|json"), a directory ("DIR") or a file ("FILE").
    std::string bashCompletion(const std::string& program) const;

protected:
    bool given(const std::string& option) const;

    /// The values of an option, one per occurrence.
    const ValueVect& values(const std::string& option) const;

    /// The last value of an option that was given.
    const std::string& value(const std::string& option) const { return values(option).back(); }

private:
    const std::vector<OptionRow>& rows_;
};

#endif  // ZARN_PROGRAMS_OPTIONTABLE_H
