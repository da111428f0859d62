#include "zarn-ingest/desk/Status.h"

#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <exception>
#include <filesystem>

#include "shared/cli/Reason.h"
#include "shared/cli/UsageError.h"
#include "zarn-ingest/result/Directory.h"
#include "zarn-ingest/run/Arrivals.h"
#include "zarn-ingest/run/DirectoryLocks.h"
#include "zarn-ingest/run/Room.h"
#include "zarn-ingest/run/ServiceDirectories.h"

namespace zarn::ingest {

namespace {

/// A service takes a file after `poll` and `settle`; so many times as long is much longer.
constexpr unsigned PATIENCE = 10;

/// Takes a step, and notes the problem that ends it.
template <typename Step>
void attempt(Status& status, Step step) {
    try {
        step();
    } catch (const UsageError&) {
        throw;
    } catch (const std::exception& error) {
        status.problems.push_back(reasonOf(error));
    }
}

/// How long a file has been as it is [s]. A move, too, changes it.
std::int64_t ageOf(const std::string& file) {
    struct stat state = {};
    if (::lstat(file.c_str(), &state) != 0) return 0;  // taken meanwhile
    return std::max<std::int64_t>(0, std::time(nullptr) - state.st_ctim.tv_sec);
}

void lookAtArrivals(const Settings& settings, Status& status) {
    Arrivals arrivals(settings.pattern, std::chrono::seconds(settings.settleTime));
    status.isRunning = isLocked(arrivals.directory());
    static_cast<void>(arrivals.settled());
    for (const std::string& problem : arrivals.unseen()) status.problems.push_back(problem);
    const std::vector<std::string> files = arrivals.present();
    status.waiting = files.size();
    for (const std::string& file : files)
        status.oldestAge = std::max(status.oldestAge, ageOf(file));
    const std::int64_t patience =
        PATIENCE * (std::int64_t{settings.pollInterval} + settings.settleTime);
    if (status.oldestAge > patience)
        status.problems.push_back((status.isRunning ? "files" : "no service runs, and files") +
                                  (" have waited for " + std::to_string(status.oldestAge) + " s"));
}

std::optional<JournalEntry> lastResultIn(const std::vector<std::string>& journals) {
    for (auto journal = journals.rbegin(); journal != journals.rend(); ++journal) {
        const std::vector<JournalEntry> entries = entriesIn(*journal);
        const auto last = std::find_if(entries.rbegin(), entries.rend(),
                                       [](const JournalEntry& one) { return one.converted; });
        if (last != entries.rend()) return *last;
    }
    return std::nullopt;
}

void lookAtJournal(const Settings& settings, Status& status) {
    if (settings.journalDir.empty()) return;
    static_cast<void>(Directory(settings.journalDir));  // says why it cannot be read
    const std::vector<std::string> journals = journalsIn(settings.journalDir);
    status.lastResult = lastResultIn(journals);
    status.failuresToday = 0;
    const std::string today = presentJournal(settings.journalDir);
    if (!std::filesystem::exists(today)) return;
    const std::vector<JournalEntry> entries = entriesIn(today);
    status.failuresToday = static_cast<std::size_t>(std::count_if(
        entries.begin(), entries.end(), [](const JournalEntry& one) { return !one.converted; }));
}

void lookAtFailed(const Settings& settings, Status& status) {
    if (settings.failedDir.empty()) return;
    static_cast<void>(Directory(settings.failedDir));
    status.failedFiles = failedFiles(settings.failedDir).size();
    if (*status.failedFiles > 0)
        status.problems.push_back("failed files are in " + settings.failedDir + ": " +
                                  std::to_string(*status.failedFiles));
}

void lookAtRoom(const Settings& settings, Status& status) {
    status.freeSpace = freeSpace(settings);
    const std::string shortage = shortageOf(status.freeSpace, settings);
    if (!shortage.empty()) status.problems.push_back(shortage);
}

}  // namespace

Status statusOf(const Settings& settings) {
    Status status;
    for (const auto look : {lookAtArrivals, lookAtJournal, lookAtFailed, lookAtRoom})
        attempt(status, [&] { look(settings, status); });
    return status;
}

}  // namespace zarn::ingest
