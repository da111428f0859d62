/// What one line of a header text is: the place that decides what counts as a card.
#ifndef ZARN_INGEST_HEADERLINE_H
#define ZARN_INGEST_HEADERLINE_H

#include <cstddef>
#include <string>
#include <string_view>

#include "zarn-ingest/header/Repairs.h"
#include "zarn-ingest/header/lines/CardValue.h"

namespace zarn::ingest {

/// A line, taken to pieces. Which members mean something depends on the kind.
struct HeaderLine {
    enum class Kind {
        BLANK,
        END,
        VALUE,       ///< keyword and value
        COMMENTARY,  ///< COMMENT, HISTORY or a blank keyword
        CONTINUE,    ///< more of the text before
        OTHER,       ///< no card in any reading
    };

    Kind kind = Kind::BLANK;
    std::string text;          ///< the whole line in ASCII, without blanks at its end
    std::size_t number = 0;    ///< counted from 1; 0: of no line
    std::string keyword;       ///< in upper case; HIERARCH names without that word
    CardValue value;           ///< of VALUE and CONTINUE
    bool isHierarch = false;   ///< the keyword is one that only a HIERARCH card can have
    bool hasHierarch = false;  ///< the line says so itself
    bool isInColumns = true;   ///< keyword and equals sign stand where cards have them
    Repairs repairs;           ///< of the line's characters and columns
    bool isUpperCase = true;   ///< the keyword is written so

    /// Whether nobody would doubt that the line is a card: a blank keyword could also begin an
    /// indented line of any text.
    bool isSurelyCard() const;
};

/// Reads a line.
HeaderLine readLine(std::string text, std::size_t number);

/// Whether a keyword is one of letters, digits, '-' and '_', 8 at most.
bool isLegalKeyword(std::string_view keyword);

}  // namespace zarn::ingest

#endif  // ZARN_INGEST_HEADERLINE_H
