// This file is compiled for vector instructions, see CMakeLists.txt.
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
}
#endif

#include <algorithm>
#include <cstddef>
#include <limits>

#include "zarnsys/util/Formulas.h"
#include "zarnsys/util/Lunation.h"
#include "zarnsys/util/MoonGrid.h"

namespace {

using formulas::Pair;
using formulas::Vector;

constexpr double JD_OF_MJD_0 = 2400000.5;
constexpr double DEG_PER_HOUR = 15.0;
constexpr double SYNODIC_MONTH = 29.5305888531;         // mean [d]
constexpr double FULL_DEG_PER_RAD = 57.29577951308238;  // of separations, as in the classic call
constexpr double POLE = 90.0;                           // [deg]

constexpr std::size_t BLOCK = 64;  // instants worked on together: they stay in the nearest cache
using Values = double[BLOCK];      // a plain array: gcc 12 does not vectorise over std::array

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
    Values jd;  ///< Julian Date [d]
    Values siderealTime;
    Angles sidereal, moonLongitude, moonLatitude, moonParallax, sunAnomaly, sunLongitude, obliquity;
    Values moonX, moonY, moonZ;  ///< direction of the moon
    Values altitude, azimuth, distance, elongation, illumination;
};

/// Directions, an array per coordinate.
struct Directions {
    explicit Directions(std::size_t count) : x(count), y(count), z(count) {}

    std::vector<double> x;
    std::vector<double> y;
    std::vector<double> z;
};

/// A latitude or declination [deg] that is one; else not-a-number.
[[gnu::always_inline]] inline double withinPoles(double angle) {
    return std::fabs(angle) <= POLE ? angle : std::numeric_limits<double>::quiet_NaN();
}

[[gnu::always_inline]] inline void fillPairs(Angles& angles) {
    for (std::size_t i = 0; i < BLOCK; ++i) angles.sine[i] = std::sin(angles.angle[i]);
    for (std::size_t i = 0; i < BLOCK; ++i) angles.cosine[i] = std::cos(angles.angle[i]);
}

[[gnu::always_inline]] inline void fillAngles(const Observer& observer, Instants& at) {
    for (std::size_t i = 0; i < BLOCK; ++i) {
        at.siderealTime[i] = formulas::siderealTime(at.jd[i], observer.westLongitude);
        at.sidereal.angle[i] = at.siderealTime[i] / formulas::HOURS_PER_RAD;
    }
    for (std::size_t i = 0; i < BLOCK; ++i) {
        at.moonLongitude.angle[i] = formulas::moonLongitude(at.jd[i]);
        at.moonLatitude.angle[i] = formulas::moonLatitude(at.jd[i]);
        at.sunAnomaly.angle[i] = formulas::sunAnomaly(at.jd[i]);
        at.obliquity.angle[i] = formulas::obliquity(at.jd[i]);
    }
    for (std::size_t i = 0; i < BLOCK; ++i)
        at.moonParallax.angle[i] = formulas::moonParallax(at.jd[i]);
    fillPairs(at.sunAnomaly);
    for (std::size_t i = 0; i < BLOCK; ++i)
        at.sunLongitude.angle[i] = formulas::sunLongitude(at.jd[i], at.sunAnomaly.pair(i));
    for (Angles* angles : {&at.sidereal, &at.moonLongitude, &at.moonLatitude, &at.moonParallax,
                           &at.sunLongitude, &at.obliquity})
        fillPairs(*angles);
}

[[gnu::always_inline]] inline void computeInstants(const Observer& observer, Instants& at) {
    fillAngles(observer, at);
    for (std::size_t i = 0; i < BLOCK; ++i) {
        const Pair lst = at.sidereal.pair(i);
        const Vector site = {observer.latitude.cosine * lst.cosine,
                             observer.latitude.cosine * lst.sine, observer.latitude.sine};
        const auto [moon, distance] = formulas::moonPlace(
            at.moonLongitude.pair(i), at.moonLatitude.pair(i), at.moonParallax.sine[i], site);
        // The hour angle's sine and cosine, from those of sidereal time and right ascension.
        const double south = moon.x * lst.cosine + moon.y * lst.sine;
        const double west = moon.x * lst.sine - moon.y * lst.cosine;
        const Vector horizon = formulas::toHorizon(south, west, moon.z, observer.latitude);
        const Vector sun = formulas::sunDirection(at.sunLongitude.pair(i), at.obliquity.pair(i));
        const double cosSun = formulas::cosineBetween(sun, moon);
        at.moonX[i] = moon.x;
        at.moonY[i] = moon.y;
        at.moonZ[i] = moon.z;
        at.distance[i] = distance;
        at.altitude[i] = formulas::altitude(horizon);
        at.azimuth[i] = formulas::azimuth(horizon);
        at.elongation[i] = std::acos(cosSun) * FULL_DEG_PER_RAD;
        at.illumination[i] = (1.0 - cosSun) * 0.5;
    }
}

/// The directions of the targets from `begin` on, at most a block of them.
[[gnu::always_inline]] inline void computeDirections(const std::vector<SkyPosition>& targets,
                                                     std::size_t begin, Directions& directions) {
    const std::size_t count = std::min(BLOCK, targets.size() - begin);
    Angles ra = {};
    Angles dec = {};
    for (std::size_t i = 0; i < count; ++i) {
        ra.angle[i] = targets[begin + i].ra / DEG_PER_HOUR / formulas::HOURS_PER_RAD;
        dec.angle[i] = withinPoles(targets[begin + i].dec) / formulas::DEG_PER_RAD;
    }
    fillPairs(ra);
    fillPairs(dec);
    for (std::size_t i = 0; i < count; ++i) {
        directions.x[begin + i] = ra.cosine[i] * dec.cosine[i];
        directions.y[begin + i] = ra.sine[i] * dec.cosine[i];
        directions.z[begin + i] = dec.sine[i];
    }
}

[[gnu::always_inline]] inline void computeSeparations(const Directions& targets, const Vector& moon,
                                                      double* __restrict separations) {
    const std::size_t count = targets.x.size();
    for (std::size_t i = 0; i < count; ++i) {
        const double cosine =
            formulas::cosineBetween({targets.x[i], targets.y[i], targets.z[i]}, moon);
        separations[i] = std::acos(cosine) * FULL_DEG_PER_RAD;
    }
}

/// Computes the values of the instants from `begin` on, at most a block of them.
[[gnu::always_inline]] inline void computeBlock(const Directions& targets,
                                                const std::vector<MJD_DATE>& instants,
                                                const Observer& observer, std::size_t begin,
                                                Instants& at, MoonGrid& grid) {
    const std::size_t count = std::min(BLOCK, instants.size() - begin);
    for (std::size_t i = 0; i < count; ++i) at.jd[i] = instants[begin + i] + JD_OF_MJD_0;
    computeInstants(observer, at);
    const auto keep = [begin, count](const Values& values, std::vector<double>& result) {
        std::copy_n(values, count,
                    result.begin() + static_cast<std::vector<double>::difference_type>(begin));
    };
    keep(at.siderealTime, grid.siderealTime);
    keep(at.altitude, grid.altitude);
    keep(at.azimuth, grid.azimuth);
    keep(at.distance, grid.distance);
    keep(at.elongation, grid.elongation);
    keep(at.illumination, grid.illumination);
    for (std::size_t i = 0; i < count; ++i) {
        computeSeparations(targets, {at.moonX[i], at.moonY[i], at.moonZ[i]},
                           grid.separation.row(begin + i));
    }
}

/// Computes all but the phases.
[[gnu::always_inline]] inline void compute(const std::vector<SkyPosition>& targets,
                                           const std::vector<MJD_DATE>& instants,
                                           const Observer& observer, MoonGrid& grid) {
    Directions directions(targets.size());
    for (std::size_t begin = 0; begin < targets.size(); begin += BLOCK)
        computeDirections(targets, begin, directions);
    Instants at = {};
    for (std::size_t begin = 0; begin < instants.size(); begin += BLOCK)
        computeBlock(directions, instants, observer, begin, at, grid);
}

using Compute = void(const std::vector<SkyPosition>&, const std::vector<MJD_DATE>&, const Observer&,
                     MoonGrid&);

void computeAnywhere(const std::vector<SkyPosition>& targets, const std::vector<MJD_DATE>& instants,
                     const Observer& observer, MoonGrid& grid) {
    compute(targets, instants, observer, grid);
}

#ifdef ZARNSYS_VECTOR_FUNCTIONS
[[gnu::target("avx2")]] void computeAvx2(const std::vector<SkyPosition>& targets,
                                         const std::vector<MJD_DATE>& instants,
                                         const Observer& observer, MoonGrid& grid) {
    compute(targets, instants, observer, grid);
}

[[gnu::target("avx512f,avx512dq")]] void computeAvx512(const std::vector<SkyPosition>& targets,
                                                       const std::vector<MJD_DATE>& instants,
                                                       const Observer& observer, MoonGrid& grid) {
    compute(targets, instants, observer, grid);
}
#endif

/// The fastest form that this processor and its system can run.
Compute* chooseCompute() {
#ifdef ZARNSYS_VECTOR_FUNCTIONS
    if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512dq"))
        return computeAvx512;
    if (__builtin_cpu_supports("avx2")) return computeAvx2;
#endif
    return computeAnywhere;
}

void computePhases(const std::vector<MJD_DATE>& instants, std::vector<double>& phases) {
    Lunation lunation = {};
    for (std::size_t i = 0; i < instants.size(); ++i) {
        const double jd = instants[i] + JD_OF_MJD_0;
        if (!holds(lunation, jd)) lunation = findLunation(jd);
        phases[i] = static_cast<double>(ageIn(lunation, jd)) / SYNODIC_MONTH;
    }
}

void resize(MoonGrid& grid, std::size_t instants, std::size_t targets) {
    for (std::vector<double>* values :
         {&grid.siderealTime, &grid.altitude, &grid.azimuth, &grid.distance, &grid.elongation,
          &grid.illumination, &grid.phase})
        values->resize(instants);
    grid.separation.resize(instants, targets);
}

}  // namespace

Place telescopePlace(Telescope telescope) {
    Place place;
    double latitude = 0;
    double longitude = 0;
    if (getTelescopeCoord(latitude, longitude, telescope) != 0) return place;
    place.latitude = latitude;
    place.westLongitude = longitude;
    return place;
}

MoonGrid computeMoonGrid(const std::vector<SkyPosition>& targets,
                         const std::vector<MJD_DATE>& instants, const Place& place) {
    MoonGrid grid;
    computeMoonGrid(targets, instants, place, grid);
    return grid;
}

void computeMoonGrid(const std::vector<SkyPosition>& targets, const std::vector<MJD_DATE>& instants,
                     const Place& place, MoonGrid& grid) {
    static Compute* const chosen = chooseCompute();
    resize(grid, instants.size(), targets.size());
    computePhases(instants, grid.phase);
    const double latitude = withinPoles(place.latitude) / formulas::DEG_PER_RAD;
    chosen(targets, instants,
           {place.westLongitude / DEG_PER_HOUR, {std::sin(latitude), std::cos(latitude)}}, grid);
}
