#include "zarn-ingest/run/Journal.h"

#include <ace/OS_NS_sys_time.h>
#include <fnmatch.h>
#include <sys/stat.h>
#include <zarnsys/util/WexoTime.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <limits>
#include <stdexcept>
#include <unordered_set>
#include <utility>

#include "shared/cli/Printable.h"
#include "shared/cli/Reason.h"
#include "shared/cli/TextStreams.h"
#include "shared/files/Reading.h"
#include "shared/files/SystemError.h"

namespace zarn::ingest {

namespace {

const char NAME_BEGIN[] = "/zarn-ingest-";
const char NAME_END[] = ".journal";
const char CONVERTED[] = "converted";
const char FAILED[] = "failed";
constexpr std::size_t DATE_LENGTH = 10;             // 2026-11-24, which begins the ISO form
constexpr std::size_t FIELDS_WITHOUT_IDENTITY = 7;  // as versions before identities wrote

/// Name of the journal file of a day.
std::string journalOf(const std::string& directory, const std::string& date) {
    return directory + NAME_BEGIN + date + NAME_END;
}

/// Whether a file has the name of a journal.
bool isJournal(const std::string& path) {
    const std::string day = "[0-9][0-9][0-9][0-9]-[0-9][0-9]-[0-9][0-9]";
    const std::string name = path.substr(path.rfind('/'));
    return ::fnmatch(journalOf("", day).c_str(), name.c_str(), 0) == 0;
}

/// The journals among the entries of a listing, the oldest of each directory first.
template <typename Listing>
std::vector<std::string> journalsAmong(const Listing& listing) {
    std::vector<std::string> names;
    for (const auto& entry : listing) {
        if (isJournal(entry.path())) names.push_back(entry.path());
    }
    std::sort(names.begin(), names.end());
    return names;
}

/// A line without its two times and its end.
std::string recordOf(const std::string& source, const Outcome& outcome) {
    TextWriter record;
    record << printable(source) << '\t' << printable(outcome.result) << '\t'
           << (outcome.converted() ? CONVERTED : FAILED) << '\t' << outcome.cards << '\t'
           << outcome.size << '\t' << identityOf(source);
    return record.str();
}

/// The date before which no journal can have these sources as they are now. The margin covers a
/// clock that was set back meanwhile.
std::string earliestDate(const std::vector<std::string>& sources) {
    constexpr std::time_t DAY = 86400;  // [s]
    constexpr std::time_t MARGIN = 31 * DAY;
    std::time_t earliest = std::numeric_limits<std::time_t>::max();
    struct stat status = {};
    for (const std::string& source : sources) {
        const bool isThere = ::lstat(source.c_str(), &status) == 0;
        earliest = std::min(earliest, isThere ? status.st_ctim.tv_sec : 0);
    }
    return WexoTime::asISOTimeString(ACE_Time_Value(std::max<std::time_t>(0, earliest - MARGIN)))
        .substr(0, DATE_LENGTH);
}

/// The time in a field [s since the epoch]; nothing if there is none.
std::optional<double> secondsIn(const std::string& field) {
    constexpr double MOST = 1e11;  // in the year 5138; NaN is beyond it, too
    char* rest = nullptr;
    const double seconds = std::strtod(field.c_str(), &rest);
    const bool isNumber = !field.empty() && *rest == '\0' && std::fabs(seconds) <= MOST;
    return isNumber ? std::optional(seconds) : std::nullopt;
}

/// Reads a line without its end. Nothing if it is not one of a journal.
std::optional<JournalEntry> entryOf(const std::string& line) {
    std::vector<std::string> fields;
    TextReader rest(line);
    for (std::string field; std::getline(rest, field, '\t');) fields.push_back(field);
    if (fields.size() < FIELDS_WITHOUT_IDENTITY) return std::nullopt;
    const std::optional<double> seconds = secondsIn(fields[1]);
    if (!seconds) return std::nullopt;
    JournalEntry entry;
    entry.time = fields[0];
    entry.seconds = *seconds;
    entry.source = unprintable(fields[2]);
    entry.result = unprintable(fields[3]);
    entry.converted = fields[4] == CONVERTED;
    entry.size = std::strtoull(fields[6].c_str(), nullptr, 10);
    if (fields.size() > FIELDS_WITHOUT_IDENTITY) entry.identity = fields[FIELDS_WITHOUT_IDENTITY];
    return entry;
}

/// A line without its two times; empty if there is nothing after them.
std::string recordIn(const std::string& line) {
    const std::size_t second = line.find('\t', line.find('\t') + 1);
    return second == std::string::npos ? "" : line.substr(second + 1);
}

}  // namespace

std::string identityOf(const std::string& source) {
    struct stat status = {};
    if (::lstat(source.c_str(), &status) != 0) {
        if (!leadsNowhere(errno)) throwSystemError(source);
        return "-";
    }
    TextWriter identity;
    identity << status.st_ino << '-' << status.st_ctim.tv_sec << '.' << std::setw(9)
             << std::setfill('0') << status.st_ctim.tv_nsec;
    return identity.str();
}

std::vector<JournalEntry> entriesIn(const std::string& journal) {
    const std::string text = readFile(journal);
    std::vector<JournalEntry> entries;
    std::size_t begin = 0;
    for (std::size_t end = 0; (end = text.find('\n', begin)) != std::string::npos;
         begin = end + 1) {
        std::optional<JournalEntry> entry = entryOf(text.substr(begin, end - begin));
        if (entry) entries.push_back(std::move(*entry));
    }
    return entries;
}

std::vector<std::string> journalsIn(const std::string& directory) {
    return journalsAmong(std::filesystem::directory_iterator(directory));
}

std::vector<std::string> journalsBelow(const std::string& directory) {
    return journalsAmong(std::filesystem::recursive_directory_iterator(directory));
}

std::string presentJournal(const std::string& directory) {
    const std::string iso = WexoTime::asISOTimeString(ACE_OS::gettimeofday());
    return journalOf(directory, iso.substr(0, DATE_LENGTH));
}

std::optional<ino_t> inodeIn(const std::string& identity) {
    ino_t inode = 0;
    const char* const end = identity.data() + identity.size();
    const auto [rest, error] = std::from_chars(identity.data(), end, inode);
    if (error != std::errc() || rest == end || *rest != '-') return std::nullopt;
    return inode;
}

Journal::Journal(const std::string& directory) : directory_(directory) {
    const std::vector<std::string> journals = journalsIn(directory);
    if (!journals.empty()) mendLastLine(journals.back());
}

void Journal::recall(const std::vector<std::string>& sources) {
    if (sources.empty()) return;
    std::unordered_set<std::string> wanted;
    for (const std::string& source : sources) wanted.insert(printable(source));
    const std::string earliest = journalOf("", earliestDate(sources));
    for (const std::string& name : journalsIn(directory_)) {
        if (name.substr(name.rfind('/')) < earliest) continue;
        std::ifstream journal(name);
        if (!journal) throwSystemError("the journal " + name);
        for (std::string line; std::getline(journal, line);) {
            const std::string record = recordIn(line);
            const std::string source = record.substr(0, record.find('\t'));
            if (wanted.count(source) > 0) recalled_[source] = record;
        }
        if (journal.bad()) throw std::runtime_error("the journal " + name + " cannot be read");
    }
}

void Journal::add(const std::vector<Conversion>& conversions) {
    std::vector<std::string> records;
    for (const Conversion& one : conversions) {
        if (!one.outcome.isFinal()) continue;
        const std::string record = recordOf(one.input.name, one.outcome);
        if (!isTold(one.input.name, record)) records.push_back(record);
    }
    if (records.empty()) return;
    try {
        append(records);
    } catch (const std::exception& error) {
        throw std::runtime_error("the journal in " + directory_ + ": " + reasonOf(error));
    }
}

std::string Journal::tryAdd(const std::vector<Conversion>& conversions) {
    try {
        add(conversions);
        return "";
    } catch (const std::exception& error) {
        return error.what();
    }
}

bool Journal::isTold(const std::string& source, const std::string& record) const {
    const auto earlier = recalled_.find(printable(source));
    return earlier != recalled_.end() && earlier->second == record;
}

void Journal::append(const std::vector<std::string>& records) {
    const ACE_Time_Value now = ACE_OS::gettimeofday();
    const std::string iso = WexoTime::asISOTimeString(now);
    const std::string times = iso + '\t' + WexoTime::asUnixTimeString(now) + '\t';
    const std::string fileName = journalOf(directory_, iso.substr(0, DATE_LENGTH));
    if (fileName != fileName_) file_ = std::make_unique<LineFile>(fileName);
    fileName_ = fileName;
    std::string lines;
    for (const std::string& record : records) lines += times + record + '\n';
    file_->add(lines);
}

}  // namespace zarn::ingest
