// This file is compiled for vector instructions, see CMakeLists.txt.
#include <cmath>
#include <cstddef>

#include "zarnsys/util/Formulas.h"
#include "zarnsys/util/GridParts.h"
#include "zarnsys/util/MoonGrid.h"

namespace {

using formulas::LEAST_MOONLIGHT;
using grids::BLOCK;
using grids::Directions;
using grids::Instants;
using grids::LANES;
using grids::NOTHING;
using grids::Observer;
using grids::Values;

constexpr double LN_10 = 2.302585092994045684;
constexpr double MAGNITUDE = -0.4 * LN_10;  // natural logarithm of a magnitude's ratio of light

/// Powers of ten, by a function that has a vector form.
[[gnu::always_inline]] inline double tenTo(double exponent) { return std::exp(LN_10 * exponent); }

/// What is needed of the conditions.
struct Air {
    double extinction;
    double darkSky;
    double darkLight;  ///< the dark sky's light, in those of magnitude 0
};

/// Lines of sight: one per target or one per instant. In whole vectors, as all below.
struct Sights {
    std::size_t lanes;
    Values up;       ///< sine of the altitude
    Values cosMoon;  ///< cosine of the angle to the moon
    Values moon;     ///< moonlight that arrives below the air [units of the model]; 0: moon down
    bool moonless;   ///< none arrives at any of them

    Values altitude, airmass, separation, moonlight, sky;  ///< as in `SkyGrid`
};

/// The moonlight that arrives at each instant.
[[gnu::always_inline]] inline void computeArriving(const Instants& at, double extinction,
                                                   Values& moon) {
    const std::size_t lanes = grids::wholeVectors(at.count);
    for (std::size_t i = 0; i < lanes; ++i)
        moon[i] = tenTo(formulas::illuminanceExponent(180.0 - at.elongation[i]));
    Values remaining;
    for (std::size_t i = 0; i < lanes; ++i)
        remaining[i] = tenTo(formulas::remainingExponent(extinction, at.up[i]));
    for (std::size_t i = 0; i < lanes; ++i) {
        const double light =
            formulas::atDistance(moon[i], at.distance[i], 180.0 - at.elongation[i]) * remaining[i];
        moon[i] = at.altitude[i] < SkyGrid::HORIZON ? 0.0 : light;
    }
}

[[gnu::always_inline]] inline void computeAngles(Sights& s) {
    for (std::size_t i = 0; i < s.lanes; ++i)
        s.altitude[i] = std::asin(s.up[i]) * formulas::DEG_PER_RAD;
    for (std::size_t i = 0; i < s.lanes; ++i)
        s.separation[i] = std::acos(s.cosMoon[i]) * grids::FULL_DEG_PER_RAD;
}

/// Natural logarithms of values, those below a least one taken as that one. By two loops: in a
/// single one gcc takes the logarithm before it chooses, that of negative values too, and each
/// takes its time.
[[gnu::always_inline]] inline void takeLogarithms(Values& values, double least, std::size_t lanes) {
    for (std::size_t i = 0; i < lanes; ++i) values[i] = values[i] <= least ? least : values[i];
    for (std::size_t i = 0; i < lanes; ++i) values[i] = std::log(values[i]);
}

[[gnu::always_inline]] inline void computeAirmasses(Sights& s) {
    constexpr double LOWEST = 1e-9;  // [deg]
    Values work;
    for (std::size_t i = 0; i < s.lanes; ++i) work[i] = s.altitude[i];
    takeLogarithms(work, LOWEST, s.lanes);
    for (std::size_t i = 0; i < s.lanes; ++i) work[i] = std::exp(formulas::AIRMASS_POWER * work[i]);
    for (std::size_t i = 0; i < s.lanes; ++i)
        work[i] = std::sin(formulas::airmassAngle(s.altitude[i], work[i]));
    for (std::size_t i = 0; i < s.lanes; ++i)
        s.airmass[i] = s.altitude[i] >= 0.0 ? 1.0 / work[i] : NOTHING;
}

/// The light that the moon adds, 0 below the horizon [nanolambert].
[[gnu::always_inline]] inline void computeLight(const Sights& s, double extinction, Values& light) {
    Values far;
    for (std::size_t i = 0; i < s.lanes; ++i)
        far[i] = tenTo(formulas::farScatteringExponent(s.separation[i]));
    for (std::size_t i = 0; i < s.lanes; ++i)
        light[i] = tenTo(formulas::remainingExponent(extinction, s.up[i]));
    for (std::size_t i = 0; i < s.lanes; ++i) {
        const double scattered = formulas::scattering(s.separation[i], s.cosMoon[i], far[i]);
        const double added = scattered * s.moon[i] * (1.0 - light[i]);
        light[i] = s.altitude[i] < 0.0 || s.moon[i] == 0.0 ? 0.0 : added;
    }
}

[[gnu::always_inline]] inline void computeBrightness(const Air& air, Sights& s) {
    Values light;
    Values work;
    computeLight(s, air.extinction, light);
    for (std::size_t i = 0; i < s.lanes; ++i) work[i] = light[i] / formulas::LIGHT_UNIT;
    takeLogarithms(work, LEAST_MOONLIGHT / formulas::LIGHT_UNIT, s.lanes);
    for (std::size_t i = 0; i < s.lanes; ++i) s.moonlight[i] = formulas::magnitude(work[i]);
    for (std::size_t i = 0; i < s.lanes; ++i) work[i] = std::exp(MAGNITUDE * s.moonlight[i]);
    for (std::size_t i = 0; i < s.lanes; ++i)
        work[i] = std::log(air.darkLight + work[i]) / MAGNITUDE;
    for (std::size_t i = 0; i < s.lanes; ++i) {
        const bool none = light[i] <= LEAST_MOONLIGHT;
        const double sky = none ? air.darkSky : work[i];
        s.moonlight[i] = none ? NOTHING : s.moonlight[i];
        s.sky[i] = s.altitude[i] >= 0.0 ? sky : NOTHING;
    }
}

[[gnu::always_inline]] inline void computeDarkness(double darkSky, Sights& s) {
    for (std::size_t i = 0; i < s.lanes; ++i) {
        s.moonlight[i] = NOTHING;
        s.sky[i] = s.altitude[i] >= 0.0 ? darkSky : NOTHING;
    }
}

[[gnu::always_inline]] inline void computeSights(const Air& air, Sights& s) {
    computeAngles(s);
    computeAirmasses(s);
    if (s.moonless) {
        computeDarkness(air.darkSky, s);
    } else {
        computeBrightness(air, s);
    }
}

/// Calls `keep` with each of the values of sights and the table that they belong to.
template <typename Keep>
[[gnu::always_inline]] inline void keepSights(const Sights& s, SkyGrid& grid, const Keep& keep) {
    keep(s.altitude, grid.altitude);
    keep(s.airmass, grid.airmass);
    keep(s.separation, grid.separation);
    keep(s.moonlight, grid.moonlight);
    keep(s.sky, grid.sky);
}

/// The sights of the i-th instant of a block, target by target.
[[gnu::always_inline]] inline void computeRow(const Directions& targets, const Instants& at,
                                              const Values& moon, const Air& air, std::size_t i,
                                              std::size_t instant, SkyGrid& grid) {
    Sights s;
    s.moonless = moon[i] == 0.0;
    for (std::size_t begin = 0; begin < targets.count; begin += BLOCK) {
        const std::size_t count = std::min(BLOCK, targets.count - begin);
        s.lanes = grids::wholeVectors(count);
        for (std::size_t t = 0; t < s.lanes; ++t) {
            s.up[t] = formulas::cosineBetween(targets(begin + t), at.zenith(i));
            s.cosMoon[t] = formulas::cosineBetween(targets(begin + t), at.moon(i));
            s.moon[t] = moon[i];
        }
        computeSights(air, s);
        keepSights(s, grid, [=](const Values& values, TargetTable& table) {
            double* const row = table.row(instant) + begin;
            for (std::size_t t = 0; t < count; ++t) row[t] = values[t];
        });
    }
}

/// The sights of a target, instant by instant.
[[gnu::always_inline]] inline void computeColumn(const Directions& targets, const Instants& at,
                                                 const Values& moon, const Air& air, std::size_t t,
                                                 std::size_t begin, SkyGrid& grid) {
    Sights s;
    s.moonless = false;
    s.lanes = grids::wholeVectors(at.count);
    for (std::size_t i = 0; i < s.lanes; ++i) {
        s.up[i] = formulas::cosineBetween(targets(t), at.zenith(i));
        s.cosMoon[i] = formulas::cosineBetween(targets(t), at.moon(i));
        s.moon[i] = moon[i];
    }
    computeSights(air, s);
    keepSights(s, grid, [&at, t, begin](const Values& values, TargetTable& table) {
        for (std::size_t i = 0; i < at.count; ++i) table.row(begin + i)[t] = values[i];
    });
}

/// Computes the values of the instants from `begin` on, at most a block of them: along the longer
/// side of their table.
[[gnu::always_inline]] inline void computeBlock(const Directions& targets,
                                                const std::vector<MJD_DATE>& instants,
                                                const Observer& observer, const Air& air,
                                                std::size_t begin, SkyGrid& grid) {
    Instants at;
    Values moon;
    grids::computeInstants(observer, &instants[begin], std::min(BLOCK, instants.size() - begin),
                           at);
    computeArriving(at, air.extinction, moon);
    if (targets.count < LANES) {
        for (std::size_t t = 0; t < targets.count; ++t)
            computeColumn(targets, at, moon, air, t, begin, grid);
        return;
    }
    for (std::size_t i = 0; i < at.count; ++i)
        computeRow(targets, at, moon, air, i, begin + i, grid);
}

[[gnu::always_inline]] inline void compute(const std::vector<SkyPosition>& targets,
                                           const std::vector<MJD_DATE>& instants,
                                           const Observer& observer, const Air& air,
                                           SkyGrid& grid) {
    const Directions directions = grids::directionsOf(targets);
    for (std::size_t begin = 0; begin < instants.size(); begin += BLOCK)
        computeBlock(directions, instants, observer, air, begin, grid);
}

using Compute = void(const std::vector<SkyPosition>&, const std::vector<MJD_DATE>&, const Observer&,
                     const Air&, SkyGrid&);

void computeAnywhere(const std::vector<SkyPosition>& targets, const std::vector<MJD_DATE>& instants,
                     const Observer& observer, const Air& air, SkyGrid& grid) {
    compute(targets, instants, observer, air, grid);
}

#ifdef ZARNSYS_VECTOR_FUNCTIONS
[[gnu::target("avx2")]] void computeAvx2(const std::vector<SkyPosition>& targets,
                                         const std::vector<MJD_DATE>& instants,
                                         const Observer& observer, const Air& air, SkyGrid& grid) {
    compute(targets, instants, observer, air, grid);
}

[[gnu::target("avx512f,avx512dq")]] void computeAvx512(const std::vector<SkyPosition>& targets,
                                                       const std::vector<MJD_DATE>& instants,
                                                       const Observer& observer, const Air& air,
                                                       SkyGrid& grid) {
    compute(targets, instants, observer, air, grid);
}
#endif

/// The fastest form that this processor and its system can run.
Compute* chooseCompute() {
#ifdef ZARNSYS_VECTOR_FUNCTIONS
    if (grids::hasAvx512()) return computeAvx512;
    if (grids::hasAvx2()) return computeAvx2;
#endif
    return computeAnywhere;
}

}  // namespace

SkyGrid computeSkyGrid(const std::vector<SkyPosition>& targets,
                       const std::vector<MJD_DATE>& instants, const Place& place,
                       const SkyConditions& conditions) {
    SkyGrid grid;
    computeSkyGrid(targets, instants, place, conditions, grid);
    return grid;
}

void computeSkyGrid(const std::vector<SkyPosition>& targets, const std::vector<MJD_DATE>& instants,
                    const Place& place, const SkyConditions& conditions, SkyGrid& grid) {
    static Compute* const chosen = chooseCompute();
    for (TargetTable* table :
         {&grid.altitude, &grid.airmass, &grid.separation, &grid.moonlight, &grid.sky})
        table->resize(instants.size(), targets.size());
    const Air air = {conditions.extinction, conditions.darkSky,
                     std::exp(MAGNITUDE * conditions.darkSky)};
    chosen(targets, instants, grids::observerAt(place), air, grid);
}
