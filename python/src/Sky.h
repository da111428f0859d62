/// What the module computes beyond the library's grids: the sun, the moon's phases and precession,
/// for many values.
#ifndef ZARN_PYTHON_SKY_H
#define ZARN_PYTHON_SKY_H

#include <zarnsys/util/MoonGrid.h>

#include <vector>

namespace zarn::python {

/// A night's conditions, as `SkyConditions` has them. Not-a-number passes.
///
/// @throw std::invalid_argument  naming the argument in Python, for what SkyLimits.h rules out
SkyConditions conditionsOf(double darkSky, double extinction);

/// The sun's places in the equinox of date [deg], one per instant.
struct Sun {
    std::vector<double> ra;
    std::vector<double> dec;
    std::vector<double> altitude;  ///< without refraction
};

/// Not-a-number for instants that are not finite.
Sun sunAt(const std::vector<MJD_DATE>& instants, const Place& place);

/// Phases of the moon in rising order.
struct Phases {
    std::vector<MJD_DATE> instants;
    std::vector<int> kinds;  ///< 0 new moon, 1 first quarter, 2 full moon, 3 last quarter
};

/// The phases from one instant on and before another.
///
/// @throw std::invalid_argument  for instants more than 10,000 years from 1900, where the series
///                               means nothing, and for not-a-number
Phases phasesBetween(MJD_DATE start, MJD_DATE stop);

/// Positions [deg], one per target at each instant.
struct PositionTables {
    TargetTable ra;
    TargetTable dec;
};

/// Brings positions of J2000 to the mean equinox of each instant.
PositionTables precessedTo(const std::vector<MJD_DATE>& instants,
                           const std::vector<SkyPosition>& targets);

}  // namespace zarn::python

#endif  // ZARN_PYTHON_SKY_H
