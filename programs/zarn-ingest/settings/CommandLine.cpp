#include "zarn-ingest/settings/CommandLine.h"

#include <iostream>
#include <utility>

#include "shared/cli/UsageError.h"
#include "shared/files/Pattern.h"
#include "zarn-ingest/settings/HelpNotes.h"
#include "zarn-ingest/settings/Properties.h"
#include "zarn-ingest/settings/SettingTable.h"

namespace zarn::ingest {

namespace {

/// Refuses what a look at other runs' work cannot have, or lacks.
void checkLook(const Settings& settings) {
    const std::string look = settings.status ? "--status" : "--verify";
    if (settings.status && settings.verify)
        throw UsageError("--status and --verify exclude each other");
    if (settings.isNamed() || settings.watch || settings.retryFailed)
        throw UsageError(look + " converts nothing");
    if (settings.verify && settings.format != StatusFormat::TEXT)
        throw UsageError("--format needs --status");
    if (settings.status && settings.pattern.empty())
        throw UsageError("--status needs a properties file with a pattern");
    if (settings.verify && settings.journalDir.empty())
        throw UsageError("--verify needs a journal");
}

/// Refuses settings that exclude each other, or that need others.
void checkTogether(const Settings& settings) {
    const bool lists = !settings.lists.empty() || settings.standardInput;
    if (settings.quiet && settings.verbose)
        throw UsageError("--quiet and --verbose exclude each other");
    if (settings.looks()) return checkLook(settings);
    if (settings.format != StatusFormat::TEXT) throw UsageError("--format needs --status");
    if (settings.nulSeparated && !lists) throw UsageError("--null needs --list or --stdin");
    if (!settings.isNamed() && settings.pattern.empty()) throw UsageError("no file to convert");
    const bool service = settings.isService();
    if (settings.watch && !service)
        throw UsageError("--watch takes its files only from the pattern of a properties file");
    if (service && matches(settings.pattern, settings.logFile))
        throw UsageError("the log " + settings.logFile + " would be taken for a header text");
    if (service && matches(settings.pattern, settings.report))
        throw UsageError("the report " + settings.report + " would be taken for a header text");
    if (settings.watch && (settings.doneDir.empty() || settings.failedDir.empty()))
        throw UsageError(
            "--watch needs the properties done and failed, which say where sources go");
    if (settings.shard.isPart() && service)
        throw UsageError("--shard needs files that are named by arguments, --list or --stdin");
    if (settings.retryFailed && (!service || settings.failedDir.empty()))
        throw UsageError("--retry-failed needs the properties pattern and failed");
}

}  // namespace

CommandLine::CommandLine(std::vector<const char*> arguments)
    : SettingsParser(std::move(arguments), SETTINGS) {
    optionMap_[NON_OPTIONAL_ARG] = {
        NO_LETTER, "[FILE|PATTERN...]", false, false, "Header text files, or patterns for them",
        ""};
}

/// Puts the options into the settings, over what the properties file has set.
void CommandLine::applyOptions(Settings& settings) const {
    settings.arguments = argumentVect_;
    readOptions(settings);
    // An option overrides the property that would forbid it.
    if (given("verbose") && !given("quiet")) settings.quiet = false;
    if (given("quiet") && !given("verbose")) settings.verbose = false;
    const bool files = !argumentVect_.empty() || given("list") || given("stdin");
    const bool once = files || given("dry-run") || settings.looks();
    if (once && !given("watch")) settings.watch = false;
    if (once && !given("retry-failed")) settings.retryFailed = false;
    if (files && !given("journal")) settings.journalDir.clear();  // that one is for the service
}

Settings CommandLine::parse() {
    if (parseCommandLine(true) != 0) throw UsageError("the command line is wrong");
    Settings settings;
    applyOptions(settings);
    if (settings.help || settings.version || settings.completion) return settings;
    // A look converts nothing: a file beside it can only be that of the properties.
    if (settings.looks() && settings.properties.empty() && argumentVect_.size() == 1)
        settings.properties = std::exchange(argumentVect_, {}).front();
    if (!settings.properties.empty()) {
        settings = readProperties(settings.properties);
        applyOptions(settings);
    }
    checkTogether(settings);
    return settings;
}

void CommandLine::displayFullHelp() const {
    displayOptions();
    std::cout << HELP_NOTES << std::flush;
}

}  // namespace zarn::ingest
