// This file is compiled for vector instructions, see CMakeLists.txt.
#include "zarnsys/util/MoonGrid.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "zarnsys/util/Formulas.h"
#include "zarnsys/util/GridParts.h"
#include "zarnsys/util/Lunation.h"

namespace {

using formulas::Vector;
using grids::BLOCK;
using grids::Directions;
using grids::FULL_DEG_PER_RAD;
using grids::Instants;
using grids::JD_OF_MJD_0;
using grids::LANES;
using grids::Observer;
using grids::Values;

[[gnu::always_inline]] inline double separation(double cosine) {
    return std::acos(cosine) * FULL_DEG_PER_RAD;
}

/// The separations of an instant, target by target.
[[gnu::always_inline]] inline void computeRow(const Directions& targets, const Vector& moon,
                                              double* __restrict separations) {
    const std::size_t whole = targets.count / LANES * LANES;
    double rest[LANES];
    for (std::size_t i = 0; i < whole; ++i)
        separations[i] = formulas::cosineBetween(targets(i), moon);
    for (std::size_t i = 0; i < whole; ++i) separations[i] = separation(separations[i]);
    if (whole == targets.count) return;
    for (std::size_t i = 0; i < LANES; ++i)
        rest[i] = separation(formulas::cosineBetween(targets(whole + i), moon));
    std::copy_n(rest, targets.count - whole, separations + whole);
}

/// The separations of a target, instant by instant.
[[gnu::always_inline]] inline void computeColumn(const Vector& target, const Instants& at,
                                                 Values& separations) {
    const std::size_t lanes = grids::wholeVectors(at.count);
    for (std::size_t i = 0; i < lanes; ++i)
        separations[i] = formulas::cosineBetween(target, at.moon(i));
    for (std::size_t i = 0; i < lanes; ++i) separations[i] = separation(separations[i]);
}

/// The separations of the instants from `begin` on: along the longer side of their table.
[[gnu::always_inline]] inline void computeSeparations(const Directions& targets, const Instants& at,
                                                      std::size_t begin, TargetTable& separations) {
    if (targets.count >= LANES) {
        for (std::size_t i = 0; i < at.count; ++i)
            computeRow(targets, at.moon(i), separations.row(begin + i));
        return;
    }
    for (std::size_t t = 0; t < targets.count; ++t) {
        Values column;
        computeColumn(targets(t), at, column);
        for (std::size_t i = 0; i < at.count; ++i) separations.row(begin + i)[t] = column[i];
    }
}

/// Computes the values of the instants from `begin` on, at most a block of them.
[[gnu::always_inline]] inline void computeBlock(const Directions& targets,
                                                const std::vector<MJD_DATE>& instants,
                                                const Observer& observer, std::size_t begin,
                                                MoonGrid& grid) {
    Instants at;
    grids::computeInstants(observer, &instants[begin], std::min(BLOCK, instants.size() - begin),
                           at);
    const auto keep = [begin, &at](const Values& values, std::vector<double>& result) {
        for (std::size_t i = 0; i < at.count; ++i) result[begin + i] = values[i];
    };
    keep(at.siderealTime, grid.siderealTime);
    keep(at.altitude, grid.altitude);
    keep(at.azimuth, grid.azimuth);
    keep(at.distance, grid.distance);
    keep(at.elongation, grid.elongation);
    keep(at.illumination, grid.illumination);
    computeSeparations(targets, at, begin, grid.separation);
}

/// Computes all but the phases.
[[gnu::always_inline]] inline void compute(const std::vector<SkyPosition>& targets,
                                           const std::vector<MJD_DATE>& instants,
                                           const Observer& observer, MoonGrid& grid) {
    const Directions directions = grids::directionsOf(targets);
    for (std::size_t begin = 0; begin < instants.size(); begin += BLOCK)
        computeBlock(directions, instants, observer, begin, grid);
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
    if (grids::hasAvx512()) return computeAvx512;
    if (grids::hasAvx2()) return computeAvx2;
#endif
    return computeAnywhere;
}

void computePhases(const std::vector<MJD_DATE>& instants, std::vector<double>& phases) {
    Lunation lunation = {};
    for (std::size_t i = 0; i < instants.size(); ++i) {
        const double jd = instants[i] + JD_OF_MJD_0;
        if (!holds(lunation, jd)) lunation = findLunation(jd);
        phases[i] = static_cast<double>(ageIn(lunation, jd)) / formulas::SYNODIC_MONTH;
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
    chosen(targets, instants, grids::observerAt(place), grid);
}
