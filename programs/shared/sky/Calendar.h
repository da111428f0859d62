/// Dates and Modified Julian Dates, in the Gregorian calendar and universal time.
///
/// The functions that read throw std::invalid_argument with a text that says what is wrong.
#ifndef ZARN_PROGRAMS_CALENDAR_H
#define ZARN_PROGRAMS_CALENDAR_H

#include <string>

constexpr double MINUTES_PER_DAY = 1440.0;
constexpr double SECONDS_PER_DAY = 86400.0;
constexpr double JD_OF_MJD_0 = 2400000.5;  ///< [d]
constexpr double MJD_OF_EPOCH = 40587.0;   ///< of 1970-01-01 [d]

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

#endif  // ZARN_PROGRAMS_CALENDAR_H
