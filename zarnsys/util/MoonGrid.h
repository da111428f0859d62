/// @file
/// The moon's values for many targets at many instants: `computeMoonParam` for a scheduler.
///
/// The work that depends on the instant alone is done once per instant, and all of it in a form
/// that compilers turn into vector instructions; which ones is decided at run time by what the
/// processor has. The classic call's results come out within 1e-8 of each unit, angles modulo their
/// circle, and the phase within one step of single precision. The exceptions are where the formulas
/// themselves amplify rounding: within an arc second of zenith or nadir the moon's altitude and
/// azimuth, of a target or its antipode the separation; instants within a microsecond of a new
/// moon, for which either lunation may be taken; and on 32-bit x86 instants more than 10,000 years
/// away.
#ifndef ZARNSYS_UTIL_MOONGRID_H
#define ZARNSYS_UTIL_MOONGRID_H

#include <cstddef>
#include <limits>
#include <stdexcept>
#include <vector>

#include "Export.h"
#include "ZarnMoonVal.h"
#include "ZarnTime.h"

/// A position in the sky, in the equinox of date, see `computeMoonParam`.
struct SkyPosition {
    double ra;   ///< right ascension [deg]; whole circles more or less do not matter
    double dec;  ///< declination [deg], -90 to 90
};

/// An observer's place on the Earth. Its coordinates are set by name, so that none takes the
/// other's place; they are not-a-number until then.
struct Place {
    explicit Place() = default;

    /// [deg], north positive, -90 to 90
    double latitude = std::numeric_limits<double>::quiet_NaN();
    /// [deg], WEST positive; whole circles more or less do not matter
    double westLongitude = std::numeric_limits<double>::quiet_NaN();
};

/// The place of a telescope, from the table that `getTelescopeCoord` reads; not-a-number for a
/// value that is no enumerator. Throws nothing.
ZARNSYS_EXPORT Place telescopePlace(Telescope telescope);

/// A value for every target at every instant, the targets of an instant side by side in memory.
///
/// Indices are not checked. Several threads may read one table, or write different elements of it.
class TargetTable {
public:
    std::size_t instants() const { return instants_; }  ///< how many
    std::size_t targets() const { return targets_; }    ///< how many

    /// The value of a target at an instant, both by their place in the order given, from 0 on.
    double operator()(std::size_t instant, std::size_t target) const {
        return row(instant)[target];
    }

    /// @{
    /// The values of an instant, one per target; valid until the table is resized or ends.
    const double* row(std::size_t instant) const { return values_.data() + instant * targets_; }
    double* row(std::size_t instant) { return values_.data() + instant * targets_; }
    /// @}

    /// Makes room for as many instants and targets; what values it holds then is unspecified. Takes
    /// memory only when it never had as many values, and gives none back.
    ///
    /// @throw std::bad_alloc, std::length_error  when there is no such room; nothing has changed
    void resize(std::size_t instants, std::size_t targets) {
        if (instants > 0 && targets > values_.max_size() / instants)
            throw std::length_error("the table of targets and instants is too large");
        values_.resize(instants * targets);
        instants_ = instants;
        targets_ = targets;
    }

private:
    std::size_t instants_ = 0;
    std::size_t targets_ = 0;
    std::vector<double> values_;
};

/// The moon's values for an observer. The vectors have one element per instant, in the order given.
struct MoonGrid {
    std::vector<double> siderealTime;  ///< local mean sidereal time [h], 0 <= t < 24
    std::vector<double> altitude;      ///< moon's altitude [deg], -90 to 90, without refraction
    std::vector<double> azimuth;       ///< moon's azimuth [deg], 0 to 360, from north through east
    std::vector<double> distance;      ///< from observer to moon [Earth radii], about 55 to 65
    std::vector<double> elongation;    ///< angle between sun and moon [deg], 0 new to 180 full
    std::vector<double> illumination;  ///< illuminated fraction, 0 to 1
    std::vector<double> phase;         ///< age over the mean synodic month, see `lun_age`
    TargetTable separation;            ///< angle between moon and target [deg], 0 to 180
};

/// Computes the moon's values for every target at every instant, seen from a place.
///
/// Instants in rising order are the fastest. Not-a-number comes out where the inputs say nothing: a
/// target whose declination lies beyond a pole, or one of whose coordinates is not finite, has no
/// separation, an instant that is not finite no value at all; beyond a pole there is only the
/// sidereal time and the phase, without a longitude only the phase. Nothing is written anywhere.
/// Reentrant: several threads may compute, each its own grid.
///
/// @param targets   positions in the equinox of date
/// @param instants  [d], universal time
/// @param place     the observer's
/// @throw std::bad_alloc, std::length_error  when the values find no room
ZARNSYS_EXPORT MoonGrid computeMoonGrid(const std::vector<SkyPosition>& targets,
                                        const std::vector<MJD_DATE>& instants, const Place& place);

/// The same into a grid that the caller keeps, which gets the sizes of the inputs whatever it held
/// before. One that once had as many values is filled without taking memory anew: with tables of
/// tens of megabytes that saves most of the time.
///
/// @param targets   positions in the equinox of date
/// @param instants  [d], universal time; not a vector of the grid
/// @param place     the observer's
/// @param grid      receives the values; after an exception its sizes and values are unspecified,
///                  and it can be used again
/// @throw std::bad_alloc, std::length_error  when the values find no room
ZARNSYS_EXPORT void computeMoonGrid(const std::vector<SkyPosition>& targets,
                                    const std::vector<MJD_DATE>& instants, const Place& place,
                                    MoonGrid& grid);

/// What the air of a night is like. Its values are set by name; they are not-a-number until then.
struct SkyConditions {
    explicit SkyConditions() = default;

    /// extinction at the zenith [mag per airmass]
    double extinction = std::numeric_limits<double>::quiet_NaN();
    /// brightness of the sky without moon [V mag per square arc second]
    double darkSky = std::numeric_limits<double>::quiet_NaN();
};

/// What an observer has of each target at each instant.
struct SkyGrid {
    /// The altitude of the moon's centre at which its upper limb is on the horizon [deg].
    static constexpr double HORIZON = -0.833;

    TargetTable altitude;  ///< [deg], -90 to 90, without refraction
    TargetTable airmass;   ///< by Pickering 2002, DIO 12, 3: 1 at the zenith to 38.7 at altitude 0
    TargetTable separation;  ///< angle between moon and target [deg], 0 to 180
    TargetTable moonlight;   ///< that `lunskybright` gives [V mag per square arc second]
    TargetTable sky;         ///< dark sky and moonlight [V mag per square arc second]
};

/// Computes altitude and sky for every target at every instant, seen from a place.
///
/// The moonlight is that of Krisciunas & Schaefer 1991, PASP 103, 1033, see `lunskybright`;
/// twilight is left out. The results of `altit`, `subtend` and `lunskybright` come out within 1e-8
/// of each unit, with the exceptions that are said above of the moon's values, for targets as for
/// the moon. Where a formula has a step, at the horizon, 0.25 and 10 degrees from the moon, 7
/// degrees from full moon and where moonlight becomes negligible, rounding may decide for either
/// side.
///
/// Not-a-number comes out where there is nothing to say: of airmass, moonlight and sky for targets
/// below the horizon; of moonlight besides where it is negligible, and while the moon's altitude is
/// below `SkyGrid::HORIZON`, when the sky is the dark one. The same is true of what depends on an
/// instant or coordinate that is not finite, on a latitude or declination beyond a pole, or on a
/// condition that is not a number. Nothing is written anywhere. Reentrant: several threads may
/// compute, each its own grid.
///
/// @param targets     positions in the equinox of date
/// @param instants    [d], universal time
/// @param place       the observer's
/// @param conditions  the night's
/// @throw std::bad_alloc, std::length_error  when the values find no room
ZARNSYS_EXPORT SkyGrid computeSkyGrid(const std::vector<SkyPosition>& targets,
                                      const std::vector<MJD_DATE>& instants, const Place& place,
                                      const SkyConditions& conditions);

/// The same into a grid that the caller keeps, see `computeMoonGrid`.
///
/// @param targets     positions in the equinox of date
/// @param instants    [d], universal time
/// @param place       the observer's
/// @param conditions  the night's
/// @param grid        receives the values; after an exception its sizes and values are unspecified,
///                    and it can be used again
/// @throw std::bad_alloc, std::length_error  when the values find no room
ZARNSYS_EXPORT void computeSkyGrid(const std::vector<SkyPosition>& targets,
                                   const std::vector<MJD_DATE>& instants, const Place& place,
                                   const SkyConditions& conditions, SkyGrid& grid);

#endif  // ZARNSYS_UTIL_MOONGRID_H
