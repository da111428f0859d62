/// Numbers and times as the results show them.
#ifndef ZARN_MOON_TEXTS_H
#define ZARN_MOON_TEXTS_H

#include <optional>
#include <string>

/// A number with so many decimals; 0 without sign.
std::string fixed(double number, int decimals);

/// The same, or another text where there is none.
std::string fixedOr(const std::optional<double>& number, int decimals, const std::string& absent);

/// The same for a number on a circle: what rounding carries to the full circle is 0.
std::string fixedOnCircle(double number, int decimals, double circle);

/// "civil_dusk" of "civil dusk", for programs.
std::string keyOf(std::string name);

/// An instant in the process's time zone, rounded to the second, by strftime's format.
///
/// @throw std::runtime_error  when the system's times do not reach so far: on 32-bit x86
///                            beyond December 1901 and January 2038
std::string localTime(double mjd, const char* format);

#endif  // ZARN_MOON_TEXTS_H
