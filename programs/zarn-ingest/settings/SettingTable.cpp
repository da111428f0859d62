#include "zarn-ingest/settings/SettingTable.h"

#include <zarnsys/util/StringUtils.h>

#include <algorithm>

#include "shared/cli/BeginsWith.h"

namespace zarn::ingest {

namespace {

// The words of ACE's logging.
constexpr char PRIORITIES[] =
    "SHUTDOWN|TRACE|DEBUG|INFO|NOTICE|WARNING|STARTUP|ERROR|CRITICAL|ALERT|EMERGENCY";
constexpr char LOG_FLAGS[] = "STDERR|LOGGER|OSTREAM|VERBOSE|VERBOSE_LITE|SYSLOG";

/// A text for the log, which hands it on as a word of a command line.
const std::string& logWord(const std::string& text) {
    if (text.empty()) throw std::invalid_argument("the value is empty");
    if (text.find_first_of(" \t\"'$") != std::string::npos)
        throw WrongValue("one word without quotes and $");
    return text;
}

/// Whether a text consists of words from a choice, joined by '|', each perhaps with a '~' before
/// it, which switches it off.
bool isMadeOf(const std::string& text, const std::string& choice) {
    const std::vector<std::string> words = wordsOf(choice);
    const std::vector<std::string> parts = wordsOf(text);
    return std::all_of(parts.begin(), parts.end(), [&words](const std::string& part) {
        const std::string word = beginsWith(part, "~") ? part.substr(1) : part;
        return std::find(words.begin(), words.end(), word) != words.end();
    });
}

}  // namespace

void readMoon(Settings& settings, const std::string& name) { settings.moon = telescopeOf(name); }

void readShard(Settings& settings, const std::string& text) { settings.shard = shardOf(text); }

void readLogFile(Settings& settings, const std::string& name) { settings.logFile = logWord(name); }

void readLogPriorities(Settings& settings, const std::string& words) {
    settings.logPriorities = logWord(words);
    if (!isMadeOf(words, PRIORITIES))
        throw WrongValue("made of ACE's priorities, for example DEBUG|~INFO");
}

void readLogFlags(Settings& settings, const std::string& words) {
    settings.logFlags = logWord(words);
    if (!isMadeOf(words, LOG_FLAGS))
        throw WrongValue("made of ACE's flags, for example STDERR|OSTREAM");
}

void readLogProgram(Settings& settings, const std::string& name) {
    settings.logProgram = logWord(name);
}

std::string shownShard(const Settings& settings) { return shardText(settings.shard); }

std::string shownLogProgram(const Settings& settings) { return settings.logProgram; }

}  // namespace zarn::ingest
