/// @file
/// Everyday string helpers.
///
/// Both functions keep no state, log nothing, fail only where memory runs out (`std::bad_alloc`)
/// and may be called from several threads at once.
#ifndef ZARNSYS_UTIL_STRINGUTILS_H
#define ZARNSYS_UTIL_STRINGUTILS_H

#include <string>
#include <vector>

#include "Export.h"

/// Everyday helpers.
namespace ZarnSys {

/// Splits `in` into fields. A field is a longest run of characters none of which is in `delim`, so
/// that no field is empty: "a,,b," gives "a" and "b".
///
/// @param in     text to split; may be an element of `out`
/// @param delim  set of characters, each of which separates on its own; empty: one field
/// @param out    receives the fields, after what it holds already
ZARNSYS_EXPORT void split(const std::string& in, std::string delim, std::vector<std::string>& out);

/// A copy of `str` in lower case, by the system's `tolower` for the current locale: in the default
/// locale only "A" to "Z" change, every other byte stays.
ZARNSYS_EXPORT std::string lower(const std::string& str);

}  // namespace ZarnSys

#endif  // ZARNSYS_UTIL_STRINGUTILS_H
