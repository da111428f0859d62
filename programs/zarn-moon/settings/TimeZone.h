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

/// The same for the environment variable TZ, by which the process shows local times.
///
/// @throw UsageError  naming the variable
void checkEnvironmentTimeZone();

}  // namespace zarn::moon

#endif  // ZARN_MOON_TIMEZONE_H
