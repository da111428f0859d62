/// The service: files that arrive are converted, told of in the journal and moved away.
///
/// Each step is safe on disk before the next one, so that a run that is killed at any moment leaves
/// a state from which the next one goes on: the result is there, or the source still is; a result
/// that is there already is recognised by its cards; the journal's last line is recognised, too.
#ifndef ZARN_INGEST_SERVICE_H
#define ZARN_INGEST_SERVICE_H

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "Arrivals.h"
#include "Converter.h"
#include "Journal.h"
#include "Moving.h"
#include "Reporter.h"
#include "Settings.h"
#include "StopSignals.h"

class Service {
public:
    /// Prepares the directories and locks them for this process.
    ///
    /// @throw std::exception  with the reason when the service could not work in them
    Service(const Settings& settings, const StopSignals& signals, Reporter& reporter);

    /// Works until a signal comes, or, unless it watches, until what is there has been done.
    ///
    /// @return  false when it had to leave settled files or could not move them away
    bool run();

private:
    void putBackFailed();
    std::vector<Input> nextBatch();
    bool doSettled();
    bool hasRoom();
    bool handle(const Input& input);
    bool tell(const Input& input, const Outcome& outcome);
    void move(const std::string& source, bool converted);

    const Settings& settings_;
    const StopSignals& signals_;
    Reporter& reporter_;
    Arrivals arrivals_;
    std::unique_ptr<DirectoryLocks> locks_;
    std::unique_ptr<Converter> converter_;
    std::unique_ptr<Journal> journal_;   ///< none where the settings name no directory
    std::map<std::string, bool> stuck_;  ///< sources that could not be moved; whether converted
    bool waitsForRoom_ = false;
    bool journalFails_ = false;
    bool moveFails_ = false;
};

#endif  // ZARN_INGEST_SERVICE_H
