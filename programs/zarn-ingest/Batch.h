/// A batch: files that are named, converted once, and left where they are.
#ifndef ZARN_INGEST_BATCH_H
#define ZARN_INGEST_BATCH_H

#include <memory>

#include "Converter.h"
#include "Reporter.h"
#include "Settings.h"
#include "StopSignals.h"

class Batch {
public:
    /// Prepares the output directory, unless the run is dry.
    ///
    /// @throw std::exception  with the reason when results could not be written there
    Batch(const Settings& settings, const StopSignals& signals, Reporter& reporter);

    /// Converts the files, or says in a dry run what would be done, until all are done or a signal
    /// comes.
    void run();

private:
    const Settings& settings_;
    const StopSignals& signals_;
    Reporter& reporter_;
    std::unique_ptr<Converter> converter_;
};

#endif  // ZARN_INGEST_BATCH_H
