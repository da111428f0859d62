/// The service: files that arrive are converted, told of in the journal and moved away.
///
/// Each step is safe on disk before the next one, so that a run that is killed at any moment leaves
/// a state from which the next one goes on: the result is there, or the source still is; a result
/// that is there already is recognised by its cards, and a source that the journal told of by its
/// identity.
///
/// Only a header at fault fails. When the machine is (a disk, a directory, a right), the source
/// waits where it is; the trouble is said once, and each look tries again.
#ifndef ZARN_INGEST_SERVICE_H
#define ZARN_INGEST_SERVICE_H

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "zarn-ingest/report/Reporter.h"
#include "zarn-ingest/result/Converter.h"
#include "zarn-ingest/run/Arrivals.h"
#include "zarn-ingest/run/DirectoryLocks.h"
#include "zarn-ingest/run/Journal.h"
#include "zarn-ingest/run/StopSignals.h"
#include "zarn-ingest/run/Troubles.h"
#include "zarn-ingest/settings/Settings.h"

class Service {
public:
    /// Waits, if the service watches, for the directory that files arrive in: it may start before
    /// the file system is there.
    ///
    /// @return  false when a signal came first
    static bool awaitIncoming(const Settings& settings, const StopSignals& signals,
                              Reporter& reporter);

    /// Prepares the directories and locks them for this process.
    ///
    /// @throw std::exception  with the reason when the service could not work in them
    Service(const Settings& settings, const StopSignals& signals, Reporter& reporter);

    /// Works until a signal comes, or, unless it watches, until what is there has been done.
    ///
    /// @return  false when it had to leave settled files or could not move them away
    bool run();

private:
    /// A source that could not be moved away. Its place in the journal is settled.
    struct Stuck {
        std::string identity;  ///< by which another file of the name is told from it
        Outcome outcome;
    };

    bool look();
    bool doSettled();
    void keepDirectories();
    std::vector<Input> nextBatch();
    bool hasRoom();
    bool handle(const Input& input);
    bool record(const Input& input, const Outcome& outcome);
    void move(const std::string& source, const Outcome& outcome);

    const Settings& settings_;
    const StopSignals& signals_;
    Reporter& reporter_;
    Troubles troubles_;
    Arrivals arrivals_;
    OutputDirectory output_;
    std::unique_ptr<DirectoryLocks> locks_;
    std::unique_ptr<Converter> converter_;  ///< none after its directory made trouble
    std::unique_ptr<Journal> journal_;      ///< none where the settings name no directory
    std::size_t left_ = 0;                  ///< by the last look: files that changed meanwhile
    bool recalled_ = false;                 ///< what earlier runs told of what was there
    std::map<std::string, Stuck> stuck_;    ///< by source
};

#endif  // ZARN_INGEST_SERVICE_H
