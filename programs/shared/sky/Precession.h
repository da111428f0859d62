/// Precession of positions from one equinox to another.
#ifndef ZARN_PROGRAMS_PRECESSION_H
#define ZARN_PROGRAMS_PRECESSION_H

#include "shared/sky/Angles.h"

namespace zarn {

/// A Julian epoch [yr] whose mean equinox is taken for the ICRS, 0.02 arc seconds off.
inline constexpr double J2000_EPOCH = 2000.0;

/// A position in the mean equinox of date, by the IAU 2006 precession.
///
/// Proper motion, parallax, aberration and nutation are left out, as in the library's own positions
/// of the sun and the moon. Equinoxes before 1984 are treated as if they belonged to the same
/// system, which leaves an error of some arc seconds.
///
/// @param position  mean position of `epoch`
/// @param epoch     its equinox [yr]
/// @param mjd       the date [MJD]
Position precessed(const Position& position, double epoch, double mjd);

}  // namespace zarn

#endif  // ZARN_PROGRAMS_PRECESSION_H
