/// Units of angles and times, and the zero points of their counts.
#ifndef ZARN_PROGRAMS_UNITS_H
#define ZARN_PROGRAMS_UNITS_H

namespace zarn {

inline constexpr double FULL_CIRCLE = 360.0;  ///< [deg]
inline constexpr double DEG_PER_HOUR = 15.0;
inline constexpr double DEG_PER_RAD = 57.295779513082321;

inline constexpr double HOURS_PER_DAY = 24.0;
inline constexpr double MINUTES_PER_HOUR = 60.0;
inline constexpr double MINUTES_PER_DAY = 1440.0;
inline constexpr double SECONDS_PER_DAY = 86400.0;
/// The mean time from new moon to new moon [d]; Meeus 1998, chapter 49.
inline constexpr double SYNODIC_MONTH = 29.530588853;

inline constexpr double JD_OF_MJD_0 = 2400000.5;  ///< Julian Date of Modified Julian Date 0 [d]
inline constexpr double MJD_OF_EPOCH = 40587.0;   ///< Modified Julian Date of 1970-01-01 [d]

}  // namespace zarn

#endif  // ZARN_PROGRAMS_UNITS_H
