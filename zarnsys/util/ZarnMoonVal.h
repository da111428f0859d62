/// @file
/// The moon's circumstances for an observation.
#ifndef ZARNSYS_UTIL_ZARNMOONVAL_H
#define ZARNSYS_UTIL_ZARNMOONVAL_H

#include <iosfwd>

#include "Export.h"
#include "ZarnTime.h"

/// The telescopes served: OLAN on one site, VEK1 to VEK4 on another.
enum Telescope : int { OLAN = 0, VEK1 = 1, VEK2 = 2, VEK3 = 3, VEK4 = 4 };

/// The place of a telescope.
///
/// The coordinates are a deployment's data: set them in one place, the table in ZarnMoonVal.cpp.
/// Those that come with the library belong to no real site.
///
/// @param latitude   receives the latitude [deg], north positive
/// @param longitude  receives the longitude [deg], WEST positive
/// @param telescope  which of them
/// @return           0; -1 for another value than an enumerator, with both outputs 0.0
ZARNSYS_EXPORT int getTelescopeCoord(double& latitude, double& longitude, Telescope telescope);

/// The moon's values for a target at an instant and a place. Reentrant; nothing is cached.
///
/// The moon's and the sun's places come out in the equinox of date: give the target's in the same
/// one. Far from J2000 a catalogue's place is wrong by up to 0.7 degrees until 2050. A date that is
/// not a number gives values that are not, and a line of `adj_time` on standard output.
///
/// @param starRa        target's right ascension [deg]
/// @param starDec       target's declination [deg]
/// @param mjdStart      instant [d], universal time
/// @param longitude     observer's longitude [deg], WEST positive
/// @param latitude      observer's latitude [deg]
/// @param lstValPtr     receives the local mean sidereal time [h]
/// @param moonfliPtr    receives the illuminated fraction, 0 to 1
/// @param moondistPtr   receives the angle between moon and target [deg]
/// @param moonaltPtr    receives the moon's altitude [deg], without refraction
/// @param moonazPtr     receives the moon's azimuth [deg], from north through east
/// @param moonphasePtr  receives the moon's age over the mean synodic month: not the lit fraction
/// @param alphasunPtr   receives the angle between sun and moon [RADIANS]
/// @param objdistPtr    receives the distance from observer to moon [Earth radii]
ZARNSYS_EXPORT void computeMoonParam(const double& starRa, const double& starDec,
                                     const MJD_DATE& mjdStart, const double& longitude,
                                     const double& latitude, double* lstValPtr, double* moonfliPtr,
                                     double* moondistPtr, double* moonaltPtr, double* moonazPtr,
                                     double* moonphasePtr, double* alphasunPtr, double* objdistPtr);

/// Five moon values, computed at construction or set later. Safe to share among threads as long as
/// none of them sets a value.
class ZARNSYS_EXPORT ZarnMoonVal {
public:
    /// All values 0.
    ZarnMoonVal();

    /// The values of `computeMoonParam` for a telescope's place; latitude and longitude 0 for one
    /// that is unknown.
    ///
    /// @param starRa, starDec  target [deg], in the equinox of date
    /// @param mjdStart         instant [d], universal time
    /// @param telescope        whose place it is
    ZarnMoonVal(const double& starRa, const double& starDec, const MJD_DATE& mjdStart,
                Telescope telescope);

    double getMoonAlt() const { return altitude_; }  ///< [deg], without refraction
    double getMoonAz() const { return azimuth_; }    ///< [deg], from north through east
    double getMoonDistance() const { return distanceToTarget_; }  ///< from the target [deg]
    double getFLI() const { return fli_; }                        ///< illuminated fraction, 0 to 1
    double getMoonPhase() const { return phase_; }                ///< age over the synodic month

    /// @{
    /// Sets what the getter of the like name returns.
    void moonAlt(double altitude) { altitude_ = altitude; }
    void moonAz(double azimuth) { azimuth_ = azimuth; }
    void moonDistance(double distance) { distanceToTarget_ = distance; }
    void moonFLI(double fli) { fli_ = fli; }
    void moonPhase(double phase) { phase_ = phase; }
    /// @}

    /// Writes the five values, separated by blanks, in the order of the members.
    std::ostream& print(std::ostream& stream) const;

private:
    double phase_;             ///< age over the mean synodic month: 0 new, 0.5 about full
    double altitude_;          ///< [deg]
    double azimuth_;           ///< [deg], from north through east
    double distanceToTarget_;  ///< [deg]
    double fli_;               ///< illuminated fraction, 0 to 1
};

#endif  // ZARNSYS_UTIL_ZARNMOONVAL_H
