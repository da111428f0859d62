/// The command line of zarn-moon.
#ifndef ZARN_MOON_COMMANDLINE_H
#define ZARN_MOON_COMMANDLINE_H

#include <vector>

#include "shared/cli/OptionTable.h"
#include "zarn-moon/settings/Settings.h"

/// Parser and help.
class CommandLine : public OptionTable {
public:
    /// @param arguments  the process's arguments, its name first
    explicit CommandLine(std::vector<const char*> arguments);

    /// What the command line asks for.
    ///
    /// @param now  the present instant [MJD], for the night that is meant when none is named
    /// @throw UsageError  naming option and value, or after the parser has logged the details
    Settings parse(double now);

    /// Writes the options and what a user should know besides to standard output.
    ///
    /// @param ruleOfWords  by which a night is called dark, grey or bright
    void displayFullHelp(const std::string& ruleOfWords) const;

private:
    void parseSite(Settings& settings) const;
    void parseTargets(Settings& settings) const;
    void parseTimes(Settings& settings, double now) const;
    void parseResults(Settings& settings) const;
    void checkTogether() const;
    double number(const char* option, double least, double most) const;
};

#endif  // ZARN_MOON_COMMANDLINE_H
