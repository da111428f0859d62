#include "Journal.h"

#include <ace/OS_NS_sys_time.h>
#include <sys/stat.h>
#include <zarnsys/util/WexoTime.h>
#include <zarnsys/util/ZarnSysEx.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <stdexcept>
#include <vector>

#include "Moving.h"
#include "Printable.h"
#include "Reading.h"

namespace {

const char NAME_BEGIN[] = "/zarn-ingest-";
const char NAME_END[] = ".journal";
constexpr std::size_t DATE_LENGTH = 10;  // 2026-11-24, which begins the ISO form
constexpr int NO_LIMIT = 0;

std::string journalOf(const std::string& directory, const std::string& date) {
    return directory + NAME_BEGIN + date + NAME_END;
}

/// The name of the latest journal file, or an empty one.
std::string latestJournal(const std::string& directory) {
    const std::string day = "[0-9][0-9][0-9][0-9]-[0-9][0-9]-[0-9][0-9]";
    std::string escaped;
    for (const char c : directory) escaped.append("\\").append(1, c);
    std::vector<std::string> names;
    FileIO(journalOf(escaped, day), true, false).match(names, NO_LIMIT);
    return names.empty() ? "" : *std::max_element(names.begin(), names.end());
}

/// Cuts off what follows the last whole line.
void mend(const std::string& fileName) {
    const std::string text = readFile(fileName);
    const std::size_t whole = text.rfind('\n') + 1;  // npos + 1 is 0: no whole line
    if (whole < text.size()) std::filesystem::resize_file(fileName, whole);
}

/// The last line of a mended file.
std::string lastLine(const std::string& fileName) {
    const std::string text = readFile(fileName);
    if (text.empty()) return "";
    const std::size_t end = text.size() - 1;
    const std::size_t begin = end == 0 ? 0 : text.rfind('\n', end - 1) + 1;
    return text.substr(begin, end - begin);
}

/// When the file got its present name or content, whichever is later [s since the epoch].
double changeTime(const std::string& fileName) {
    struct stat status = {};
    if (::lstat(fileName.c_str(), &status) != 0) return 0;
    constexpr double NANOSECOND = 1e-9;  // [s]
    return static_cast<double>(status.st_ctim.tv_sec) +
           static_cast<double>(status.st_ctim.tv_nsec) * NANOSECOND;
}

std::string recordOf(const std::string& source, const Outcome& outcome) {
    std::ostringstream record;
    record << printable(source) << '\t' << printable(outcome.result) << '\t'
           << (outcome.converted ? "converted" : "failed") << '\t' << outcome.cards << '\t'
           << outcome.size;
    return record.str();
}

}  // namespace

Journal::Journal(const std::string& directory) : directory_(directory) {
    const std::string latest = latestJournal(directory);
    if (latest.empty()) return;
    mend(latest);
    const std::string line = lastLine(latest);
    const std::size_t afterIso = line.find('\t');
    const std::size_t afterTime = line.find('\t', afterIso + 1);
    if (afterIso == std::string::npos || afterTime == std::string::npos) return;
    lastTime_ = std::strtod(line.c_str() + afterIso + 1, nullptr);
    lastRecord_ = line.substr(afterTime + 1);
}

void Journal::add(const std::string& source, const Outcome& outcome) {
    const std::string record = recordOf(source, outcome);
    if (isToldAlready(source, record)) return;
    std::string problem;
    try {
        append(record);
        return;
    } catch (ZarnSysEx& error) {
        problem = error.what();
    } catch (const std::exception& error) {
        problem = error.what();
    }
    fileName_.clear();  // the next line opens the file again, after it was mended
    throw std::runtime_error("the journal: " + problem);
}

bool Journal::isLast(const std::string& source) const {
    return lastRecord_.rfind(printable(source) + '\t', 0) == 0;
}

void Journal::append(const std::string& record) {
    const ACE_Time_Value now = ACE_OS::gettimeofday();
    const std::string iso = WexoTime::asISOTimeString(now);
    openFor(journalOf(directory_, iso.substr(0, DATE_LENGTH)));
    file_->write(iso + '\t' + WexoTime::asUnixTimeString(now) + '\t' + record + '\n');
    syncToDisk(fileName_);
}

bool Journal::isToldAlready(const std::string& source, const std::string& record) const {
    return record == lastRecord_ && changeTime(source) < lastTime_;
}

void Journal::openFor(const std::string& fileName) {
    if (fileName == fileName_) return;
    if (std::filesystem::exists(fileName)) mend(fileName);
    file_ = std::make_unique<FileIO>(fileName, true, true);
    std::stringstream earlier;
    file_->load(earlier);  // creates the file where missing, and goes to its end
    fileName_ = fileName;
    syncToDisk(directory_);
}
