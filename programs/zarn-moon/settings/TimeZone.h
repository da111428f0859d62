/// Time zones by their names.
#ifndef ZARN_MOON_TIMEZONE_H
#define ZARN_MOON_TIMEZONE_H

#include <string>

namespace zarn::moon {

/// Makes sure that the system knows a time zone: by its name in the tz database ("Europe/Rome"), by
/// the path of such a file, or as POSIX describes one ("XYZ-2:30"). For any other name, the system
/// would take UT for the local time. A leading colon counts for nothing, no name for UT.
///
/// @throw WrongValue  saying what a name must be
void checkTimeZone(const std::string& name);

/// Lets the process show local times in a time zone that was checked; without a name, in that of
/// the environment variable TZ, which is checked now.
///
/// @throw UsageError  naming the variable
void useTimeZone(const std::string& name);

}  // namespace zarn::moon

#endif  // ZARN_MOON_TIMEZONE_H
