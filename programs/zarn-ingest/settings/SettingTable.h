/// Every setting of zarn-ingest: its options and properties.
///
/// A new one is a row here, a member of Settings that its row names, and a paragraph in the manual;
/// a property has a line in the sample properties file as well.
#ifndef ZARN_INGEST_SETTINGTABLE_H
#define ZARN_INGEST_SETTINGTABLE_H

#include <limits>
#include <string>

#include "shared/cli/SettingTable.h"
#include "shared/sky/Telescopes.h"
#include "zarn-ingest/settings/Settings.h"

namespace zarn::ingest {

/// Readers of values that have a form of their own.
void readMoon(Settings& settings, const std::string& name);
void readShard(Settings& settings, const std::string& text);
void readLogFile(Settings& settings, const std::string& name);
void readLogPriorities(Settings& settings, const std::string& words);
void readLogFlags(Settings& settings, const std::string& words);
void readLogProgram(Settings& settings, const std::string& name);

/// What their defaults are called.
std::string shownShard(const Settings& settings);
std::string shownLogProgram(const Settings& settings);

/// Sections of the properties file.
inline constexpr char INGEST[] = "ingest";
inline constexpr char SERVICE[] = "service";
inline constexpr char LOG[] = "log";

using IngestKinds = Kinds<Settings>;
inline constexpr char NO_LETTER = GenConfig::NO_SHORT_NAME;
inline constexpr unsigned MOST = std::numeric_limits<int>::max();  ///< what the log's settings hold

/// The row of a property that is not an option.
constexpr SettingRow<Settings> property(const char* section, const char* key,
                                        IngestKinds::Any member) {
    return {key, NO_LETTER, "VALUE", nullptr, member, section};
}

inline constexpr SettingRow<Settings> SETTINGS[] = {
    // Which files.
    property(INGEST, "pattern", &Settings::pattern),
    {"list", 'l', "FILE", "Convert the files named in FILE, one name per line; may be repeated",
     &Settings::lists, INGEST},
    {"stdin", NO_LETTER, "", "Convert the files named on standard input", &Settings::standardInput,
     INGEST},
    {"null", '0', "", "Names in lists and on standard input end in NUL (short: -0)",
     &Settings::nulSeparated, INGEST},
    {"shard", 's', "I/N", "Convert only the I-th of every N files, I from 1 to N; see below",
     IngestKinds::Own{readShard, shownShard}, INGEST},

    // What becomes of them.
    {"output-dir", 'o', "DIR", "Write the results to DIR, created if missing (one level)",
     &Settings::outputDir, INGEST},
    {"force", 'f', "", "Replace existing results", &Settings::force, INGEST},
    {"checksum", 'c', "", "Add DATASUM and CHECKSUM to each result", &Settings::checksum, INGEST},
    {"strict", NO_LETTER, "", "Refuse headers that need a repair", &Settings::strict, INGEST},
    {"primary-only", NO_LETTER, "", "Convert only the first header of each text",
     &Settings::primaryOnly, INGEST},
    {"moon", 'm', TELESCOPES, "Add the moon's position as seen from this telescope; see below",
     IngestKinds::Own{readMoon}, INGEST},
    {"resume", 'r', "", "Keep existing results of the same text, and count them as converted",
     &Settings::resume, INGEST},
    {"dry-run", 'n', "", "Say what would be done, and do nothing", &Settings::dryRun, INGEST},
    {"report", NO_LETTER, "FILE", "Append one JSON line per input to FILE", &Settings::report,
     INGEST},
    {"journal", 'j', "DIR", "Write one line per file to a journal in DIR, created if missing",
     &Settings::journalDir, SERVICE},

    // How the run behaves.
    {"quiet", 'q', "", "Report errors only, without warnings and summary", &Settings::quiet,
     INGEST},
    {"verbose", 'v', "", "Report every file, and show all log lines of the library",
     &Settings::verbose, INGEST},
    {"watch", 'w', "", "Keep looking for new files until Ctrl-C or SIGTERM", &Settings::watch,
     INGEST},
    {"retry-failed", NO_LETTER, "", "First move failed files back to the incoming directory",
     &Settings::retryFailed, INGEST},
    {"status", NO_LETTER, "", "Say how a service is, and do nothing; see below", &Settings::status},
    {"format", NO_LETTER, "text|json|prometheus", "Format of the status",
     choice<&Settings::format, Settings>()},
    {"verify", NO_LETTER, "", "Compare existing results with journal and sources; see below",
     &Settings::verify},
    {"properties", 'p', "FILE", "Read settings from a properties file; options override it",
     &Settings::properties},
    {"help", 'h', "", "Show this help", &Settings::help},
    {"version", 'V', "", "Show the versions of the program and its libraries", &Settings::version},
    {"bash-completion", NO_LETTER, "", "Write a completion script for bash", &Settings::completion},
    {"zsh-completion", NO_LETTER, "", "Write a completion script for zsh", &Settings::completion},
    {"fish-completion", NO_LETTER, "", "Write a completion script for fish", &Settings::completion},

    // The service.
    property(SERVICE, "done", &Settings::doneDir),
    property(SERVICE, "failed", &Settings::failedDir),
    property(SERVICE, "poll", IngestKinds::Whole{&Settings::pollInterval, 1, MOST}),
    property(SERVICE, "settle", IngestKinds::Whole{&Settings::settleTime, 0, MOST}),
    property(SERVICE, "least-free", IngestKinds::Whole{&Settings::leastFree, 0, MOST}),

    // The log.
    property(LOG, "file", IngestKinds::Own{readLogFile}),
    property(LOG, "size", IngestKinds::Whole{&Settings::logSize, 1, MOST}),
    property(LOG, "files", IngestKinds::Whole{&Settings::logFiles, 1, MOST}),
    property(LOG, "interval", IngestKinds::Whole{&Settings::logInterval, 1, MOST}),
    property(LOG, "priorities", IngestKinds::Own{readLogPriorities}),
    property(LOG, "flags", IngestKinds::Own{readLogFlags}),
    property(LOG, "program", IngestKinds::Own{readLogProgram, shownLogProgram}),
};

}  // namespace zarn::ingest

#endif  // ZARN_INGEST_SETTINGTABLE_H
