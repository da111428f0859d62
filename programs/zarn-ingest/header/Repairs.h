/// What a header text needed before it became FITS headers, as one table of kinds.
///
/// Nothing of a card is lost unless its row says what is cut, left out or replaced.
#ifndef ZARN_INGEST_REPAIRS_H
#define ZARN_INGEST_REPAIRS_H

#include <cstddef>
#include <map>
#include <string>

namespace zarn::ingest {

/// How often something was found, and where first.
struct Tally {
    std::size_t count = 0;
    std::size_t firstLine = 0;  ///< counted from 1; 0 while count is 0

    void add(std::size_t line, std::size_t number = 1) {
        if (count == 0 || line < firstLine) firstLine = line;
        count += number;
    }
};

/// The kinds, in the order of the table.
enum class Repair {
    BYTE_ORDER_MARK,
    BLANK_START,
    TITLES,
    CUT_LINES,
    INDENTS,
    EQUALS_SIGNS,
    TABS,
    LETTERS,
    LETTERS_WITHOUT_FORM,
    CONTROLS,
    OTHER_KEYWORDS,
    NO_CARDS,
    BARE_VALUES,
    LONG_VALUES,
    OPEN_QUOTES,
    LONG_COMMENTARY,
    NUMBER_COMMENTS,
    AXES,
    SUPPLIED,
    ARRANGED,
    REPEATED,
    MORE_HEADERS,
    COMPRESSED,
    BROKEN_TABLES,
};

/// One kind of repair.
struct RepairKind {
    const char* word;   ///< what messages, summary and report call it and its like
    const char* found;  ///< what was found, in the plural
    const char* done;   ///< what became of it
};

/// The row of the table; valid for ever.
const RepairKind& kindOf(Repair repair);

/// The repairs of one header text, in the order of the table.
using Repairs = std::map<Repair, Tally>;

/// "axes": the repairs joined by their words, each with its count and its first line.
std::map<std::string, Tally> byWord(const Repairs& repairs);

}  // namespace zarn::ingest

#endif  // ZARN_INGEST_REPAIRS_H
