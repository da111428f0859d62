#include "zarn-ingest/run/Service.h"

#include <zarnsys/util/FileIO.h>

#include <algorithm>
#include <set>
#include <utility>

#include "shared/cli/Reason.h"
#include "zarn-ingest/run/Conversion.h"
#include "zarn-ingest/run/Moving.h"
#include "zarn-ingest/run/Room.h"
#include "zarn-ingest/run/ServiceDirectories.h"

namespace zarn::ingest {

namespace {

const std::string CHANGED = "changed while it was converted; it is looked at again";

using std::chrono::seconds;

std::string endedText(const std::string& source, const std::string& directory) {
    return source + ": an earlier run moved it to " + directory +
           ", and a crash left its old name, too; that one is removed";
}

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
    Group group(*converter_, groupSizeOf(settings_));
    for (const Input& input : batch) {
        if (signals_.received() != 0 || !hasRoom()) {
            static_cast<void>(finish(group));
            return false;
        }
        if (arrivals_.isUnchanged(input.name)) {
            group.add(input);
        } else {
            ++left_;
        }
        if (group.isFull() && !finish(group)) return false;
    }
    return finish(group);
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
    std::vector<std::string> settled = arrivals_.settled();
    for (const std::string& problem : arrivals_.unseen()) troubles_.meet(problem);
    const auto isEnded = [this](const std::string& name) { return endEarlierMove(name); };
    if (!recalled_)
        settled.erase(std::remove_if(settled.begin(), settled.end(), isEnded), settled.end());
    if (journal_ && !recalled_) journal_->recall(arrivals_.present());
    recalled_ = true;
    const std::map<std::string, Told> before = std::exchange(stuck_, {});
    std::vector<Told> again;
    for (const std::string& name : settled) {
        const auto stuck = before.find(name);
        if (stuck != before.end() && stuck->second.identity == identityOf(name)) {
            again.push_back(stuck->second);
        } else {
            batch.push_back({name, ""});
        }
    }
    moveAway(again);
    return batch;
}

/// Whether an earlier run was done with a source, and a crash cut its move short; it is moved then.
bool Service::endEarlierMove(const std::string& source) const {
    for (const std::string& directory : {settings_.doneDir, settings_.failedDir}) {
        if (directory.empty() || !endMove(source, directory)) continue;
        reporter_.info(endedText(source, directory));
        return true;
    }
    return false;
}

/// Whether the output directory has the free space that the settings ask for.
bool Service::hasRoom() {
    const std::string shortage = shortageOf(freeSpace(settings_), settings_);
    if (!shortage.empty()) troubles_.meet(shortage);
    return shortage.empty();
}

/// Finishes the conversions of a group, enters the files in the journal and moves them away. False
/// if no file can be converted at present: the next look begins with those that were left. A file
/// that is being written again is left for later.
bool Service::finish(Group& group) {
    std::vector<Conversion> done = group.finish();
    const bool stopped = std::any_of(done.begin(), done.end(), [](const Conversion& one) {
        return one.outcome.status == Outcome::Status::STOPPED;
    });
    for (Conversion& one : done) leaveChanged(one);
    for (const Conversion& one : done) meetTrouble(one);
    done.erase(std::remove_if(done.begin(), done.end(),
                              [](const Conversion& one) { return !one.outcome.isFinal(); }),
               done.end());
    if (stopped) converter_.reset();
    if (!record(done)) return false;
    reporter_.done(done);
    std::vector<Told> sources;
    sources.reserve(done.size());
    for (Conversion& one : done) sources.push_back({one.input.name, std::move(one.outcome), ""});
    moveAway(sources);
    return !stopped;
}

void Service::leaveChanged(Conversion& conversion) const {
    Outcome& outcome = conversion.outcome;
    if (outcome.status == Outcome::Status::STOPPED) return;
    if (arrivals_.isUnchanged(conversion.input.name)) return;
    outcome.status = Outcome::Status::WAITS;
    outcome.problem = CHANGED;
}

void Service::meetTrouble(const Conversion& conversion) {
    const Outcome& outcome = conversion.outcome;
    if (outcome.status == Outcome::Status::STOPPED) troubles_.meet(outcome.problem);
    if (outcome.status == Outcome::Status::WAITS)
        troubles_.meet(problemText(conversion.input.name, 0, outcome.problem));
}

/// Adds files that are done with to the journal, if there is one; false when that failed.
bool Service::record(const std::vector<Conversion>& conversions) {
    if (!journal_) return true;
    const std::string problem = journal_->tryAdd(conversions);
    if (!problem.empty()) troubles_.meet(problem);
    return problem.empty();
}

/// Moves sources away, safe on disk, or notes that the next look must try again.
void Service::moveAway(const std::vector<Told>& sources) {
    std::set<std::string> reached;
    for (const Told& source : sources) {
        if (move(source)) reached.insert(directoryFor(source.outcome));
    }
    if (reached.empty()) return;
    try {
        syncMoves(arrivals_.directory(), reached);
    } catch (const std::exception& error) {
        troubles_.meet(error.what());
    }
}

/// Moves a source, if there is a directory for it; false if it stays.
bool Service::move(const Told& source) {
    const std::string& directory = directoryFor(source.outcome);
    if (directory.empty()) return false;
    try {
        if (source.outcome.converted()) {
            moveInto(source.name, directory);
        } else {
            moveWithReason(
                source.name, directory,
                problemText(source.name, source.outcome.line, source.outcome.problem) + "\n");
        }
        return true;
    } catch (const std::exception& error) {
        troubles_.meet(error.what());
        stuck_[source.name] = {source.name, source.outcome, identityOf(source.name)};
        return false;
    }
}

/// Where a source goes; empty: it stays.
const std::string& Service::directoryFor(const Outcome& outcome) const {
    return outcome.converted() ? settings_.doneDir : settings_.failedDir;
}

}  // namespace zarn::ingest
