#include "zarn-ingest/settings/Properties.h"

#include <ace/Configuration_Import_Export.h>
#include <sys/stat.h>
#include <zarnsys/util/StringUtils.h>
#include <zarnsys/util/WexoProperties.h>

#include <algorithm>
#include <cerrno>
#include <iostream>
#include <iterator>
#include <limits>
#include <optional>
#include <set>
#include <sstream>
#include <stdexcept>
#include <system_error>
#include <utility>
#include <variant>

#include "shared/cli/Printable.h"
#include "shared/cli/UsageError.h"
#include "shared/files/Reading.h"
#include "shared/sky/Telescopes.h"

namespace {

using Text = std::string Settings::*;
using Texts = std::vector<std::string> Settings::*;
using Number = unsigned Settings::*;
using Flag = bool Settings::*;
using Site = std::optional<Telescope> Settings::*;
using Share = Shard Settings::*;

const std::string INGEST = "ingest";
const std::string SERVICE = "service";
const std::string LOG = "log";

// What the file may set, and the smallest number allowed.
const struct Property {
    const std::string& section;
    const char* key;
    std::variant<Text, Texts, Number, Flag, Site, Share> member;
    unsigned least;
} PROPERTIES[] = {
    {INGEST, "pattern", &Settings::pattern, 0},
    {INGEST, "output-dir", &Settings::outputDir, 0},
    {INGEST, "list", &Settings::lists, 0},
    {INGEST, "stdin", &Settings::standardInput, 0},
    {INGEST, "null", &Settings::nulSeparated, 0},
    {INGEST, "shard", &Settings::shard, 0},
    {INGEST, "force", &Settings::overwrite, 0},
    {INGEST, "checksum", &Settings::checksum, 0},
    {INGEST, "strict", &Settings::strict, 0},
    {INGEST, "primary-only", &Settings::primaryOnly, 0},
    {INGEST, "report", &Settings::report, 0},
    {INGEST, "moon", &Settings::moon, 0},
    {INGEST, "resume", &Settings::resume, 0},
    {INGEST, "dry-run", &Settings::dryRun, 0},
    {INGEST, "quiet", &Settings::quiet, 0},
    {INGEST, "verbose", &Settings::verbose, 0},
    {INGEST, "watch", &Settings::watch, 0},
    {INGEST, "retry-failed", &Settings::retryFailed, 0},
    {SERVICE, "done", &Settings::doneDir, 0},
    {SERVICE, "failed", &Settings::failedDir, 0},
    {SERVICE, "journal", &Settings::journalDir, 0},
    {SERVICE, "poll", &Settings::pollInterval, 1},
    {SERVICE, "settle", &Settings::settleTime, 0},
    {SERVICE, "least-free", &Settings::leastFree, 0},
    {LOG, "file", &Settings::logFile, 0},
    {LOG, "size", &Settings::logSize, 1},
    {LOG, "files", &Settings::logFiles, 1},
    {LOG, "interval", &Settings::logInterval, 1},
    {LOG, "priorities", &Settings::logPriorities, 0},
    {LOG, "flags", &Settings::logFlags, 0},
    {LOG, "program", &Settings::logProgram, 0},
};
// ACE's words.
constexpr const char* PRIORITIES[] = {"SHUTDOWN", "TRACE",   "DEBUG",    "INFO",
                                      "NOTICE",   "WARNING", "STARTUP",  "ERROR",
                                      "CRITICAL", "ALERT",   "EMERGENCY"};
constexpr const char* LOG_FLAGS[] = {"STDERR",  "LOGGER",       "OSTREAM",
                                     "VERBOSE", "VERBOSE_LITE", "SYSLOG"};
constexpr std::size_t MAX_LINE = 4095;  // what ACE reads at once [characters]
constexpr off_t MAX_BYTES = 65536;      // of a file: ACE's time grows with the square of its keys
constexpr unsigned MOST = std::numeric_limits<int>::max();  // what the logging settings hold

using Keys = std::set<std::pair<std::string, std::string>>;

/// Why ACE's importer cannot take a line, whose first character that is not blank stands at
/// `begin`; empty: it can.
std::string problemOf(const std::string& line, std::size_t begin, bool inSection) {
    if (line.find('\0') != std::string::npos)
        return "a NUL byte, behind which nothing would be read";
    if (line.size() > MAX_LINE) return "more than 4095 characters";
    if (begin == std::string::npos || line[begin] == '#' || line[begin] == ';') return "";
    const bool opens = line[begin] == '[';
    if (opens && line.find(']') == std::string::npos) return "a bracket is not closed";
    if (opens && line.compare(begin, 2, "[]") == 0) return "a section without name";
    if (!opens && line.find('=') == std::string::npos) return "no '=' and no [section]";
    if (!opens && !inSection) return "a key before the first [section]";
    return "";
}

/// Makes sure that ACE's importer, which gives up without a word, takes every line.
void checkLines(const std::string& fileName, const std::string& text) {
    std::istringstream lines(text);
    bool inSection = false;
    std::size_t number = 0;
    for (std::string line; std::getline(lines, line);) {
        const std::size_t begin = line.find_first_not_of(" \t\r");
        const std::string problem = problemOf(line, begin, inSection);
        if (!problem.empty())
            throw UsageError(printable(fileName) + ":" + std::to_string(++number) + ": " + problem);
        ++number;
        inSection = inSection || (begin != std::string::npos && line[begin] == '[');
    }
}

/// Makes sure of a file that can be read whole: no pipe, no device, nothing endless.
void checkFile(const std::string& fileName) {
    struct stat status = {};
    const auto refuse = [&fileName](const std::string& problem) {
        throw UsageError(printable(fileName) + ": " + problem);
    };
    if (::stat(fileName.c_str(), &status) != 0)
        refuse("cannot be read: " + std::generic_category().message(errno));
    if (!S_ISREG(status.st_mode)) refuse("is not a regular file");
    if (status.st_size > MAX_BYTES) refuse("is larger than 64 KiB, no properties file");
}

/// Adds the keys of a section, and of those within it, under their names from the root.
void addKeys(ACE_Configuration_Heap& heap, const ACE_Configuration_Section_Key& section,
             const std::string& path, Keys& keys) {
    ACE_TString name;
    ACE_Configuration::VALUETYPE type = ACE_Configuration::STRING;
    for (int i = 0; heap.enumerate_values(section, i, name, type) == 0; ++i)
        keys.emplace(path, name.c_str());
    for (int i = 0; heap.enumerate_sections(section, i, name) == 0; ++i) {
        ACE_Configuration_Section_Key inner;
        heap.open_section(section, name.c_str(), false, inner);
        addKeys(heap, inner, path + (path.empty() ? "" : "/") + name.c_str(), keys);
    }
}

/// Every key of the file, which `WexoProperties` cannot list: the file is read once more.
Keys keysOf(const std::string& fileName) {
    ACE_Configuration_Heap heap;
    heap.open();
    if (ACE_Ini_ImpExp(heap).import_config(fileName.c_str()) != 0)
        throw UsageError(printable(fileName) + ": is no properties file throughout");
    Keys keys;
    addKeys(heap, heap.root_section(), "", keys);
    return keys;
}

[[noreturn]] void failValue(const std::string& fileName, const Property& property,
                            const std::string& expected) {
    std::string value;
    WexoProperties::instance()->get(property.section, property.key, value);
    throw UsageError(printable(fileName + ": [" + property.section + "] " + property.key + " = " +
                               value + ": must be " + expected));
}

/// Whether a text is made of words from a list, joined by '|', each perhaps with a '~' before it.
template <typename Words>
bool isMadeOf(const std::string& text, const Words& words) {
    std::vector<std::string> parts;
    ZarnSys::split(text, "|", parts);
    return std::all_of(parts.begin(), parts.end(), [&words](const std::string& part) {
        const std::string word = part.rfind('~', 0) == 0 ? part.substr(1) : part;
        return std::find(std::begin(words), std::end(words), word) != std::end(words);
    });
}

/// Takes a property's value, as text first, into the settings.
class Taker {
public:
    Taker(const std::string& fileName, const Property& property, Settings& settings)
        : fileName_(fileName), property_(property), settings_(settings) {}

    void operator()(Text member) {
        properties_.get(property_.section, property_.key, settings_.*member);
        if ((settings_.*member).empty()) failValue(fileName_, property_, "something");
        const bool words = (settings_.*member).find_first_of(" \t\"'$") != std::string::npos;
        if (property_.section == LOG && words)
            failValue(fileName_, property_,
                      "one word without quotes and $, which the log would not take as they are");
        checkWords(member);
    }
    void checkWords(Text member) {
        const std::string& value = settings_.*member;
        if (member == &Settings::logPriorities && !isMadeOf(value, PRIORITIES))
            failValue(fileName_, property_, "made of ACE's priorities, as DEBUG|~INFO");
        if (member == &Settings::logFlags && !isMadeOf(value, LOG_FLAGS))
            failValue(fileName_, property_, "made of ACE's flags, as STDERR|OSTREAM");
    }
    void operator()(Texts member) {
        std::string names;
        properties_.get(property_.section, property_.key, names);
        ZarnSys::split(names, " \t", settings_.*member);
    }
    void operator()(Number member) {
        u_int value = 0;
        const int status = properties_.get(property_.section, property_.key, value);
        const bool inRange = value >= property_.least && value <= MOST;
        if (status != 0 || !inRange) {
            failValue(fileName_, property_,
                      "a whole number from " + std::to_string(property_.least) + " to " +
                          std::to_string(MOST));
        }
        settings_.*member = value;
    }
    void operator()(Flag member) {
        if (properties_.get(property_.section, property_.key, settings_.*member) != 0)
            failValue(fileName_, property_, "T or F");
    }
    void operator()(Site member) {
        std::string name;
        properties_.get(property_.section, property_.key, name);
        try {
            settings_.*member = telescopeOf(name);
        } catch (const std::invalid_argument&) {
            failValue(fileName_, property_, "one of " + telescopeNames());
        }
    }
    void operator()(Share member) {
        std::string text;
        properties_.get(property_.section, property_.key, text);
        try {
            settings_.*member = shardOf(text);
        } catch (const std::invalid_argument&) {
            failValue(fileName_, property_, SHARD_FORM);
        }
    }

private:
    const std::string& fileName_;
    const Property& property_;
    Settings& settings_;
    WexoProperties& properties_ = *WexoProperties::instance();
};

void check(const std::string& fileName) {
    checkFile(fileName);
    try {
        checkLines(fileName, readFile(fileName));
    } catch (const std::system_error& error) {
        throw UsageError(printable(fileName) + ": cannot be read: " + error.code().message());
    }
}

}  // namespace

Settings readProperties(const std::string& fileName) {
    check(fileName);
    if (WexoProperties::instance()->load(fileName) != 0)
        throw UsageError(printable(fileName) + ": cannot be read");
    Settings settings;
    settings.properties = fileName;
    Keys keys = keysOf(fileName);
    for (const Property& property : PROPERTIES) {
        if (keys.erase({property.section, property.key}) > 0)
            std::visit(Taker(fileName, property, settings), property.member);
    }
    for (const auto& [section, key] : keys)
        std::cerr << "zarn-ingest: " + printable(fileName) + ": warning: unknown property [" +
                         printable(section) + "] " + printable(key) + "\n";
    return settings;
}
