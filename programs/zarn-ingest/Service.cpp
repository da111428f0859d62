#include "Service.h"

#include <fnmatch.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zarnsys/util/FileIO.h>
#include <zarnsys/util/Utils.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <set>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "IngestError.h"

namespace {

using std::chrono::seconds;

ConversionOptions conversionOf(const Settings& settings) {
    ConversionOptions options;
    options.overwrite = settings.overwrite;
    options.checksum = settings.checksum;
    options.durable = true;
    options.resume = true;
    options.moon = settings.moon;
    return options;
}

dev_t fileSystemOf(const std::string& directory) {
    struct stat status = {};
    if (::stat(directory.c_str(), &status) != 0)
        throw std::system_error(errno, std::generic_category(), "directory " + directory);
    return status.st_dev;
}

/// A move within a file system is one step; between two it could leave half a file.
void checkSameFileSystem(const std::string& from, const std::string& to) {
    if (fileSystemOf(from) != fileSystemOf(to))
        throw std::runtime_error("the directories " + from + " and " + to +
                                 " must be on one file system");
}

}  // namespace

Service::Service(const Settings& settings, const StopSignals& signals, Reporter& reporter)
    : settings_(settings),
      signals_(signals),
      reporter_(reporter),
      arrivals_(settings.pattern, seconds(settings.settleTime)) {
    std::vector<std::string> locked = {arrivals_.directory(), settings.outputDir};
    for (const std::string& target : {settings.doneDir, settings.failedDir}) {
        if (target.empty()) continue;
        FileIO(target, true, true).checkCreateDir(target);
        checkSameFileSystem(arrivals_.directory(), target);
        if (::access(target.c_str(), W_OK | X_OK) != 0)
            throw std::system_error(errno, std::generic_category(), "directory " + target);
        locked.push_back(target);
    }
    if (!settings.journalDir.empty()) {
        FileIO(settings.journalDir, true, true).checkCreateDir(settings.journalDir);
        locked.push_back(settings.journalDir);
    }
    const OutputDirectory output(settings.outputDir, OutputDirectory::Missing::CREATE);
    locks_ = std::make_unique<DirectoryLocks>(locked);
    converter_ = std::make_unique<Converter>(conversionOf(settings), output, reporter);
    if (!settings.journalDir.empty()) journal_ = std::make_unique<Journal>(settings.journalDir);
}

bool Service::run() {
    if (settings_.retryFailed) putBackFailed();
    if (settings_.watch) {
        do {
            doSettled();
        } while (signals_.sleep(seconds(settings_.pollInterval)));
        return true;
    }
    arrivals_.settled();
    const bool whole = signals_.sleep(seconds(settings_.settleTime)) && doSettled();
    if (arrivals_.unsettled() > 0)
        reporter_.info(std::to_string(arrivals_.unsettled()) +
                       " files are left: someone was still writing them");
    return whole && stuck_.empty();
}

/// Puts back what failed and would be taken again, each name once: numbered ones need further runs.
void Service::putBackFailed() {
    const std::string pattern = FileIO(settings_.pattern, true, false).getBaseName();
    std::set<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(settings_.failedDir))
        if (!entry.is_directory()) files.insert(entry.path());
    for (const std::filesystem::path& file : files) {
        const std::string name = withoutNumber(file.filename());
        if (::fnmatch(pattern.c_str(), name.c_str(), FNM_PERIOD) != 0) continue;
        const std::string target = arrivals_.directory() + "/" + name;
        if (!renameToNew(file, target))
            reporter_.failed(file, IngestError("cannot be put back to " + target + ": " +
                                               std::generic_category().message(errno)));
    }
    syncToDisk(arrivals_.directory());
    syncToDisk(settings_.failedDir);
}

/// What has settled, without the sources that could not be moved away: these are moved now, if it
/// goes. The file that the journal told last comes first.
std::vector<Input> Service::nextBatch() {
    std::vector<Input> batch;
    const std::map<std::string, bool> before = std::exchange(stuck_, {});
    for (const std::string& name : arrivals_.settled()) {
        const auto stuck = before.find(name);
        if (stuck == before.end()) {
            batch.push_back({name, ""});
        } else {
            move(name, stuck->second);
        }
    }
    std::stable_partition(batch.begin(), batch.end(), [this](const Input& input) {
        return journal_ && journal_->isLast(input.name);
    });
    return batch;
}

/// Does what has settled; false when it had to stop early.
bool Service::doSettled() {
    const std::vector<Input> batch = nextBatch();
    converter_->beginBatch(batch, {});
    for (const Input& input : batch) {
        if (signals_.received() != 0 || !hasRoom() || !handle(input)) return false;
    }
    return true;
}

bool Service::hasRoom() {
    float total = 0;
    float available = 0;
    const char* directory = settings_.outputDir.c_str();
    const bool known = ZarnSys::getFilesystemInfo(directory, &total, &available) == 0;
    const bool room = known && available >= static_cast<float>(settings_.leastFree);
    if (!room && !waitsForRoom_) {
        const std::string reason =
            known ? "less than " + std::to_string(settings_.leastFree) + " MiB are free in "
                  : "lost: ";
        reporter_.error(reason + settings_.outputDir +
                        "; no file is converted until there is room");
    }
    if (room && waitsForRoom_) reporter_.info("there is room again in " + settings_.outputDir);
    waitsForRoom_ = !room;
    return room;
}

/// Converts a file, tells of it and moves it away; false when the journal cannot be written: the
/// file is then recognised at the next try. A file that someone writes again is left for a later
/// look.
bool Service::handle(const Input& input) {
    if (!arrivals_.isUnchanged(input.name)) return true;
    const Outcome outcome = converter_->convert(input);
    if (!arrivals_.isUnchanged(input.name)) {
        reporter_.error(input.name + " changed while it was converted; it is looked at again");
        return true;
    }
    if (!tell(input, outcome)) return false;
    move(input.name, outcome.converted);
    return true;
}

bool Service::tell(const Input& input, const Outcome& outcome) {
    if (!journal_) return true;
    try {
        journal_->add(input.name, outcome);
    } catch (const std::exception& error) {
        if (!journalFails_) reporter_.error(error.what());
        journalFails_ = true;
        return false;
    }
    journalFails_ = false;
    return true;
}

/// Moves a source to where it belongs, or notes that it must be tried again.
void Service::move(const std::string& source, bool converted) {
    const std::string& directory = converted ? settings_.doneDir : settings_.failedDir;
    if (directory.empty()) return;
    try {
        moveInto(source, directory);
    } catch (const std::exception& error) {
        if (!moveFails_) reporter_.error(error.what());
        moveFails_ = true;
        stuck_[source] = converted;
        return;
    }
    moveFails_ = false;
}
