/// The command line of zarn-moon.
#ifndef ZARN_MOON_COMMANDLINE_H
#define ZARN_MOON_COMMANDLINE_H

#include <string>
#include <vector>

#include "shared/cli/SettingTable.h"
#include "zarn-moon/settings/DashedValues.h"
#include "zarn-moon/settings/Settings.h"

namespace zarn::moon {

/// Parser and help.
class CommandLine : public SettingsParser<Settings> {
public:
    /// @param arguments  the process's arguments, its name first
    explicit CommandLine(const std::vector<const char*>& arguments);

    /// What the command line asks for, checked.
    ///
    /// @param now  the present instant [MJD]: without a date, tonight is meant
    /// @throw UsageError  naming option and value; or after the parser has logged what is wrong
    Settings parse(double now);

    /// Writes the help to standard output: the options, and notes on how to use them.
    ///
    /// @param ruleOfWords  by which a night is called dark, grey or bright
    void displayFullHelp(const std::string& ruleOfWords) const;

private:
    explicit CommandLine(const ParsableArguments& arguments);

    void parseWords();
    void checkTogether() const;
    void checkWithoutTarget() const;

    std::string problem_;  ///< of a value that begins with a dash; empty: none
};

}  // namespace zarn::moon

#endif  // ZARN_MOON_COMMANDLINE_H
