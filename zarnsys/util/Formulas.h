/// The formulas behind Astronomy.h and MoonGrid.h, once for both.
///
/// They have no branches and are always inlined: a loop around them can become vector instructions.
/// None takes the sine and the cosine of one angle, which gcc would turn into a complex function
/// that has no vector form; these come in as a pair.
#ifndef ZARNSYS_UTIL_FORMULAS_H
#define ZARNSYS_UTIL_FORMULAS_H

#include <cfloat>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <utility>

namespace formulas {

// Shortened literals are part of the results: none of these is replaced by a fuller value.
constexpr double DEG_PER_RAD = 57.2957795130823;
constexpr double HOURS_PER_RAD = 3.819718634205;
constexpr double PI = 3.14159265358979;
constexpr double TWO_PI = 6.28318530717958;
constexpr double HALF_PI = 1.570796326794895;
constexpr double THREE_HALVES_PI = 4.712388980384685;

constexpr double J2000 = 2451545.0;           // [d], Julian Date
constexpr double DAYS_PER_CENTURY = 36525.0;  // Julian century [d]
constexpr double HOURS_PER_DAY = 24.0;
constexpr double SECONDS_PER_DAY = 86400.0;
constexpr double SYNODIC_MONTH = 29.5305888531;  // mean [d]

/// One term of a series in T, Julian centuries from J2000: amplitude * f(phase + rate * T).
struct Term {
    double amplitude;  // [deg]
    double phase;      // [deg]
    double rate;       // [deg per century]
};

// The Astronomical Almanac's low-precision moon.
constexpr Term LONGITUDE[] = {
    // sines
    {6.29, 134.9, 477198.85}, {-1.27, 259.2, -413335.38}, {0.66, 235.7, 890534.23},
    {0.21, 269.9, 954397.7},  {-0.19, 357.5, 35999.05},   {-0.11, 186.6, 966404.05},
};
constexpr Term LATITUDE[] = {
    // sines
    {5.13, 93.3, 483202.03},
    {0.28, 228.2, 960400.87},
    {-0.28, 318.3, 6003.18},
    {-0.17, 217.6, -407332.2},
};
constexpr double MEAN_PARALLAX = 0.9508;  // [deg]
constexpr Term PARALLAX[] = {
    // cosines, of the first angles of the longitude
    {0.0518, 134.9, 477198.85},
    {0.0095, 259.2, -413335.38},
    {0.0078, 235.7, 890534.23},
    {0.0028, 269.9, 954397.7},
};

struct Vector {
    double x;
    double y;
    double z;
};

/// Sine and cosine of an angle.
struct Pair {
    double sine;
    double cosine;
};

/// A direction, and how far what stands there is away.
struct Place {
    Vector direction;  ///< length 1, x to the equinox, z to the pole
    double distance;   ///< [Earth radii]
};

[[gnu::always_inline]] inline double sinDeg(double degrees) {
    return std::sin(degrees / DEG_PER_RAD);
}

[[gnu::always_inline]] inline double cosDeg(double degrees) {
    return std::cos(degrees / DEG_PER_RAD);
}

/// The number as a double holds it: on 32-bit x86 a register may hold more of it.
[[gnu::always_inline]] inline double stored(double x) {
    constexpr int IN_LONG_DOUBLE = 2;
    if constexpr (FLT_EVAL_METHOD == IN_LONG_DOUBLE) {
        const volatile double rounded = x;
        return rounded;
    }
    return x;
}

/// A sine or cosine that rounding may have carried beyond 1; not-a-number stays so.
[[gnu::always_inline]] inline double withinOne(double x) {
    const double notBelow = x < -1.0 ? -1.0 : x;
    return notBelow > 1.0 ? 1.0 : notBelow;
}

/// The angle of a term [rad].
[[gnu::always_inline]] inline double angleOf(const Term& term, double T) {
    return (term.phase + term.rate * T) / DEG_PER_RAD;
}

template <std::size_t N, std::size_t... I>
[[gnu::always_inline]] inline double addSines(double sum, const Term (&series)[N], double T,
                                              std::index_sequence<I...> /*terms*/) {
    ((sum += series[I].amplitude * std::sin(angleOf(series[I], T))), ...);
    return sum;
}

template <std::size_t N, std::size_t... I>
[[gnu::always_inline]] inline double addCosines(double sum, const Term (&series)[N], double T,
                                                std::index_sequence<I...> /*terms*/) {
    ((sum += series[I].amplitude * std::cos(angleOf(series[I], T))), ...);
    return sum;
}

/// Local mean sidereal time [h], see `lst`.
[[gnu::always_inline]] inline double siderealTime(double jd, double longit) {
    const double jdint = std::trunc(jd);
    const double jdfrac = jd - jdint;
    const bool beforeMidnight = jdfrac < 0.5;
    const double jdmid = beforeMidnight ? jdint - 0.5 : jdint + 0.5;
    const double ut = beforeMidnight ? jdfrac + 0.5 : jdfrac - 0.5;
    const double t = (jdmid - J2000) / DAYS_PER_CENTURY;
    double sid_g = (24110.54841 + 8640184.812866 * t + 0.093104 * t * t - 6.2e-6 * t * t * t) /
                   SECONDS_PER_DAY;
    sid_g -= std::trunc(sid_g);
    const double turns = sid_g + 1.0027379093 * ut - longit / HOURS_PER_DAY;
    const double signedSid = (turns - std::trunc(turns)) * HOURS_PER_DAY;
    const double sid = stored(signedSid < 0.0 ? signedSid + HOURS_PER_DAY : signedSid);
    return sid >= HOURS_PER_DAY ? 0.0 : sid;  // a tiny negative time rounds up to 24
}

/// The angle of a point [rad], see `atan_circ`.
[[gnu::always_inline]] inline double circleAngle(double x, double y) {
    const double angle = std::atan(y / x);
    const double turned = x < 0.0 ? angle + PI : angle;
    const double positive = turned < 0.0 ? turned + TWO_PI : turned;
    const double down = y < 0.0 ? THREE_HALVES_PI : y;  // 0 and not-a-number stay
    const double onAxis = y > 0.0 ? HALF_PI : down;
    return x == 0.0 ? onAxis : positive;
}

/// The sun's mean anomaly, its ecliptic longitude and the obliquity of the ecliptic [rad], see
/// `lpsun`.
[[gnu::always_inline]] inline double sunAnomaly(double jd) {
    return (357.528 + 0.9856003 * (jd - J2000)) / DEG_PER_RAD;
}
[[gnu::always_inline]] inline double sunLongitude(double jd, const Pair& anomaly) {
    const double L = 280.46 + 0.9856474 * (jd - J2000);
    const double sineOfTwice = 2.0 * anomaly.sine * anomaly.cosine;
    return (L + 1.915 * anomaly.sine + 0.02 * sineOfTwice) / DEG_PER_RAD;
}
[[gnu::always_inline]] inline double obliquity(double jd) {
    return (23.439 - 4e-7 * (jd - J2000)) / DEG_PER_RAD;
}

[[gnu::always_inline]] inline Vector sunDirection(const Pair& longitude, const Pair& obliquity) {
    return {longitude.cosine, obliquity.cosine * longitude.sine, obliquity.sine * longitude.sine};
}

/// Julian centuries from J2000.
[[gnu::always_inline]] inline double centuries(double jd) {
    return (jd - J2000) / DAYS_PER_CENTURY;
}

/// The moon's mean longitude [deg].
[[gnu::always_inline]] inline double moonMeanLongitude(double T) { return 218.32 + 481267.883 * T; }

/// The moon's ecliptic longitude, latitude and parallax [rad], see `lpmoon`.
[[gnu::always_inline]] inline double moonLongitude(double jd) {
    const double T = centuries(jd);
    const std::make_index_sequence<std::size(LONGITUDE)> terms;
    return addSines(moonMeanLongitude(T), LONGITUDE, T, terms) / DEG_PER_RAD;
}
[[gnu::always_inline]] inline double moonLatitude(double jd) {
    const std::make_index_sequence<std::size(LATITUDE)> terms;
    return addSines(0.0, LATITUDE, centuries(jd), terms) / DEG_PER_RAD;
}
[[gnu::always_inline]] inline double moonParallax(double jd) {
    const std::make_index_sequence<std::size(PARALLAX)> terms;
    return addCosines(MEAN_PARALLAX, PARALLAX, centuries(jd), terms) / DEG_PER_RAD;
}

/// The moon as an observer sees it, see `lpmoon`.
///
/// @param observer  from the Earth's centre to the observer, on a sphere of radius 1
[[gnu::always_inline]] inline Place moonPlace(const Pair& longitude, const Pair& latitude,
                                              double sinParallax, const Vector& observer) {
    const double distance = 1.0 / sinParallax;
    // Direction cosines; the obliquity is taken as fixed.
    const double l = latitude.cosine * longitude.cosine;
    const double m = 0.9175 * latitude.cosine * longitude.sine - 0.3978 * latitude.sine;
    const double n = 0.3978 * latitude.cosine * longitude.sine + 0.9175 * latitude.sine;
    const double x = l * distance - observer.x;
    const double y = m * distance - observer.y;
    const double z = n * distance - observer.z;
    const double topo_dist = std::sqrt(x * x + y * y + z * z);
    return {{x / topo_dist, y / topo_dist, z / topo_dist}, topo_dist};
}

/// From a direction in the equatorial frame of the meridian to that of the horizon, see `altit`.
///
/// @param south, west, pole  cos(dec) cos(ha), cos(dec) sin(ha), sin(dec)
/// @param latitude           the observer's
/// @return                   x up, y north, z east
[[gnu::always_inline]] inline Vector toHorizon(double south, double west, double pole,
                                               const Pair& latitude) {
    return {south * latitude.cosine + pole * latitude.sine,
            pole * latitude.cosine - south * latitude.sine, -west};
}

/// Altitude and azimuth [deg] of a direction in the frame of the horizon, see `altit`.
[[gnu::always_inline]] inline double altitude(const Vector& horizon) {
    return std::asin(withinOne(horizon.x)) * DEG_PER_RAD;
}
[[gnu::always_inline]] inline double azimuth(const Vector& horizon) {
    return circleAngle(horizon.y, horizon.z) * DEG_PER_RAD;
}

// Moonlight by Krisciunas & Schaefer 1991, PASP 103, 1033, see `lunskybright`. Powers of ten come
// in from outside: loops take another way to them.
constexpr double LEAST_MOONLIGHT = 0.001;  // [nanolambert], that which is negligible

/// The power of ten that the moon's illuminance at its mean distance is.
///
/// @param phaseAngle  0 at full moon [deg]
[[gnu::always_inline]] inline double illuminanceExponent(double phaseAngle) {
    const double a = phaseAngle;
    return -0.4 * (3.84 + 0.026 * std::fabs(a) + 4e-9 * a * a * a * a);
}

/// What the moon's distance [Earth radii] and its opposition surge make of that.
[[gnu::always_inline]] inline double atDistance(double illuminance, double distance,
                                                double phaseAngle) {
    constexpr double MEAN_DISTANCE = 60.27;  // [Earth radii]
    const double d = distance / MEAN_DISTANCE;
    const double a = std::fabs(phaseAngle);
    return illuminance / (d * d) * (a < 7.0 ? 1.35 - 0.05 * a : 1.0);
}

/// The power of ten that a term of the scattering is, beyond 10 degrees from the moon.
[[gnu::always_inline]] inline double farScatteringExponent(double rho) { return 6.15 - rho / 40.0; }

/// How much moonlight is scattered.
///
/// @param rho     angle to the moon [deg]
/// @param cosRho  its cosine
/// @param far     10 to the power of `farScatteringExponent`
[[gnu::always_inline]] inline double scattering(double rho, double cosRho, double far) {
    const double r = std::fabs(rho);
    const double near = r > 0.25 ? 6.2e7 / (rho * rho) : 9.9e8;  // that within the lunar disc
    return 229087.0 * (1.06 + cosRho * cosRho) + (r > 10.0 ? far : near);
}

/// The power of ten that remains of light on its way through the air.
///
/// @param extinction  [mag per airmass]
/// @param sine        of the altitude
[[gnu::always_inline]] inline double remainingExponent(double extinction, double sine) {
    const double airmass = 1.0 / std::sqrt(1.0 - 0.96 * (1.0 - sine * sine));
    return -0.4 * extinction * airmass;
}

constexpr double LIGHT_UNIT = 34.08;  // [nanolambert]

/// A brightness [mag per square arc second], given the natural logarithm of that in `LIGHT_UNIT`s.
[[gnu::always_inline]] inline double magnitude(double logarithm) {
    return 22.5 - 1.08574 * logarithm;
}

constexpr double AIRMASS_POWER = 1.1;

/// The angle [rad] whose sine is the reciprocal of the airmass, by Pickering 2002, DIO 12, 3: good
/// down to the horizon, which the secant of the zenith distance is not.
///
/// @param altitude  [deg]
/// @param power     the altitude to the power of `AIRMASS_POWER`
[[gnu::always_inline]] inline double airmassAngle(double altitude, double power) {
    return (altitude + 244.0 / (165.0 + 47.0 * power)) / DEG_PER_RAD;
}

/// The cosine of the angle between two directions.
[[gnu::always_inline]] inline double cosineBetween(const Vector& a, const Vector& b) {
    return withinOne(a.x * b.x + a.y * b.y + a.z * b.z);
}

}  // namespace formulas

#endif  // ZARNSYS_UTIL_FORMULAS_H
