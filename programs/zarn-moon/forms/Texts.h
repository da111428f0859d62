/// Numbers and times as the results show them.
#ifndef ZARN_MOON_TEXTS_H
#define ZARN_MOON_TEXTS_H

#include <optional>
#include <string>

namespace zarn::moon {

/// Decimals of the numbers in CSV and JSON.
inline constexpr int ANGLE_DECIMALS = 4;       ///< of altitudes, azimuths and distances [deg]
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

/// The name of an event as a key: "civil_dusk" for "civil dusk".
std::string keyOf(std::string name);

/// An instant in the process's time zone, rounded to the second, in a format of strftime.
///
/// @throw std::runtime_error  when the system's times do not reach so far: on 32-bit x86
///                            before December 1901 and after January 2038
std::string localTime(double mjd, const char* format);

}  // namespace zarn::moon

#endif  // ZARN_MOON_TEXTS_H
