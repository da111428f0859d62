/// Where one header of a text ends and the next begins.
#ifndef ZARN_INGEST_SECTIONS_H
#define ZARN_INGEST_SECTIONS_H

#include <cstddef>
#include <vector>

#include "zarn-ingest/header/Repairs.h"
#include "zarn-ingest/header/lines/HeaderLine.h"

namespace zarn::ingest {

/// The lines of one header, without END and without blank ones at either end.
struct Section {
    std::vector<HeaderLine> titles;  ///< lines before, that name it or divide it from the last
    std::vector<HeaderLine> lines;
};

/// Divides a text into its headers: at END, at a XTENSION or a second SIMPLE that BITPIX follows,
/// and at the lines by which programs that dump whole files divide them, as "--- HDU 1 ---".
///
/// @param lines    one of them at least is a card other than END
/// @param repairs  where blank lines before the first card are counted
/// @return         one section at least
std::vector<Section> sectionsOf(std::vector<HeaderLine> lines, Repairs& repairs);

}  // namespace zarn::ingest

#endif  // ZARN_INGEST_SECTIONS_H
