/// @file
/// Times as text: ISO 8601 in local time, and seconds since the Unix epoch.
///
/// The functions keep no state, log nothing, fail only where memory runs out (`std::bad_alloc`) and
/// may be called from several threads at once.
#ifndef ZARNSYS_UTIL_WEXOTIME_H
#define ZARNSYS_UTIL_WEXOTIME_H

#include <ace/Time_Value.h>

#include <string>

#include "Export.h"

/// Times as text.
namespace WexoTime {

/// The time as 2007-04-20T14:23:19.012345, in the process's local time zone, which is not named.
///
/// Every part has at least the width shown there, filled with '0' on its left, sign included: a
/// later year than 9999 is wider, microseconds of -5 read 0000-5.
///
/// @param timeValue  seconds and microseconds since the Unix epoch; a year that a 32-bit integer
///                   cannot hold gives meaningless numbers
ZARNSYS_EXPORT std::string asISOTimeString(const ACE_Time_Value& timeValue);

/// The same into a buffer of the caller's.
///
/// @param timeValue   as above
/// @param timeString  receives the text and a NUL; 27 characters for years 1000 to 9999 and
///                    microseconds 0 to 999999, more beyond; the size is not checked
/// @return            `timeString`
ZARNSYS_EXPORT ACE_TCHAR* asISOTimeString(const ACE_Time_Value& timeValue,
                                          ACE_TCHAR* const timeString);

/// The time as 1176985399.000042: seconds since the Unix epoch, then six digits of microseconds.
///
/// Both are written as they are stored: a negative time does not read as a decimal fraction.
ZARNSYS_EXPORT std::string asUnixTimeString(const ACE_Time_Value& timeValue);

}  // namespace WexoTime

#endif  // ZARNSYS_UTIL_WEXOTIME_H
