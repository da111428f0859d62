/// The service: it converts files that arrive, enters them in the journal and moves them away.
///
/// Each step is safe on disk before the next one begins, so that the next run can continue wherever
/// this one was killed: either the result or the source is there. The next run recognises an
/// existing result by its cards, and a source that the journal already has by its identity.
///
/// A source fails only if its header is at fault. If the machine is (a disk, a directory, a
/// permission), the source waits where it is; the trouble is reported once, and each look tries
/// again.
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
#include "zarn-ingest/run/Group.h"
#include "zarn-ingest/run/Journal.h"
#include "zarn-ingest/run/StopSignals.h"
#include "zarn-ingest/run/Troubles.h"
#include "zarn-ingest/settings/Settings.h"

namespace zarn::ingest {

/// Does the work of a service. Keeps references to what it is made of, which must outlive it.
class Service {
public:
    /// If the service watches, waits for the incoming directory: the service may start before its
    /// file system is mounted.
    ///
    /// @return  false when a signal came first
    [[nodiscard]] static bool awaitIncoming(const Settings& settings, const StopSignals& signals,
                                            Reporter& reporter);

    /// Prepares the directories and locks them for this process.
    ///
    /// @throw std::exception  with the reason when the service could not work in them
    Service(const Settings& settings, const StopSignals& signals, Reporter& reporter);

    /// Works until a signal comes or, if it does not watch, until all present files are done.
    ///
    /// @return  false when settled files were left or could not be moved away
    [[nodiscard]] bool run();

private:
    /// A source that is done with and told of, but not moved away.
    struct Told {
        std::string name;
        Outcome outcome;
        std::string identity;  ///< tells it from a later file of the same name; empty: unknown
    };

    bool look();  ///< a watching service may ignore whether all was done
    [[nodiscard]] bool doSettled();
    void keepDirectories();
    std::vector<Input> nextBatch();
    [[nodiscard]] bool endEarlierMove(const std::string& source) const;
    [[nodiscard]] bool hasRoom();
    [[nodiscard]] bool finish(Group& group);
    void leaveChanged(Conversion& conversion) const;
    void meetTrouble(const Conversion& conversion);
    [[nodiscard]] bool record(const std::vector<Conversion>& conversions);
    void moveAway(const std::vector<Told>& sources);
    bool move(const Told& source);
    const std::string& directoryFor(const Outcome& outcome) const;

    const Settings& settings_;
    const StopSignals& signals_;
    Reporter& reporter_;
    Troubles troubles_;
    Arrivals arrivals_;
    OutputDirectory output_;
    std::unique_ptr<DirectoryLocks> locks_;
    std::unique_ptr<Converter> converter_;  ///< none after trouble with the output directory
    std::unique_ptr<Journal> journal_;      ///< none if the settings name no directory
    std::size_t left_ = 0;                  ///< files that changed during the last look
    bool recalled_ = false;                 ///< whether the journal of earlier runs was read
    std::map<std::string, Told> stuck_;     ///< sources that could not be moved away, by name
};

}  // namespace zarn::ingest

#endif  // ZARN_INGEST_SERVICE_H
