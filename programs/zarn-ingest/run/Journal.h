/// The journal: one line per file, one journal file a day.
///
/// A line holds, separated by tabs: local time in ISO form, seconds since the epoch, source,
/// result, status, number of cards in the source, size of the result in bytes, identity of the
/// source. Names are printable: control characters read \xHH. The identity, inode number and change
/// time as `stat -c %i-%.9Z` shows them, tells a source that the journal already has from one that
/// arrived later under its name. No clock needs to be right for that.
#ifndef ZARN_INGEST_JOURNAL_H
#define ZARN_INGEST_JOURNAL_H

#include <sys/types.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "zarn-ingest/report/LineFile.h"
#include "zarn-ingest/result/Converter.h"

namespace zarn::ingest {

/// The identity of a file: it stays the same while the file is neither changed nor renamed. "-"
/// means that there is no file.
///
/// @throw std::system_error  when the file's state cannot be read
std::string identityOf(const std::string& source);

/// One line of a journal.
struct JournalEntry {
    std::string time;    ///< local, in ISO form
    double seconds = 0;  ///< since the epoch
    std::string source;  ///< as it was named, as all names here
    std::string result;
    bool converted = false;
    std::uintmax_t size = 0;  ///< of the result [bytes]
    std::string identity;     ///< of the source; empty: the line has none
};

/// The whole lines of a journal file, in their order; others are passed over.
///
/// @throw std::exception  when the file cannot be read
std::vector<JournalEntry> entriesIn(const std::string& journal);

/// The journal files of a directory, the oldest first.
///
/// @throw std::exception  when the directory cannot be listed
std::vector<std::string> journalsIn(const std::string& directory);

/// The same, of all directories within it, too.
std::vector<std::string> journalsBelow(const std::string& directory);

/// The name that the journal of the present day has.
std::string presentJournal(const std::string& directory);

/// The inode number in an identity; nothing if it has none.
std::optional<ino_t> inodeIn(const std::string& identity);

/// Writes the journal of a directory.
class Journal {
public:
    /// Opens the journal and cuts off a last line that a crash left incomplete. The caller must
    /// hold a lock on the directory.
    ///
    /// @throw std::exception  when the journal cannot be read or repaired
    explicit Journal(const std::string& directory);

    /// Reads the last lines that earlier runs wrote about these sources.
    ///
    /// @throw std::exception  when the journal cannot be read
    void recall(const std::vector<std::string>& sources);

    /// Appends a line for each input that is done with; they are safe on disk when the call
    /// returns. Leaves one out if the last line recalled for its source says the same: then an
    /// earlier run wrote it and ended, or could not move the source away.
    ///
    /// @throw std::runtime_error  when the lines cannot be written; the next call cuts off any rest
    void add(const std::vector<Conversion>& conversions);

    /// The same without an exception.
    ///
    /// @return  why the lines cannot be written; empty: they were
    [[nodiscard]] std::string tryAdd(const std::vector<Conversion>& conversions);

private:
    bool isTold(const std::string& source, const std::string& record) const;
    void append(const std::vector<std::string>& records);

    std::string directory_;
    std::unordered_map<std::string, std::string>
        recalled_;                    ///< by source: its last line, without the times
    std::unique_ptr<LineFile> file_;  ///< the journal of the day; none before the first line
    std::string fileName_;            ///< its name
};

}  // namespace zarn::ingest

#endif  // ZARN_INGEST_JOURNAL_H
