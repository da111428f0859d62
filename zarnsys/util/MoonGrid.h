/// @file
/// The moon's values for many targets at many instants: `computeMoonParam` for a scheduler.
///
/// The work that depends on the instant alone is done once per instant, and all of it in a form
/// that compilers turn into vector instructions; which ones is decided at run time by what the
/// processor has. The classic call's results come out within 1e-8 of each unit, angles modulo their
/// circle, and the phase within one step of single precision. The exceptions are where the formulas
/// themselves amplify rounding: within an arc second of zenith or nadir the moon's altitude and
/// azimuth, of a target or its antipode the distance; instants within a microsecond of a new moon,
/// for which either lunation may be taken; and on 32-bit x86 instants more than 10,000 years away.
#ifndef ZARNSYS_UTIL_MOONGRID_H
#define ZARNSYS_UTIL_MOONGRID_H

#include <cstddef>
#include <vector>

#include "Export.h"
#include "ZarnMoonVal.h"
#include "ZarnTime.h"

/// A target's place in the equinox of date, see `computeMoonParam`.
struct MoonTarget {
    double ra;   ///< right ascension [deg]
    double dec;  ///< declination [deg]
};

/// The moon's values. All vectors but the last have one element per instant, in the order given.
struct MoonGrid {
    std::vector<double> lst;        ///< local mean sidereal time [h]
    std::vector<double> moonfli;    ///< illuminated fraction, 0 to 1
    std::vector<double> moonalt;    ///< moon's altitude [deg], without refraction
    std::vector<double> moonaz;     ///< moon's azimuth [deg], from north through east
    std::vector<double> moonphase;  ///< moon's age over the mean synodic month
    std::vector<double> alphasun;   ///< angle between sun and moon [RADIANS]
    std::vector<double> objdist;    ///< distance from observer to moon [Earth radii]

    /// Angle between moon and target [deg]: a row of all targets for each instant, so that the
    /// value of a target at an instant is element instant * (number of targets) + target.
    std::vector<double> moondist;
};

/// Computes the moon's values for every target at every instant, seen from a place.
///
/// Instants in rising order are the fastest. Not-a-number inputs give not-a-number values; nothing
/// is written anywhere. Reentrant: several threads may compute parts of a larger grid.
///
/// @param targets    places in the equinox of date [deg]
/// @param instants   [d], universal time
/// @param longitude  observer's longitude [deg], WEST positive
/// @param latitude   observer's latitude [deg]
/// @throw std::bad_alloc, std::length_error  when the values find no room
ZARNSYS_EXPORT MoonGrid computeMoonGrid(const std::vector<MoonTarget>& targets,
                                        const std::vector<MJD_DATE>& instants, double longitude,
                                        double latitude);

/// The same for a telescope's place; latitude and longitude 0 for one that is unknown.
ZARNSYS_EXPORT MoonGrid computeMoonGrid(const std::vector<MoonTarget>& targets,
                                        const std::vector<MJD_DATE>& instants, Telescope telescope);

#endif  // ZARNSYS_UTIL_MOONGRID_H
