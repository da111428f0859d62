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

/// Where an observer stands. In the order of `getTelescopeCoord`: mind that EAST is negative.
struct Place {
    double latitude;   ///< [deg], -90 to 90, north positive
    double longitude;  ///< [deg], WEST positive, any number of circles
};

/// A target's direction in the equinox of date, to which catalogue positions are precessed first.
struct MoonTarget {
    double ra;   ///< right ascension [deg], any number of circles
    double dec;  ///< declination [deg], -90 to 90
};

/// The moon's values, one element per instant in the order given; separations per target, too.
struct MoonGrid {
    std::vector<double> siderealTime;  ///< local mean sidereal time [h], 0 to 24
    std::vector<double> illumination;  ///< illuminated fraction, 0 to 1, seen from the place
    std::vector<double> altitude;      ///< of the moon's centre [deg], with parallax, unrefracted
    std::vector<double> azimuth;       ///< [deg], 0 to 360 from north through east
    std::vector<double> phase;         ///< age over the mean synodic month, 0 to 1.01
    std::vector<double> elongation;    ///< angle between moon and sun [deg], 0 to 180
    std::vector<double> distance;      ///< from the observer [Earth radii]
    std::vector<double> separations;   ///< rows of all targets, one row per instant [deg]
    std::size_t targetCount = 0;       ///< length of such a row

    /// Angle between the moon at an instant and a target [deg], 0 to 180; both by their positions
    /// in what was given, unchecked.
    double separation(std::size_t instant, std::size_t target) const {
        return separations[instant * targetCount + target];
    }
};

/// Computes the moon's values for every target at every instant, seen from a place.
///
/// Instants in rising order are the fastest. What is not a number or out of its range gives
/// not-a-number for each value that depends on it: a declination the separations from its target,
/// an instant all of its values, a latitude all but sidereal time and phase. Nothing is written
/// anywhere. Reentrant: several threads may compute parts of a larger grid.
///
/// @param targets   directions in the equinox of date [deg]
/// @param instants  Modified Julian Dates [d], universal time
/// @param place     where the observer stands
/// @throw std::bad_alloc, std::length_error  when the values find no room
ZARNSYS_EXPORT MoonGrid computeMoonGrid(const std::vector<MoonTarget>& targets,
                                        const std::vector<MJD_DATE>& instants, const Place& place);

/// The same into a grid that the caller keeps: what it held is replaced, and its memory used again,
/// which saves more than half of the time of a large grid. After a throw its values mean nothing.
/// One thread at a time may use a grid.
ZARNSYS_EXPORT void computeMoonGrid(const std::vector<MoonTarget>& targets,
                                    const std::vector<MJD_DATE>& instants, const Place& place,
                                    MoonGrid& grid);

/// The same for a telescope's place; latitude and longitude 0 for one that is unknown.
ZARNSYS_EXPORT MoonGrid computeMoonGrid(const std::vector<MoonTarget>& targets,
                                        const std::vector<MJD_DATE>& instants, Telescope telescope);

#endif  // ZARNSYS_UTIL_MOONGRID_H
