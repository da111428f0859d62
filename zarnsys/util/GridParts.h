/// What the moon grid and the sky grid share: the vector functions, instants and targets.
///
/// For files that are compiled for vector instructions, see CMakeLists.txt.
#ifndef ZARNSYS_UTIL_GRIDPARTS_H
#define ZARNSYS_UTIL_GRIDPARTS_H

#include <cmath>

// glibc has vector forms of these functions, within 4 units of the last place and with the same
// results for infinities and not-a-numbers, but tells the compiler only under fast mathematics,
// which would break other promises.
#if defined(__GNUC__) && !defined(__clang__) && defined(__x86_64__) && defined(__GLIBC__) && \
    __GLIBC_PREREQ(2, 35)
#define ZARNSYS_VECTOR_FUNCTIONS
extern "C" {
[[gnu::simd("notinbranch")]] double sin(double) noexcept;
[[gnu::simd("notinbranch")]] double cos(double) noexcept;
[[gnu::simd("notinbranch")]] double asin(double) noexcept;
[[gnu::simd("notinbranch")]] double acos(double) noexcept;
[[gnu::simd("notinbranch")]] double atan(double) noexcept;
[[gnu::simd("notinbranch")]] double exp(double) noexcept;
[[gnu::simd("notinbranch")]] double log(double) noexcept;
}
#endif

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <limits>
#include <vector>

#include "zarnsys/util/Formulas.h"
#include "zarnsys/util/MoonGrid.h"

namespace grids {

using formulas::Pair;
using formulas::Vector;

constexpr double JD_OF_MJD_0 = 2400000.5;
constexpr double DEG_PER_HOUR = 15.0;
constexpr double FULL_DEG_PER_RAD = 57.29577951308238;  // of separations, as in the classic call
constexpr double POLE = 90.0;                           // [deg]
constexpr double NOTHING = std::numeric_limits<double>::quiet_NaN();

constexpr std::size_t LANES = 8;   // doubles in the longest vector
constexpr std::size_t BLOCK = 64;  // instants worked on together: they stay in the nearest cache
using Values = double[BLOCK];      // a plain array: gcc 12 does not vectorise over std::array

#ifdef ZARNSYS_VECTOR_FUNCTIONS
/// What this processor and its system can run.
inline bool hasAvx512() {
    return __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512dq");
}
inline bool hasAvx2() { return __builtin_cpu_supports("avx2"); }
#endif

/// A count raised to whole vectors: loops over so many need no rest one by one.
[[gnu::always_inline]] inline std::size_t wholeVectors(std::size_t count) {
    return (count + LANES - 1) / LANES * LANES;
}

/// Angles [rad] with their sines and cosines.
struct Angles {
    Values angle;
    Values sine;
    Values cosine;

    Pair pair(std::size_t i) const { return {sine[i], cosine[i]}; }
};

/// What is needed of the observer's place.
struct Observer {
    double westLongitude;  ///< [h]
    Pair latitude;
};

/// Instants and what depends on them alone; the units are those of `MoonGrid`.
struct Instants {
    std::size_t count;
    Values jd;  ///< Julian Date [d]; these and all others in whole vectors, the last one repeated
    Values siderealTime;
    Values zenithX, zenithY, zenithZ;  ///< direction of the observer's zenith
    Values moonX, moonY, moonZ;        ///< direction of the moon
    Values up, north, east;            ///< the same in the frame of the horizon
    Values cosSun;                     ///< cosine of the angle between sun and moon
    Values altitude, azimuth, distance, elongation, illumination;

    Vector zenith(std::size_t i) const { return {zenithX[i], zenithY[i], zenithZ[i]}; }
    Vector moon(std::size_t i) const { return {moonX[i], moonY[i], moonZ[i]}; }
};

/// A latitude or declination [deg] that is one; else not-a-number.
[[gnu::always_inline]] inline double withinPoles(double angle) {
    return std::fabs(angle) <= POLE ? angle : NOTHING;
}

inline Observer observerAt(const Place& place) {
    const double latitude = withinPoles(place.latitude) / formulas::DEG_PER_RAD;
    return {place.westLongitude / DEG_PER_HOUR, {std::sin(latitude), std::cos(latitude)}};
}

// Loops around a function do nothing else: across a call no vector stays in a register.

[[gnu::always_inline]] inline void fillSines(Angles& angles, std::size_t lanes) {
    for (std::size_t i = 0; i < lanes; ++i) angles.sine[i] = std::sin(angles.angle[i]);
}

[[gnu::always_inline]] inline void fillCosines(Angles& angles, std::size_t lanes) {
    for (std::size_t i = 0; i < lanes; ++i) angles.cosine[i] = std::cos(angles.angle[i]);
}

[[gnu::always_inline]] inline void fillPairs(Angles& angles, std::size_t lanes) {
    fillSines(angles, lanes);
    fillCosines(angles, lanes);
}

[[gnu::always_inline]] inline void addTo(Values& sum, double amplitude, const Values& values,
                                         std::size_t lanes) {
    for (std::size_t i = 0; i < lanes; ++i) sum[i] += amplitude * values[i];
}

/// Computes the sines of a term, for one series, and leaves its angles for another one.
[[gnu::always_inline]] inline void addSines(Values& sum, const formulas::Term& term,
                                            const Values& centuries, Angles& angles,
                                            std::size_t lanes) {
    for (std::size_t i = 0; i < lanes; ++i) angles.angle[i] = formulas::angleOf(term, centuries[i]);
    fillSines(angles, lanes);
    addTo(sum, term.amplitude, angles.sine, lanes);
}

constexpr bool parallaxHasAnglesOfLongitude() {
    for (std::size_t k = 0; k < std::size(formulas::PARALLAX); ++k) {
        const formulas::Term& term = formulas::LONGITUDE[k];
        const formulas::Term& other = formulas::PARALLAX[k];
        if (term.phase != other.phase || term.rate != other.rate) return false;
    }
    return true;
}
static_assert(parallaxHasAnglesOfLongitude(), "fillMoon takes them once for both");

/// The moon's ecliptic longitude, latitude and parallax [rad], as by `formulas::moonLongitude` and
/// its like.
struct MoonPlace {
    Angles longitude, latitude, parallax;
};

[[gnu::always_inline]] inline void fillMoon(const Values& jd, std::size_t lanes, MoonPlace& moon) {
    Values centuries;
    for (std::size_t i = 0; i < lanes; ++i) {
        centuries[i] = formulas::centuries(jd[i]);
        moon.longitude.angle[i] = formulas::moonMeanLongitude(centuries[i]);
        moon.latitude.angle[i] = 0.0;
        moon.parallax.angle[i] = formulas::MEAN_PARALLAX;
    }
    Angles angles;
    for (std::size_t k = 0; k < std::size(formulas::LONGITUDE); ++k) {
        addSines(moon.longitude.angle, formulas::LONGITUDE[k], centuries, angles, lanes);
        if (k >= std::size(formulas::PARALLAX)) continue;
        fillCosines(angles, lanes);
        addTo(moon.parallax.angle, formulas::PARALLAX[k].amplitude, angles.cosine, lanes);
    }
    for (const formulas::Term& term : formulas::LATITUDE)
        addSines(moon.latitude.angle, term, centuries, angles, lanes);
    for (std::size_t i = 0; i < lanes; ++i) {
        moon.longitude.angle[i] /= formulas::DEG_PER_RAD;
        moon.latitude.angle[i] /= formulas::DEG_PER_RAD;
        moon.parallax.angle[i] /= formulas::DEG_PER_RAD;
    }
    fillPairs(moon.longitude, lanes);
    fillPairs(moon.latitude, lanes);
    fillSines(moon.parallax, lanes);
}

/// The sun's ecliptic longitude and the obliquity of the ecliptic.
struct SunPlace {
    Angles longitude, obliquity;
};

[[gnu::always_inline]] inline void fillSun(const Values& jd, std::size_t lanes, SunPlace& sun) {
    Angles anomaly;
    for (std::size_t i = 0; i < lanes; ++i) {
        anomaly.angle[i] = formulas::sunAnomaly(jd[i]);
        sun.obliquity.angle[i] = formulas::obliquity(jd[i]);
    }
    fillPairs(anomaly, lanes);
    for (std::size_t i = 0; i < lanes; ++i)
        sun.longitude.angle[i] = formulas::sunLongitude(jd[i], anomaly.pair(i));
    fillPairs(sun.longitude, lanes);
    fillPairs(sun.obliquity, lanes);
}

[[gnu::always_inline]] inline void fillSidereal(const Observer& observer, std::size_t lanes,
                                                Instants& at, Angles& sidereal) {
    for (std::size_t i = 0; i < lanes; ++i) {
        at.siderealTime[i] = formulas::siderealTime(at.jd[i], observer.westLongitude);
        sidereal.angle[i] = at.siderealTime[i] / formulas::HOURS_PER_RAD;
    }
    fillPairs(sidereal, lanes);
}

/// Directions and what comes from them without a function's call.
[[gnu::always_inline]] inline void fillPlaces(const Observer& observer, std::size_t lanes,
                                              const Angles& sidereal, const MoonPlace& moons,
                                              const SunPlace& suns, Instants& at) {
    for (std::size_t i = 0; i < lanes; ++i) {
        const Pair lst = sidereal.pair(i);
        const Vector zenith = {observer.latitude.cosine * lst.cosine,
                               observer.latitude.cosine * lst.sine, observer.latitude.sine};
        const auto [moon, distance] = formulas::moonPlace(
            moons.longitude.pair(i), moons.latitude.pair(i), moons.parallax.sine[i], zenith);
        // The hour angle's sine and cosine, from those of sidereal time and right ascension.
        const double south = moon.x * lst.cosine + moon.y * lst.sine;
        const double west = moon.x * lst.sine - moon.y * lst.cosine;
        const Vector horizon = formulas::toHorizon(south, west, moon.z, observer.latitude);
        const Vector sun = formulas::sunDirection(suns.longitude.pair(i), suns.obliquity.pair(i));
        at.zenithX[i] = zenith.x;
        at.zenithY[i] = zenith.y;
        at.zenithZ[i] = zenith.z;
        at.moonX[i] = moon.x;
        at.moonY[i] = moon.y;
        at.moonZ[i] = moon.z;
        at.distance[i] = distance;
        at.up[i] = horizon.x;
        at.north[i] = horizon.y;
        at.east[i] = horizon.z;
        at.cosSun[i] = formulas::cosineBetween(sun, moon);
        at.illumination[i] = (1.0 - at.cosSun[i]) * 0.5;
    }
}

/// Computes the values of `count` instants [d], at least one and at most a block of them.
[[gnu::always_inline]] inline void computeInstants(const Observer& observer,
                                                   const MJD_DATE* instants, std::size_t count,
                                                   Instants& at) {
    const std::size_t lanes = wholeVectors(count);
    at.count = count;
    std::fill_n(at.jd + (lanes - LANES), LANES, instants[count - 1] + JD_OF_MJD_0);
    for (std::size_t i = 0; i < count; ++i) at.jd[i] = instants[i] + JD_OF_MJD_0;
    Angles sidereal;
    MoonPlace moons;
    SunPlace suns;
    fillSidereal(observer, lanes, at, sidereal);
    fillMoon(at.jd, lanes, moons);
    fillSun(at.jd, lanes, suns);
    fillPlaces(observer, lanes, sidereal, moons, suns, at);
    for (std::size_t i = 0; i < lanes; ++i)
        at.altitude[i] = formulas::altitude({at.up[i], at.north[i], at.east[i]});
    for (std::size_t i = 0; i < lanes; ++i)
        at.azimuth[i] = formulas::azimuth({at.up[i], at.north[i], at.east[i]});
    for (std::size_t i = 0; i < lanes; ++i)
        at.elongation[i] = std::acos(at.cosSun[i]) * FULL_DEG_PER_RAD;
}

/// Directions of targets, an array per coordinate, in whole vectors.
struct Directions {
    explicit Directions(std::size_t targets)
        : count(targets),
          x(wholeVectors(targets)),
          y(wholeVectors(targets)),
          z(wholeVectors(targets)) {}

    Vector operator()(std::size_t i) const { return {x[i], y[i], z[i]}; }

    std::size_t count;
    std::vector<double> x;
    std::vector<double> y;
    std::vector<double> z;
};

/// The directions of the targets from `begin` on, at most a block of them.
[[gnu::always_inline]] inline void computeDirections(const std::vector<SkyPosition>& targets,
                                                     std::size_t begin, Directions& directions) {
    const std::size_t count = std::min(BLOCK, targets.size() - begin);
    const std::size_t lanes = wholeVectors(count);
    Angles ra;
    Angles dec;
    for (std::size_t i = 0; i < lanes; ++i) {
        const SkyPosition& target = targets[begin + std::min(i, count - 1)];
        ra.angle[i] = target.ra / DEG_PER_HOUR / formulas::HOURS_PER_RAD;
        dec.angle[i] = withinPoles(target.dec) / formulas::DEG_PER_RAD;
    }
    fillPairs(ra, lanes);
    fillPairs(dec, lanes);
    for (std::size_t i = 0; i < lanes; ++i) {
        directions.x[begin + i] = ra.cosine[i] * dec.cosine[i];
        directions.y[begin + i] = ra.sine[i] * dec.cosine[i];
        directions.z[begin + i] = dec.sine[i];
    }
}

[[gnu::always_inline]] inline Directions directionsOf(const std::vector<SkyPosition>& targets) {
    Directions directions(targets.size());
    for (std::size_t begin = 0; begin < targets.size(); begin += BLOCK)
        computeDirections(targets, begin, directions);
    return directions;
}

}  // namespace grids

#endif  // ZARNSYS_UTIL_GRIDPARTS_H
