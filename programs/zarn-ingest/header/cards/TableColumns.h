/// The columns that a table's header describes.
#ifndef ZARN_INGEST_TABLECOLUMNS_H
#define ZARN_INGEST_TABLECOLUMNS_H

#include <cstddef>
#include <optional>
#include <vector>

#include "zarn-ingest/header/cards/CardLayout.h"

namespace zarn::ingest {

/// TABLE and BINTABLE.
enum class TableKind { ASCII, BINARY };

/// How many columns, and how wide together.
struct TableColumns {
    std::size_t number = 0;  ///< of columns
    std::size_t width = 0;   ///< of a row [bytes]
};

/// What TFORMn and TBCOLn say; none where a reader could not open the table.
std::optional<TableColumns> columnsOf(const LogicalCards& cards, TableKind kind);

}  // namespace zarn::ingest

#endif  // ZARN_INGEST_TABLECOLUMNS_H
