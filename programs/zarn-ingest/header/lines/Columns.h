/// Text in a card's columns.
#ifndef ZARN_INGEST_COLUMNS_H
#define ZARN_INGEST_COLUMNS_H

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string>
#include <string_view>

namespace zarn::ingest {

inline constexpr std::size_t CARD_LENGTH = 80;    // [characters]
inline constexpr std::size_t KEYWORD_LENGTH = 8;  // the equals sign stands behind, in column 9

/// A part of the text given: without blanks at its end.
std::string_view withoutTrailing(std::string_view text);

/// A part of the text given: without blanks at either end.
std::string_view trimmed(std::string_view text);

/// ASCII in upper case, which keywords are written in.
std::string upper(std::string_view text);

/// Whether a text has this beginning.
inline bool begins(std::string_view text, std::string_view beginning) {
    return text.substr(0, beginning.size()) == beginning;
}

/// Whether a word is one of those in a table.
template <std::size_t Size>
bool isOneOf(std::string_view word, const std::string_view (&words)[Size]) {
    return std::find(std::begin(words), std::end(words), word) != std::end(words);
}

/// Whether a text is empty or all blanks.
bool isBlank(std::string_view text);

/// Blanks after the text, up to a width.
std::string padded(std::string text, std::size_t width);

}  // namespace zarn::ingest

#endif  // ZARN_INGEST_COLUMNS_H
