/// From the bytes of a header text to its lines.
#ifndef ZARN_INGEST_LINES_H
#define ZARN_INGEST_LINES_H

#include <cstddef>
#include <string>
#include <vector>

#include "zarn-ingest/header/Repairs.h"
#include "zarn-ingest/header/lines/HeaderLine.h"

namespace zarn::ingest {

/// A text cut into lines.
struct Lines {
    std::vector<HeaderLine> lines;
    Tally carriages;  ///< lines that end in CR LF, or in CR
};

/// Cuts a text at its line ends (LF, CR LF or CR), and a line of several cards every 80 columns,
/// takes away what all of it is indented by, and reads each line.
///
/// @throw IngestError  for more lines than any header has
Lines linesOf(const std::string& bytes);

}  // namespace zarn::ingest

#endif  // ZARN_INGEST_LINES_H
