#include "zarn-ingest/settings/CommandLine.h"

#include <iostream>
#include <stdexcept>
#include <utility>

#include "shared/cli/UsageError.h"
#include "shared/files/Pattern.h"
#include "shared/sky/Telescopes.h"
#include "zarn-ingest/settings/Properties.h"

namespace {

constexpr char NONE = GenConfig::NO_SHORT_NAME;

const std::vector<OptionRow> OPTIONS = {
    {"bash-completion", NONE, "", "Write a completion script for bash", ""},
    {"checksum", 'c', "", "Add DATASUM and CHECKSUM to each result", ""},
    {"dry-run", 'n', "", "Say what would be done, and do nothing", ""},
    {"force", 'f', "", "Replace results that exist", ""},
    {"help", 'h', "", "Show this help", ""},
    {"journal", 'j', "DIR", "Tell of each file in a journal there, created when missing", ""},
    {"list", 'l', "FILE", "Convert the files named in FILE, one name a line; may be repeated", ""},
    {"moon", 'm', "TELESCOPE", "Add where the moon stood, seen from there; see below", ""},
    {"null", '0', "", "Names in lists and on standard input end in NUL (short: -0)", ""},
    {"output-dir", 'o', "DIR", "Directory of the results, created when missing (one level)",
     ". (the current directory)"},
    {"primary-only", NONE, "", "Convert the first header of each text alone", ""},
    {"properties", 'p', "FILE", "Take settings from a properties file; options win", ""},
    {"quiet", 'q', "", "Report errors only, without warnings and summary", ""},
    {"report", NONE, "FILE", "Append a JSON line for each input to FILE", ""},
    {"resume", 'r', "", "Count results that are there already from the same text as converted", ""},
    {"retry-failed", NONE, "", "Put the files that failed back to where new ones arrive", ""},
    {"shard", 's', "I/N", "Convert the I-th of N shares of the files, I from 1 to N; see below",
     ""},
    {"stdin", NONE, "", "Convert the files named on standard input", ""},
    {"strict", NONE, "", "Refuse headers that need a repair", ""},
    {"verbose", 'v', "", "Report each file, and the library's own log lines below ERROR", ""},
    {"version", 'V', "", "Show the versions of the program and its libraries", ""},
    {"watch", 'w', "", "Look for new files again and again, until Ctrl-C or SIGTERM", ""},
};

const struct {
    const char* name;
    bool Settings::*flag;
} FLAGS[] = {
    {"bash-completion", &Settings::bashCompletion},
    {"checksum", &Settings::checksum},
    {"dry-run", &Settings::dryRun},
    {"force", &Settings::overwrite},
    {"help", &Settings::help},
    {"null", &Settings::nulSeparated},
    {"primary-only", &Settings::primaryOnly},
    {"quiet", &Settings::quiet},
    {"strict", &Settings::strict},
    {"stdin", &Settings::standardInput},
    {"resume", &Settings::resume},
    {"retry-failed", &Settings::retryFailed},
    {"verbose", &Settings::verbose},
    {"version", &Settings::version},
    {"watch", &Settings::watch},
};

const char NOTES[] = R"(
Each line of a header text file becomes one card of a FITS file that holds this
header and no data; a text of several headers gives as many HDUs. The result of
dir/name.ext is DIR/name.fits: it appears when it is complete and can be read, or
not at all. Nothing else is touched.

  zarn-ingest -o fits night1/*.hdr
  zarn-ingest -o fits 'night1/*.hdr'                    (more names than fit a line)
  find . -name '*.hdr' -print0 | zarn-ingest -o fits --stdin --null
  zarn-ingest -p ingest.ini --watch                               (as a service)

An argument that names an existing file is that file; any other is expanded as a
shell pattern. Names from lists are never patterns. A name that begins with a
dash is written ./-name.hdr; so is a directory or list for an option. Flags take
no value: --force=no is --force.

What does not meet the FITS standard is repaired without losing a card, and each
repair is told by its word: preamble, columns, characters, keyword, value, long,
axes, mandatory or extensions (the manual describes them). --strict refuses such
headers. --report writes of each input what became of it.

--moon adds MOONALT, MOONAZ, MOONDIST, MOONFLI and MOONPHAS to headers that have
RA and DEC, in degrees or as '05:35:17.3', and MJD-OBS or DATE-OBS, or the day
there and the time in TIME-OBS, UT or the like, in universal time. Others are
converted without, and counted. A keyword of these names that a header has already
is kept.

--resume goes on where a run was killed, and repeats any other: a result that
holds the same cards already counts as converted, and each result is safe on
disk before the next file. The service always works so.

--shard 3/8 converts the third of every eight files. The other shares are other
runs', which name the same files in the same order: each run sees all names, so
that two files with one result are noticed as in a single run, and no result
replaces a source.

--journal adds a line per file to DIR/zarn-ingest-DATE.journal: local time,
seconds since the epoch, source, result, converted or failed, number of cards in
the source, size of the result in bytes, identity of the source; separated by
tabs. The identity, as "stat -c %i-%.9Z" shows it, is how a later run knows a
file that was told of already. One run at a time writes into a directory.

What the machine is to blame for, a full disk, a directory that is gone, a file
that cannot be read, is no header's fault: the service leaves such a source where
it is, says once what is the matter, and goes on by itself. The directory of the
failed files holds beside each x.hdr the reason, x.hdr.reason.

Messages read "zarn-ingest: FILE:LINE: text", lines counted from 1.

Exit status: 0 every file was converted, with warnings or not; 1 some were not;
2 wrong usage; 130, 143 or 129 stopped by Ctrl-C, SIGTERM or SIGHUP, after the
file in hand was finished (the same one again ends the program at once). With
--watch Ctrl-C and SIGTERM are the ordinary end, with status 0.
)";

/// What an option's value means.
template <typename Read>
auto meaning(const std::string& option, const std::string& value, Read read) {
    try {
        return read(value);
    } catch (const std::invalid_argument& error) {
        throw UsageError("option --" + option + ": " + error.what());
    }
}

/// Settings that exclude or lack each other.
void checkTogether(const Settings& settings) {
    const bool lists = !settings.lists.empty() || settings.standardInput;
    if (settings.quiet && settings.verbose)
        throw UsageError("--quiet and --verbose exclude each other");
    if (settings.nulSeparated && !lists) throw UsageError("--null needs --list or --stdin");
    if (!settings.isNamed() && settings.pattern.empty()) throw UsageError("no file to convert");
    const bool service = settings.isService();
    if (settings.watch && !service)
        throw UsageError("--watch takes its files from the pattern of a properties file alone");
    if (service && matches(settings.pattern, settings.logFile))
        throw UsageError("the log " + settings.logFile + " would be taken for a header text");
    if (service && matches(settings.pattern, settings.report))
        throw UsageError("the report " + settings.report + " would be taken for a header text");
    if (settings.watch && (settings.doneDir.empty() || settings.failedDir.empty()))
        throw UsageError("--watch needs the properties done and failed: where sources go");
    if (settings.shard.isPart() && service)
        throw UsageError("--shard needs files that are named, by arguments, --list or --stdin");
    if (settings.retryFailed && (!service || settings.failedDir.empty()))
        throw UsageError("--retry-failed needs the properties pattern and failed");
}

}  // namespace

CommandLine::CommandLine(std::vector<const char*> arguments)
    : OptionTable(std::move(arguments), OPTIONS) {
    optionMap_[NON_OPTIONAL_ARG] = {
        NONE, "[FILE|PATTERN...]", false, false, "Header text files, and patterns of their names",
        ""};
}

std::string CommandLine::nameOption(const std::string& option) const {
    if (value(option).empty()) throw UsageError("option --" + option + ": the name is empty");
    return value(option);
}

void CommandLine::applyOptions(Settings& settings) const {
    settings.arguments = argumentVect_;
    if (given("list")) settings.lists = values("list");
    if (given("output-dir")) settings.outputDir = nameOption("output-dir");
    if (given("report")) settings.report = nameOption("report");
    if (given("journal")) settings.journalDir = nameOption("journal");
    if (given("moon")) settings.moon = meaning("moon", value("moon"), telescopeOf);
    if (given("shard")) settings.shard = meaning("shard", value("shard"), shardOf);
    for (const auto& [name, flag] : FLAGS) {
        if (given(name)) settings.*flag = true;
    }
    // An option wins over the property that would forbid it.
    if (given("verbose") && !given("quiet")) settings.quiet = false;
    if (given("quiet") && !given("verbose")) settings.verbose = false;
    const bool files = !argumentVect_.empty() || given("list") || given("stdin");
    if ((files || given("dry-run")) && !given("watch")) settings.watch = false;
    if ((files || given("dry-run")) && !given("retry-failed")) settings.retryFailed = false;
    if (files && !given("journal")) settings.journalDir.clear();  // it is the service's
}

Settings CommandLine::parse() {
    if (parseCommandLine(true) != 0) throw UsageError("the command line is wrong");
    Settings settings;
    applyOptions(settings);
    if (settings.help || settings.version || settings.bashCompletion) return settings;
    if (given("properties")) {
        settings = readProperties(value("properties"));
        applyOptions(settings);
    }
    checkTogether(settings);
    return settings;
}

void CommandLine::displayFullHelp() const {
    displayHelp();
    std::cout << NOTES << "\nTelescopes: " << telescopeNames() << ".\n" << std::flush;
}
