/// An existing archive against its journal and its sources.
#ifndef ZARN_INGEST_VERIFICATION_H
#define ZARN_INGEST_VERIFICATION_H

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "zarn-ingest/result/Converter.h"
#include "zarn-ingest/run/Journal.h"
#include "zarn-ingest/run/StopSignals.h"
#include "zarn-ingest/settings/Settings.h"

namespace zarn::ingest {

/// Looks at every result in the output directory or in the journal, and changes nothing. Keeps
/// references to what it is made of, which must outlive it.
class Verification {
public:
    /// Reads the directories and the journals, those in directories within the journal's, too.
    ///
    /// @throw std::exception  with the reason when one of them cannot be read
    Verification(const Settings& settings, const StopSignals& signals);

    /// Writes a line to standard output for each result that is not as it should be, and the sum.
    /// Ends early when a signal comes.
    ///
    /// @return  whether all are as they should be
    [[nodiscard]] bool run();

private:
    void readJournals();
    bool belongsHere(const std::string& result);
    void report(const std::string& name, const std::string& problem);
    std::string problemOf(const std::string& name, const JournalEntry& told);
    std::string problemOfSize(std::uintmax_t size, const JournalEntry& told);
    std::string difference(const std::string& source, const std::string& path) const;
    std::optional<std::string> sourceOf(const JournalEntry& told) const;
    std::vector<std::string> candidatesFor(const std::string& source) const;

    const Settings& settings_;
    const StopSignals& signals_;
    const ConversionOptions options_;
    std::vector<std::string> present_;                      ///< names of the results that are there
    std::map<std::string, std::vector<std::string>> done_;  ///< sources by their former names
    std::map<std::string, JournalEntry> told_;  ///< by the result's name, the latest lines
    std::map<std::string, bool> here_;  ///< whether a directory in the journal is the present one
    std::size_t compared_ = 0;
    std::size_t withoutSource_ = 0;
    std::size_t wrong_ = 0;
    std::size_t untold_ = 0;
};

}  // namespace zarn::ingest

#endif  // ZARN_INGEST_VERIFICATION_H
