/// The journal: one line per file, one journal file a day.
///
/// A line holds, separated by tabs: local time in ISO form, seconds since the epoch, source,
/// result, status, number of cards in the source, size of the result in bytes, identity of the
/// source. Names are printable: control characters read \xHH. The identity, inode number and change
/// time as `stat -c %i-%.9Z` shows them, tells a source that was told of already from one that
/// arrived anew under its name; no clock needs to be right for that.
#ifndef ZARN_INGEST_JOURNAL_H
#define ZARN_INGEST_JOURNAL_H

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "zarn-ingest/report/LineFile.h"
#include "zarn-ingest/result/Outcome.h"

/// What stays with a file while it is neither changed nor renamed; "-": there is no file.
///
/// @throw std::system_error  when the system cannot say
std::string identityOf(const std::string& source);

class Journal {
public:
    /// Opens the journal of a directory and repairs a last line torn by a crash. Call it under a
    /// lock on the directory.
    ///
    /// @throw std::exception  when the journal cannot be read or mended
    explicit Journal(const std::string& directory);

    /// Reads what earlier runs told of these sources last.
    ///
    /// @throw std::exception  when the journal cannot be read
    void recall(const std::vector<std::string>& sources);

    /// Appends a line, safe on disk at the end in the file that has the journal's name, unless the
    /// last line recalled of the source says the same: an earlier run ended, or could not move the
    /// source away, after it.
    ///
    /// @throw std::runtime_error  when the line cannot be written; a torn one is mended at the next
    void add(const std::string& source, const Outcome& outcome);

    /// The same without an exception.
    ///
    /// @return  why the line cannot be written; empty: it was
    [[nodiscard]] std::string tryAdd(const std::string& source, const Outcome& outcome);

private:
    void append(const std::string& record);

    std::string directory_;
    std::unordered_map<std::string, std::string> recalled_;  ///< source, and its line without times
    std::unique_ptr<LineFile> file_;                         ///< of the day
    std::string fileName_;                                   ///< its name
};

#endif  // ZARN_INGEST_JOURNAL_H
