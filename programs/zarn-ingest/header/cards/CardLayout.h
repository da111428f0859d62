/// From lines to the cards that hold them.
#ifndef ZARN_INGEST_CARDLAYOUT_H
#define ZARN_INGEST_CARDLAYOUT_H

#include <cstddef>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "zarn-ingest/header/Repairs.h"
#include "zarn-ingest/header/lines/HeaderLine.h"

namespace zarn::ingest {

/// A keyword with all that belongs to it: one card, or several where a text goes on.
struct LogicalCard {
    std::string keyword;             ///< in upper case; HIERARCH names without that word
    CardValue value;                 ///< none for commentary
    std::vector<std::string> cards;  ///< without blanks at their ends, 80 characters at most
    std::size_t number = 0;          ///< of its line, counted from 1; 0: of none
    bool isHierarch = false;
    bool isContinuedAnew = false;  ///< a text goes on in CONTINUE cards that the line did not have
};

/// Those of one header. A deque: what describes the file is taken out near the beginning.
using LogicalCards = std::deque<LogicalCard>;

/// Turns lines into cards, byte for byte where they stand as the standard wants them.
///
/// @param lines      of one header
/// @param upperCase  counts keywords that were written otherwise
LogicalCards cardsOf(std::vector<HeaderLine> lines, Repairs& repairs, Tally& upperCase);

/// A COMMENT card, or several.
LogicalCard commentOf(std::string_view text, std::size_t number);

/// COMMENT cards that hold another card, with all that continues it.
LogicalCard asComment(const LogicalCard& card);

/// A card in the fixed format: what is no text ends in column 30. It may be too long.
std::string fixedCard(const std::string& keyword, const std::string& value,
                      const std::string& comment);

}  // namespace zarn::ingest

#endif  // ZARN_INGEST_CARDLAYOUT_H
