/// Numbers and times as the results show them.
#ifndef ZARN_MOON_TEXTS_H
#define ZARN_MOON_TEXTS_H

#include <optional>
#include <string>
#include <vector>

#include "zarn-moon/night/Night.h"

namespace zarn::moon {

/// Decimals of the numbers in CSV and JSON.
inline constexpr int ANGLE_DECIMALS = 4;       ///< of altitudes and azimuths [deg]
inline constexpr int SEPARATION_DECIMALS = 2;  ///< of distances from the moon [deg]
inline constexpr int POSITION_DECIMALS = 5;    ///< of right ascensions and declinations [deg]
inline constexpr int SIDEREAL_DECIMALS = 5;    ///< of sidereal times [h]
inline constexpr int HOURS_DECIMALS = 2;       ///< of parts of a night [h]
inline constexpr int WORTH_DECIMALS = 3;       ///< of dark-equivalent hours [h]
inline constexpr int BRIGHTNESS_DECIMALS = 3;  ///< [mag]
inline constexpr int FRACTION_DECIMALS = 5;    ///< of illumination, phase and airmass
inline constexpr int MJD_DECIMALS = 6;         ///< [d], a tenth of a second

/// Times in CSV and JSON, by ISO 8601: UT ends in Z, local time in its difference from UT.
std::string utcMinute(double mjd);
std::string utcSecond(double mjd);
std::string localMinute(double mjd);
std::string localSecond(double mjd);

/// A number with this many decimals; 0 has no sign.
std::string fixed(double number, int decimals);

/// The same, or `absent` if there is no number.
std::string fixedOr(const std::optional<double>& number, int decimals, const std::string& absent);

/// The same for a number on a circle: what would be rounded up to the full circle is 0.
std::string fixedOnCircle(double number, int decimals, double circle);

/// A fraction as percents, without their sign.
std::string percent(double fraction, int decimals);

/// A text as UTF-8: the replacement character U+FFFD takes the place of what is none.
std::string asUtf8(const std::string& text);

/// Where the sun is all day, as a key: "sets", "up" or "down".
std::string keyOf(SunCourse course);

/// Words with blanks between them.
std::string joined(const std::vector<std::string>& words);

/// The name of an event as a key: "civil_dusk" for "civil dusk".
std::string keyOf(std::string name);

/// An instant as the local clock shows it, in a format of strftime, after the local date where that
/// is not the one in UT.
std::string localClock(double mjd, const char* format);

/// An instant in the process's time zone, rounded to the second, in a format of strftime.
///
/// @throw std::runtime_error  when the system's times do not reach so far: on 32-bit x86
///                            before December 1901 and after January 2038
std::string localTime(double mjd, const char* format);

}  // namespace zarn::moon

#endif  // ZARN_MOON_TEXTS_H
