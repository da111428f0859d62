/// Where sun and moon stand by a theory independent of the library's: ERFA.
///
/// Sun: `eraEpv00`, 0.02 arc seconds. Moon: `eraMoon98` (Meeus 1998 after ELP 2000), 10 arc seconds
/// in longitude, 4 in latitude. Light time and aberration are applied. Dynamical time follows from
/// universal time by the polynomials of Espenak & Meeus 2006.
#ifndef ZARNSYS_BENCH_ALMANAC_H
#define ZARNSYS_BENCH_ALMANAC_H

#include "programs/shared/sky/Units.h"

constexpr double HOUR_PER_RAD = zarn::DEG_PER_RAD / zarn::DEG_PER_HOUR;

enum class Earth { SPHERE, ELLIPSOID };  // of the equatorial radius; WGS84

struct Observer {
    double latitude;   // [deg], on the ellipsoid geodetic
    double longitude;  // [deg], WEST positive
};

struct Vector {
    double xyz[3];
};

struct SkyPlace {
    double ra;   // [h]
    double dec;  // [deg]
};

SkyPlace placeOf(Vector direction);
Vector directionOf(const SkyPlace& place);
double angleBetween(Vector a, Vector b);  // [deg]
double lengthOf(Vector vector);

/// Dynamical less universal time [d].
double deltaT(double jd);

/// The moon's ecliptic longitude less the sun's, as seen from the Earth's centre [deg].
///
/// @param jdTT  Julian Date, dynamical time [d]
/// @return      -180 to 180
double elongationInLongitude(double jdTT);

/// The sky of an instant. Distances in Earth radii. Places are of the true equator and equinox of
/// date (`eraPnm06a`), with nutation: these are what a telescope is pointed by, and what the
/// library leaves out belongs to its differences.
class TrueSky {
public:
    /// @param jd  Julian Date, universal time [d]
    explicit TrueSky(double jd);

    Vector sun() const { return sun_; }  ///< from the Earth's centre
    Vector sunFor(const Observer& observer, Earth earth) const;
    Vector moonFor(const Observer& observer, Earth earth) const;
    double altitude(const Observer& observer, Vector direction) const;  ///< [deg]
    double siderealTime(const Observer& observer) const;                ///< apparent [h]

    /// The sun, seen from the moon, less the observer: 0 at full moon [deg].
    double phaseAngle(Vector moon) const;

private:
    Vector seenBy(const Observer& observer, Earth earth, Vector body) const;

    double greenwich_;  ///< apparent sidereal time [rad]
    Vector sun_;
    Vector moon_;  ///< from the Earth's centre
};

/// Whether ERFA and what is built on it here give published values; what fails is printed.
bool agreesWithPublishedValues();

#endif  // ZARNSYS_BENCH_ALMANAC_H
