#include "zarn-ingest/run/Batch.h"

#include <zarnsys/util/FileIO.h>

#include <iostream>
#include <string>

#include "shared/cli/Printable.h"
#include "zarn-ingest/result/Directory.h"
#include "zarn-ingest/result/OutputDirectory.h"
#include "zarn-ingest/run/Conversion.h"

namespace zarn::ingest {

namespace {

std::vector<std::string> namesOf(const std::vector<Input>& inputs) {
    std::vector<std::string> names;
    names.reserve(inputs.size());
    for (const Input& input : inputs) names.push_back(input.name);
    return names;
}

}  // namespace

Batch::Batch(const Settings& settings, const StopSignals& signals, Reporter& reporter)
    : settings_(settings), signals_(signals), reporter_(reporter) {
    const auto missing =
        settings.dryRun ? OutputDirectory::Missing::CAN_CREATE : OutputDirectory::Missing::CREATE;
    const OutputDirectory output(settings.outputDir, missing);
    if (settings.dryRun && !FileIO(settings.outputDir, true, false).exists())
        std::cout << "would create the directory " + printable(settings.outputDir) + "\n";
    converter_ = std::make_unique<Converter>(conversionOf(settings), output);
    if (!settings.journalDir.empty() && !settings.dryRun) openJournal();
}

bool Batch::run() {
    const std::vector<Input> inputs = collectInputs(settings_, signals_);
    begin(inputs);
    Group group(*converter_, groupSizeOf(settings_));
    for (std::size_t i = 0; i < inputs.size() && signals_.received() == 0; ++i) {
        const Input& input = inputs[i];
        if (!isOurs(input, i)) {
            converter_->leave(input);
        } else {
            group.add(input);
            if (group.isFull() && !finish(group)) return false;
        }
    }
    return finish(group);
}

/// Whether this run converts an input. One that stands for files which could not be listed belongs
/// to every shard: otherwise all shards but one would be empty and report success.
bool Batch::isOurs(const Input& input, std::size_t position) const {
    return !input.problem.empty() || settings_.shard.holds(position);
}

/// Announces the inputs to all who need to know them beforehand.
void Batch::begin(const std::vector<Input>& inputs) {
    std::size_t ours = 0;
    for (std::size_t i = 0; i < inputs.size(); ++i) ours += isOurs(inputs[i], i) ? 1 : 0;
    if (settings_.shard.isPart())
        reporter_.info("shard " + shardText(settings_.shard) + ": " + std::to_string(ours) +
                       " of " + std::to_string(inputs.size()) + " files");
    converter_->beginBatch(inputs, settings_.lists);
    if (journal_ && settings_.resume) journal_->recall(namesOf(inputs));
    reporter_.begin(ours);
}

/// Creates the journal's directory if it is missing, and keeps other runs out of it.
void Batch::openJournal() {
    const std::string& directory = settings_.journalDir;
    FileIO(directory, true, true).checkCreateDir(directory);
    Directory(settings_.outputDir).syncName();
    locks_ = std::make_unique<DirectoryLocks>(std::vector<std::string>{directory});
    journal_ = std::make_unique<Journal>(directory);
}

/// Finishes a group and adds it to the journal, if there is one. False when that failed: then the
/// batch ends, so that no file is left out of the journal.
bool Batch::finish(Group& group) {
    const std::vector<Conversion> done = group.finish();
    const std::string problem = journal_ ? journal_->tryAdd(done) : "";
    if (!problem.empty()) {
        reporter_.error(problem);
        return false;
    }
    reporter_.done(done);
    return true;
}

}  // namespace zarn::ingest
