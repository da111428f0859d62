/// Keywords that describe a file, and what their values may be.
#ifndef ZARN_INGEST_STRUCTURALKEYWORDS_H
#define ZARN_INGEST_STRUCTURALKEYWORDS_H

#include <string>
#include <string_view>

namespace zarn::ingest {

/// Whether the keyword is one of the two that CFITSIO's checksums stand under.
bool isChecksum(std::string_view keyword);

/// Whether an extension of this type is a binary table, by its name of today or a former one.
bool isBinaryTable(std::string_view extension);

/// Whether a number is one of the six that BITPIX can be.
bool isBitpix(std::string_view number);

/// The number in NAXIS1, NAXIS2 and so on, at least 1; 0 for another keyword.
int axisOf(const std::string& keyword);

/// Whether CFITSIO would take a HIERARCH card of this name for one that describes the file.
bool isTakenForStructure(const std::string& name);

/// A whole number without the plus sign and the leading zeros that FITS allows.
std::string plainNumber(const std::string& number);

}  // namespace zarn::ingest

#endif  // ZARN_INGEST_STRUCTURALKEYWORDS_H
