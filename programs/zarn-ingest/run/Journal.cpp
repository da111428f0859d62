#include "zarn-ingest/run/Journal.h"

#include <ace/OS_NS_sys_time.h>
#include <fnmatch.h>
#include <sys/stat.h>
#include <zarnsys/util/WexoTime.h>

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <limits>
#include <sstream>
#include <stdexcept>
#include <unordered_set>

#include "shared/cli/Printable.h"
#include "shared/cli/Reason.h"
#include "shared/files/SystemError.h"

namespace zarn::ingest {

namespace {

const char NAME_BEGIN[] = "/zarn-ingest-";
const char NAME_END[] = ".journal";
constexpr std::size_t DATE_LENGTH = 10;  // 2026-11-24, which begins the ISO form

/// Name of the journal file of a day.
std::string journalOf(const std::string& directory, const std::string& date) {
    return directory + NAME_BEGIN + date + NAME_END;
}

/// The journal files there, the oldest first.
std::vector<std::string> journalsIn(const std::string& directory) {
    const std::string day = "[0-9][0-9][0-9][0-9]-[0-9][0-9]-[0-9][0-9]";
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(directory)) {
        const std::string name = directory + "/" + entry.path().filename().string();
        if (::fnmatch(journalOf("", day).c_str(), name.c_str() + directory.size(), 0) == 0)
            names.push_back(name);
    }
    std::sort(names.begin(), names.end());
    return names;
}

/// A line without its two times and its end.
std::string recordOf(const std::string& source, const Outcome& outcome) {
    std::ostringstream record;
    record << printable(source) << '\t' << printable(outcome.result) << '\t'
           << (outcome.converted() ? "converted" : "failed") << '\t' << outcome.cards << '\t'
           << outcome.size << '\t' << identityOf(source);
    return record.str();
}

/// Whether an error means that there is no file of this name.
bool leadsNowhere(int error) {
    return error == ENOENT || error == ENOTDIR || error == ELOOP || error == ENAMETOOLONG;
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
    std::ostringstream identity;
    identity << status.st_ino << '-' << status.st_ctim.tv_sec << '.' << std::setw(9)
             << std::setfill('0') << status.st_ctim.tv_nsec;
    return identity.str();
}

Journal::Journal(const std::string& directory) : directory_(directory) {
    const std::vector<std::string> journals = journalsIn(directory);
    if (!journals.empty()) mendLastLine(journals.back());
}

void Journal::recall(const std::vector<std::string>& sources) {
    if (sources.empty()) return;
    std::unordered_set<std::string> wanted;
    for (const std::string& source : sources) wanted.insert(printable(source));
    const std::string earliest = journalOf(directory_, earliestDate(sources));
    for (const std::string& name : journalsIn(directory_)) {
        if (name < earliest) continue;
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
