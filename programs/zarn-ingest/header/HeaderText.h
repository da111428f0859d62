/// A header text file, examined and repaired before CFITSIO gets its cards.
///
/// CFITSIO takes lines with few questions: it cuts, blanks and hides what it cannot hold, and
/// writes as much data as a header describes. So each line becomes cards of the standard first, and
/// each change that this takes is counted.
#ifndef ZARN_INGEST_HEADERTEXT_H
#define ZARN_INGEST_HEADERTEXT_H

#include <cstddef>
#include <string>
#include <vector>

#include "zarn-ingest/header/Repairs.h"

namespace zarn::ingest {

struct Section;

/// How a header text is read.
struct ReadingOptions {
    bool strict = false;       ///< refuse what would need a repair
    bool primaryOnly = false;  ///< take the first header alone
};

/// What the operator may want to know and what is no repair: no card needed a change.
struct Notes {
    Tally carriages;     ///< lines that end in CR LF or CR
    Tally upperCased;    ///< keywords not in upper case, in which they are written
    Tally oldChecksums;  ///< CHECKSUM and DATASUM cards of the file that the text came from
    Tally left;          ///< further headers that were not asked for
};

/// One card of the result.
struct Card {
    std::string text;     ///< without blanks at its end, 80 characters at most
    std::string keyword;  ///< in upper case; HIERARCH names without that word
    std::size_t number;   ///< of its line, counted from 1; 0: of none
};

/// The cards of one HDU, in their order, without END.
using Header = std::vector<Card>;

/// The headers of a text, ready to be written. Holds all of it by value.
class HeaderText {
public:
    /// Examines the bytes of a file.
    ///
    /// @throw IngestError  when they are no header text, or strictness forbids the repairs that it
    ///                     needs
    HeaderText(const std::string& bytes, const ReadingOptions& options);

    const std::vector<Header>& headers() const { return headers_; }  ///< one at least
    const Repairs& repairs() const { return repairs_; }
    const Notes& notes() const { return notes_; }

    /// Lines of the headers, blank and other ones among them, without titles and END.
    std::size_t cardCount() const { return cardCount_; }

    /// Adds cards to the primary header, of no line.
    void append(const std::vector<std::string>& lines);

    /// Leaves out CHECKSUM and DATASUM, and the note on them, to make room for new ones.
    void dropChecksums();

    /// Bytes that a file of these headers has at most.
    std::size_t fileSize() const;

private:
    void addHeader(Section section, std::size_t count);

    std::vector<Header> headers_;
    Repairs repairs_;
    Notes notes_;
    std::size_t cardCount_ = 0;
};

}  // namespace zarn::ingest

#endif  // ZARN_INGEST_HEADERTEXT_H
