/// The difference between dynamical and universal time.
#ifndef ZARN_PROGRAMS_DELTAT_H
#define ZARN_PROGRAMS_DELTAT_H

namespace zarn {

/// Dynamical less universal time [d], by the polynomials of Espenak & Meeus 2006,
/// NASA/TP-2006-214141, section 2.
///
/// They follow the observed Earth until 2005, within half a second; later they are a forecast,
/// which was 6 seconds too high in 2025.
///
/// @param mjd  from 1900 on, either time [MJD]
double deltaT(double mjd);

}  // namespace zarn

#endif  // ZARN_PROGRAMS_DELTAT_H
