/// The command line of zarn-ingest.
#ifndef ZARN_INGEST_COMMANDLINE_H
#define ZARN_INGEST_COMMANDLINE_H

#include <vector>

#include "shared/cli/SettingTable.h"
#include "zarn-ingest/settings/Settings.h"

namespace zarn::ingest {

/// Parser and help.
class CommandLine : public SettingsParser<Settings> {
public:
    /// @param arguments  the process's arguments, its name first
    explicit CommandLine(std::vector<const char*> arguments);

    /// What the command line and the properties file that it names ask for. Options override
    /// properties.
    ///
    /// @throw UsageError  for a wrong value, and for settings that exclude or need each other; or
    ///                    after the parser has logged what is wrong
    Settings parse();

    /// Writes the help to standard output: the options, and notes on how to use them.
    void displayFullHelp() const;

private:
    void applyOptions(Settings& settings) const;
};

}  // namespace zarn::ingest

#endif  // ZARN_INGEST_COMMANDLINE_H
