/// From the characters of a header text to those that a FITS header can hold.
#ifndef ZARN_INGEST_CHARACTERS_H
#define ZARN_INGEST_CHARACTERS_H

#include <cstddef>
#include <string>

#include "zarn-ingest/header/Repairs.h"

namespace zarn::ingest {

/// A line in printable ASCII: tabs become blanks up to the next eighth column, letters of UTF-8 (or
/// of Latin-1, where the line is no UTF-8) their nearest form, control characters blanks.
///
/// @param number  of the line, under which the repairs are counted
std::string inAscii(std::string line, std::size_t number, Repairs& repairs);

}  // namespace zarn::ingest

#endif  // ZARN_INGEST_CHARACTERS_H
