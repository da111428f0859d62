/// The cards that a header begins with, and those that would describe data.
#ifndef ZARN_INGEST_STRUCTURE_H
#define ZARN_INGEST_STRUCTURE_H

#include <vector>

#include "zarn-ingest/header/Repairs.h"
#include "zarn-ingest/header/cards/CardLayout.h"

namespace zarn::ingest {

/// Where a header stands in its file.
enum class HduPosition {
    ALONE,  ///< primary, and the only one
    FIRST,  ///< primary, extensions follow
    LATER,  ///< extension
};

/// Puts the cards that describe the file in order and makes them describe no data: an image without
/// axes, or a table with its columns and no rows.
///
/// @param cards   of one header, in the order of its text
/// @param titles  follow the cards that every header begins with
/// @return        all of them, in the order of the file
LogicalCards structured(LogicalCards cards, const LogicalCards& titles, HduPosition position,
                        Repairs& repairs);

}  // namespace zarn::ingest

#endif  // ZARN_INGEST_STRUCTURE_H
