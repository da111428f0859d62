/// Dates and Modified Julian Dates, in the Gregorian calendar and universal time.
///
/// The functions that read a text throw std::invalid_argument, saying what is wrong with it.
#ifndef ZARN_PROGRAMS_CALENDAR_H
#define ZARN_PROGRAMS_CALENDAR_H

#include <string>

#include "shared/sky/Units.h"

namespace zarn {

/// The Modified Julian Date of 0 h on a date YYYY-MM-DD.
double mjdOfDate(const std::string& text);

/// The Modified Julian Date of an instant YYYY-MM-DDThh:mm:ss, with or without a fraction of the
/// seconds; a leap second is read as the first of the next day.
double mjdOfInstant(const std::string& text);

/// The date YYYY-MM-DD that an instant falls on.
std::string dateOf(double mjd);

/// An instant rounded to the second, as YYYY-MM-DDThh:mm:ss.
std::string secondOf(double mjd);

/// An instant at the nearest whole minute.
double nearestMinute(double mjd);

/// An instant rounded to the minute, as YYYY-MM-DDThh:mm.
std::string minuteOf(double mjd);

}  // namespace zarn

#endif  // ZARN_PROGRAMS_CALENDAR_H
