#include "Almanac.h"

#include <erfa.h>
#include <erfam.h>

#include <cmath>
#include <cstdio>

#include "programs/shared/sky/DeltaT.h"

namespace {

constexpr double EARTH_RADIUS = 6378137.0;  // [m], equatorial
constexpr double RADII_PER_AU = ERFA_DAU / EARTH_RADIUS;
constexpr double LIGHT_DAYS = ERFA_AULT / ERFA_DAYSEC;  // for an astronomical unit [d]

/// Sun and moon from the Earth's centre as they appear, in the celestial reference system [au].
struct Appearance {
    double sun[3];
    double moon[3];
};

Appearance appearanceAt(double jdTT) {
    Appearance seen{};
    double heliocentric[2][3];
    double barycentric[2][3];
    eraEpv00(jdTT, 0.0, heliocentric, barycentric);
    const double distance = eraPm(heliocentric[0]);
    // Aberration moves what is seen towards where the Earth goes.
    double towards[3];
    eraSxp(distance * LIGHT_DAYS, barycentric[1], towards);
    eraPmp(towards, heliocentric[0], seen.sun);
    double moon[2][3];
    eraMoon98(jdTT, 0.0, moon);
    eraPpsp(moon[0], -eraPm(moon[0]) * LIGHT_DAYS, moon[1], seen.moon);
    return seen;
}

/// Longitude in the mean ecliptic of date [deg].
double longitudeOf(double jdTT, double direction[3], double* latitude) {
    double toEcliptic[3][3];
    double ecliptic[3];
    double longitude = 0;
    eraEcm06(jdTT, 0.0, toEcliptic);
    eraRxp(toEcliptic, direction, ecliptic);
    eraC2s(ecliptic, &longitude, latitude);
    *latitude *= zarn::DEG_PER_RAD;
    return eraAnp(longitude) * zarn::DEG_PER_RAD;
}

Vector rotated(double rotation[3][3], double au[3]) {
    Vector result{};
    eraRxp(rotation, au, result.xyz);
    eraSxp(RADII_PER_AU, result.xyz, result.xyz);
    return result;
}

bool isNear(const char* what, double value, double published, double tolerance) {
    if (std::fabs(value - published) <= tolerance) return true;
    std::printf("%s: %.9g, published %.9g\n", what, value, published);
    return false;
}

}  // namespace

SkyPlace placeOf(Vector direction) {
    double ra = 0;
    double dec = 0;
    eraC2s(direction.xyz, &ra, &dec);
    return {eraAnp(ra) * HOUR_PER_RAD, dec * zarn::DEG_PER_RAD};
}

Vector directionOf(const SkyPlace& place) {
    Vector direction{};
    eraS2c(place.ra / HOUR_PER_RAD, place.dec / zarn::DEG_PER_RAD, direction.xyz);
    return direction;
}

double angleBetween(Vector a, Vector b) { return eraSepp(a.xyz, b.xyz) * zarn::DEG_PER_RAD; }

double lengthOf(Vector vector) { return eraPm(vector.xyz); }

double deltaT(double jd) { return zarn::deltaT(jd - zarn::JD_OF_MJD_0); }

double elongationInLongitude(double jdTT) {
    Appearance seen = appearanceAt(jdTT);
    double latitude = 0;
    const double difference =
        longitudeOf(jdTT, seen.moon, &latitude) - longitudeOf(jdTT, seen.sun, &latitude);
    return std::remainder(difference, zarn::FULL_CIRCLE);
}

TrueSky::TrueSky(double jd) {
    const double jdTT = jd + deltaT(jd);
    double toDate[3][3];
    eraPnm06a(jdTT, 0.0, toDate);
    greenwich_ = eraGst06(jd, 0.0, jdTT, 0.0, toDate);
    Appearance seen = appearanceAt(jdTT);
    sun_ = rotated(toDate, seen.sun);
    moon_ = rotated(toDate, seen.moon);
}

double TrueSky::siderealTime(const Observer& observer) const {
    return eraAnp(greenwich_ - observer.longitude / zarn::DEG_PER_RAD) * HOUR_PER_RAD;
}

Vector TrueSky::seenBy(const Observer& observer, Earth earth, Vector body) const {
    const double meridian = siderealTime(observer) / HOUR_PER_RAD;
    double place[3];
    if (earth == Earth::SPHERE) {
        eraS2c(meridian, observer.latitude / zarn::DEG_PER_RAD, place);
    } else {
        eraGd2gc(ERFA_WGS84, meridian, observer.latitude / zarn::DEG_PER_RAD, 0.0, place);
        eraSxp(1.0 / EARTH_RADIUS, place, place);
    }
    eraPmp(body.xyz, place, body.xyz);
    return body;
}

Vector TrueSky::sunFor(const Observer& observer, Earth earth) const {
    return seenBy(observer, earth, sun_);
}

Vector TrueSky::moonFor(const Observer& observer, Earth earth) const {
    return seenBy(observer, earth, moon_);
}

double TrueSky::altitude(const Observer& observer, Vector direction) const {
    Vector zenith = directionOf({siderealTime(observer), observer.latitude});
    return 90.0 - angleBetween(zenith, direction);
}

double TrueSky::phaseAngle(Vector moon) const {
    Vector toSun{};
    Vector toEarth{};
    Vector sun = sun_;
    eraPmp(sun.xyz, moon.xyz, toSun.xyz);
    eraSxp(-1.0, moon.xyz, toEarth.xyz);
    return angleBetween(toSun, toEarth);
}

bool agreesWithPublishedValues() {
    // ERFA's own test of eraMoon98.
    double moon[2][3];
    eraMoon98(zarn::JD_OF_MJD_0, 43999.9, moon);
    bool agrees = isNear("eraMoon98 x", moon[0][0], -0.2601295959971044180e-2, 1e-11);
    agrees = isNear("eraMoon98 z", moon[0][2], 0.2640794528229828909e-3, 1e-11) && agrees;
    // Meeus 1998, the moon of example 47.a without its nutation, and for example 25.b the sun's
    // apparent place by the complete theory. His light time moves the moon in longitude only.
    constexpr double APRIL_1992 = 2448724.5;
    constexpr double OCTOBER_1992 = 2448908.5;
    double latitude = 0;
    Appearance seen = appearanceAt(APRIL_1992);
    const double longitude = longitudeOf(APRIL_1992, seen.moon, &latitude);
    agrees = isNear("moon's longitude", longitude, 133.162655, 5e-6) && agrees;
    agrees = isNear("moon's latitude", latitude, -3.229126, 2e-5) && agrees;
    double toDate[3][3];
    eraPnm06a(OCTOBER_1992, 0.0, toDate);
    seen = appearanceAt(OCTOBER_1992);
    const SkyPlace sun = placeOf(rotated(toDate, seen.sun));
    agrees = isNear("sun's right ascension", sun.ra * 15.0, 198.378121, 2e-5) && agrees;
    return isNear("sun's declination", sun.dec, -7.783817, 2e-5) && agrees;
}
