/// The journal: one line per file, one journal file a day.
///
/// A line holds, separated by tabs: local time in ISO form, seconds since the epoch, source,
/// result, status, number of cards in the source, size of the result in bytes. Names are printable:
/// control characters read \xHH.
#ifndef ZARN_INGEST_JOURNAL_H
#define ZARN_INGEST_JOURNAL_H

#include <zarnsys/util/FileIO.h>

#include <memory>
#include <string>

#include "Converter.h"

class Journal {
public:
    /// Opens the journal of a directory: repairs a last line torn by a crash and remembers the last
    /// whole one. Call it under a lock on the directory.
    ///
    /// @throw ZarnSysEx, std::exception  when the journal cannot be read or mended
    explicit Journal(const std::string& directory);

    /// Appends a line, safe on disk at the end, unless the last line of an earlier run tells of the
    /// same file already: that run ended between this line and moving the file away.
    ///
    /// @throw std::runtime_error  when the line cannot be written; a torn one is mended at the next
    void add(const std::string& source, const Outcome& outcome);

    /// Whether the last line of an earlier run tells of this name. Such a file comes first: a line
    /// in between would make it forgotten.
    bool isLast(const std::string& source) const;

private:
    void append(const std::string& record);
    bool isToldAlready(const std::string& source, const std::string& record) const;
    void openFor(const std::string& fileName);

    std::string directory_;
    std::string lastRecord_;  ///< of an earlier run: the line without its times; empty: none
    double lastTime_ = 0;     ///< of that line [s since the epoch]
    std::string fileName_;    ///< of the journal file that is open
    std::unique_ptr<FileIO> file_;
};

#endif  // ZARN_INGEST_JOURNAL_H
