#include "zarn-ingest/run/Service.h"

#include <zarnsys/util/FileIO.h>
#include <zarnsys/util/Utils.h>

#include <utility>

#include "shared/cli/Reason.h"
#include "zarn-ingest/run/Conversion.h"
#include "zarn-ingest/run/Moving.h"
#include "zarn-ingest/run/ServiceDirectories.h"

namespace zarn::ingest {

namespace {

const std::string CHANGED = "changed while it was converted; it is looked at again";

using std::chrono::seconds;

}  // namespace

Service::Service(const Settings& settings, const StopSignals& signals, Reporter& reporter)
    : settings_(settings),
      signals_(signals),
      reporter_(reporter),
      troubles_(reporter),
      arrivals_(settings.pattern, seconds(settings.settleTime)),
      output_(settings.outputDir, OutputDirectory::Missing::CREATE) {
    locks_ = std::make_unique<DirectoryLocks>(prepareDirectories(settings));
    converter_ = std::make_unique<Converter>(conversionOf(settings), output_);
    if (!settings.journalDir.empty()) journal_ = std::make_unique<Journal>(settings.journalDir);
}

bool Service::awaitIncoming(const Settings& settings, const StopSignals& signals,
                            Reporter& reporter) {
    FileIO directory(incomingDirectory(settings), true, false);
    Troubles troubles(reporter);
    while (settings.watch && !directory.exists()) {
        troubles.meet("directory " + directory.getCompleteName() + ": No such file or directory");
        troubles.endLook(false);
        if (!signals.sleep(seconds(settings.pollInterval))) return false;
    }
    troubles.endLook(true);
    return true;
}

bool Service::run() {
    if (settings_.retryFailed) putBackFailed(settings_, reporter_);
    if (settings_.watch) {
        do {
            look();
        } while (signals_.sleep(seconds(settings_.pollInterval)));
        return true;
    }
    bool whole = true;
    if (settings_.settleTime > 0) {
        whole = look();
        whole = signals_.sleep(seconds(settings_.settleTime)) && whole;
    }
    whole = whole && look();
    const std::size_t left = arrivals_.unsettled() + left_;
    if (left > 0)
        reporter_.info(std::to_string(left) + " files are left: someone was still writing them");
    return whole && left_ == 0;
}

/// Does all that has settled. False if something is left for another look.
bool Service::look() {
    bool whole = false;
    left_ = 0;
    try {
        whole = doSettled();
    } catch (const std::exception& error) {
        troubles_.meet(reasonOf(error));
    }
    const bool trouble = troubles_.any();
    troubles_.endLook(whole);
    return whole && !trouble;
}

bool Service::doSettled() {
    keepDirectories();
    const std::vector<Input> batch = nextBatch();
    converter_->beginBatch(batch, {});
    for (const Input& input : batch) {
        if (signals_.received() != 0 || !hasRoom() || !handle(input)) return false;
    }
    return true;
}

/// Locks the directories that have the names now, and makes a converter that works in them.
void Service::keepDirectories() {
    for (const std::string& name : locks_->renew()) {
        reporter_.error("the directory " + name + " was replaced; this run works in the new one");
        converter_.reset();
    }
    if (!converter_) converter_ = std::make_unique<Converter>(conversionOf(settings_), output_);
}

/// The sources that have settled and are to be converted. Those that only could not be moved away
/// are moved now, if possible.
std::vector<Input> Service::nextBatch() {
    std::vector<Input> batch;
    const std::vector<std::string> settled = arrivals_.settled();
    for (const std::string& problem : arrivals_.unseen()) troubles_.meet(problem);
    if (journal_ && !recalled_) journal_->recall(arrivals_.present());
    recalled_ = true;
    const std::map<std::string, Stuck> before = std::exchange(stuck_, {});
    for (const std::string& name : settled) {
        const auto stuck = before.find(name);
        if (stuck != before.end() && stuck->second.identity == identityOf(name)) {
            move(name, stuck->second.outcome);
        } else {
            batch.push_back({name, ""});
        }
    }
    return batch;
}

/// Whether the output directory has the free space that the settings ask for.
bool Service::hasRoom() {
    float total = 0;
    float available = 0;
    const char* directory = settings_.outputDir.c_str();
    const bool known = ZarnSys::getFilesystemInfo(directory, &total, &available) == 0;
    if (known && available >= static_cast<float>(settings_.leastFree)) return true;
    troubles_.meet(known
                       ? "less than " + std::to_string(settings_.leastFree) + " MiB are free in " +
                             settings_.outputDir + "; no file is converted until there is room"
                       : "the free space in " + settings_.outputDir + " cannot be determined");
    return false;
}

/// Converts a file, enters it in the journal and moves it away. False if no file can be converted
/// at present: the next look begins with this one. A file that is being written again is left for
/// later.
bool Service::handle(const Input& input) {
    if (!arrivals_.isUnchanged(input.name)) {
        ++left_;
        return true;
    }
    const Outcome outcome = converter_->convert(input);
    if (outcome.status == Outcome::Status::STOPPED) {
        troubles_.meet(outcome.problem);
        converter_.reset();
        return false;
    }
    const bool changed = !arrivals_.isUnchanged(input.name);
    if (outcome.status == Outcome::Status::WAITS || changed) {
        troubles_.meet(problemText(input.name, 0, changed ? CHANGED : outcome.problem));
        return true;
    }
    if (!record(input, outcome)) return false;
    reporter_.done(input.name, outcome);
    move(input.name, outcome);
    return true;
}

/// Adds a file that is done with to the journal, if there is one; false when that failed.
bool Service::record(const Input& input, const Outcome& outcome) {
    if (!journal_) return true;
    const std::string problem = journal_->tryAdd(input.name, outcome);
    if (!problem.empty()) troubles_.meet(problem);
    return problem.empty();
}

/// Moves a source away, or notes that the next look must try again.
void Service::move(const std::string& source, const Outcome& outcome) {
    const std::string& directory = outcome.converted() ? settings_.doneDir : settings_.failedDir;
    if (directory.empty()) return;
    try {
        if (outcome.converted()) {
            moveInto(source, directory);
        } else {
            moveWithReason(source, directory,
                           problemText(source, outcome.line, outcome.problem) + "\n");
        }
    } catch (const std::exception& error) {
        troubles_.meet(error.what());
        stuck_[source] = {identityOf(source), outcome};
    }
}

}  // namespace zarn::ingest
