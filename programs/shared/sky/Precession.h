/// Positions of one equinox in that of another date.
#ifndef ZARN_PROGRAMS_PRECESSION_H
#define ZARN_PROGRAMS_PRECESSION_H

#include "shared/sky/Angles.h"

/// A Julian epoch [yr] whose mean equinox is taken for the ICRS, 0.02 arc seconds off.
constexpr double J2000_EPOCH = 2000.0;

/// A position in the mean equinox of date, by the precession of the IAU of 2006.
///
/// Proper motion, parallax, aberration and nutation are left out, as in the library's own places of
/// the sun and the moon; and equinoxes before 1984 count as of the same system, which leaves some
/// arc seconds.
///
/// @param position  mean place of `epoch`
/// @param epoch     its equinox [yr]
/// @param mjd       the date
Position precessed(const Position& position, double epoch, double mjd);

#endif  // ZARN_PROGRAMS_PRECESSION_H
