/// The command line of zarn-ingest.
#ifndef ZARN_INGEST_COMMANDLINE_H
#define ZARN_INGEST_COMMANDLINE_H

#include <vector>

#include "shared/cli/SettingTable.h"
#include "zarn-ingest/settings/Settings.h"

/// Parser and help.
class CommandLine : public SettingsParser<Settings> {
public:
    /// @param arguments  the process's arguments, its name first
    explicit CommandLine(std::vector<const char*> arguments);

    /// What the command line and the properties file that it names ask for. An option wins.
    ///
    /// @throw UsageError  after the parser has logged the details, for values that are wrong, and
    ///                    for settings that exclude or lack each other
    Settings parse();

    /// Writes the options and what a user should know besides to standard output.
    void displayFullHelp() const;

private:
    void applyOptions(Settings& settings) const;
};

#endif  // ZARN_INGEST_COMMANDLINE_H
