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

/// A number without the plus sign that FITS allows.
std::string withoutPlus(const std::string& number);

/// Whether a whole number, with leading zeros or a plus sign as may be, is 0.
bool isZero(const std::string& number);

/// The same for 1.
bool isOne(const std::string& number);

}  // namespace zarn::ingest

#endif  // ZARN_INGEST_STRUCTURALKEYWORDS_H
