/// A batch: named files, converted once and left where they are.
#ifndef ZARN_INGEST_BATCH_H
#define ZARN_INGEST_BATCH_H

#include <cstddef>
#include <memory>
#include <vector>

#include "zarn-ingest/report/Reporter.h"
#include "zarn-ingest/result/Converter.h"
#include "zarn-ingest/run/DirectoryLocks.h"
#include "zarn-ingest/run/Group.h"
#include "zarn-ingest/run/Inputs.h"
#include "zarn-ingest/run/Journal.h"
#include "zarn-ingest/run/StopSignals.h"
#include "zarn-ingest/settings/Settings.h"

namespace zarn::ingest {

/// Converts the named inputs of one run. Keeps references to what it is made of, which must outlive
/// it.
class Batch {
public:
    /// Prepares the directories, unless it is a dry run, and locks the journal's for this process.
    ///
    /// @throw std::exception  with the reason when the batch could not work in them
    Batch(const Settings& settings, const StopSignals& signals, Reporter& reporter);

    /// Converts the files of the shard, or says in a dry run what would be done. Ends early when a
    /// signal comes.
    ///
    /// @return  false when it ended early because the journal could not be written
    [[nodiscard]] bool run();

private:
    void openJournal();
    bool isOurs(const Input& input, std::size_t position) const;
    void begin(const std::vector<Input>& inputs);
    [[nodiscard]] bool finish(Group& group);

    const Settings& settings_;
    const StopSignals& signals_;
    Reporter& reporter_;
    std::unique_ptr<Converter> converter_;
    std::unique_ptr<DirectoryLocks> locks_;
    std::unique_ptr<Journal> journal_;  ///< none if the settings name no directory
};

}  // namespace zarn::ingest

#endif  // ZARN_INGEST_BATCH_H
