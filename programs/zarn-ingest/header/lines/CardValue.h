/// What stands behind a card's value indicator.
#ifndef ZARN_INGEST_CARDVALUE_H
#define ZARN_INGEST_CARDVALUE_H

#include <string>
#include <string_view>

namespace zarn::ingest {

/// A value with its comment, understood as far as FITS goes.
struct CardValue {
    enum class Kind {
        TEXT,     ///< in quotes
        LOGICAL,  ///< T or F
        NUMBER,   ///< integer, real or complex
        NONE,     ///< a keyword without value
        UNKNOWN,  ///< none of these: letters without quotes, several numbers
    };

    Kind kind = Kind::NONE;
    std::string text;      ///< of a text what the quotes hold, quotes within once; others trimmed
    std::string comment;   ///< behind the slash, without blanks around
    bool isLegal = true;   ///< as the standard writes it
    bool isClosed = true;  ///< a text has its closing quote
};

/// @param field  what follows "= "; longer than a card as may be
CardValue valueIn(std::string_view field);

/// A text in quotes, those within doubled, filled with blanks to the 8 characters that the fixed
/// format asks for.
std::string quoted(const std::string& text);

/// The text with the quotes within doubled.
std::string withDoubledQuotes(const std::string& text);

}  // namespace zarn::ingest

#endif  // ZARN_INGEST_CARDVALUE_H
