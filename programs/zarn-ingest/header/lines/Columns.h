/// Text in a card's columns.
#ifndef ZARN_INGEST_COLUMNS_H
#define ZARN_INGEST_COLUMNS_H

#include <cstddef>
#include <string>

namespace zarn::ingest {

inline constexpr std::size_t CARD_LENGTH = 80;    // [characters]
inline constexpr std::size_t KEYWORD_LENGTH = 8;  // the equals sign stands behind, in column 9

/// Without blanks at its end.
std::string withoutTrailing(const std::string& text);

/// Without blanks at either end.
std::string trimmed(const std::string& text);

/// In upper case, which keywords are written in.
std::string upper(std::string text);

/// Whether a text is empty or all blanks.
bool isBlank(const std::string& text);

/// Blanks after the text, up to a width.
std::string padded(std::string text, std::size_t width);

}  // namespace zarn::ingest

#endif  // ZARN_INGEST_COLUMNS_H
