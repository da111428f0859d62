/// Compares results with the texts that they were made of.
#ifndef ZARN_INGEST_COMPARISON_H
#define ZARN_INGEST_COMPARISON_H

#include <optional>
#include <string>

#include "zarn-ingest/header/HeaderText.h"
#include "zarn-ingest/header/moon/MoonCards.h"

namespace zarn::ingest {

/// What a result holds besides the cards of its source.
struct Additions {
    bool checksum = false;          ///< DATASUM and CHECKSUM
    std::optional<Telescope> moon;  ///< the moon's values for it
};

/// Makes the text of a source that of its result, but for checksums.
///
/// @return  what was added for the moon
MoonCards complete(HeaderText& text, const Additions& additions);

/// How a file that has a result's name differs from what the text gives; empty: not at all.
///
/// @throw InputWaits  when the file is there and cannot be read
std::string differenceOf(const HeaderText& text, const std::string& result, bool checksum);

}  // namespace zarn::ingest

#endif  // ZARN_INGEST_COMPARISON_H
