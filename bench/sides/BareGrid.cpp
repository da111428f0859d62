// This file is compiled for vector instructions, as zarnsys/util/MoonGrid.cpp is.
#include <cmath>

#if defined(__GNUC__) && !defined(__clang__) && defined(__x86_64__) && defined(__GLIBC__) && \
    __GLIBC_PREREQ(2, 35)
#define ZARNSYS_VECTOR_FUNCTIONS
extern "C" {
[[gnu::simd("notinbranch")]] double sin(double) noexcept;
[[gnu::simd("notinbranch")]] double cos(double) noexcept;
[[gnu::simd("notinbranch")]] double acos(double) noexcept;
}
#endif

#include <algorithm>
#include <cstddef>

#include "BareGrid.h"

namespace bare {
namespace {

constexpr std::size_t BLOCK = 64;
using Values = double[BLOCK];

// Six terms of the moon's longitude, four of its latitude, two of the sun's; then six angles, of
// which the moon's parallax needs no cosine. The parallax's series has four cosines.
constexpr int SINES = 6 + 4 + 2 + 6;
constexpr int COSINES = 4 + 5;

[[gnu::always_inline]] inline void addSines(const Values& angles, Values& sums) {
    for (int term = 1; term <= SINES; ++term)
        for (std::size_t i = 0; i < BLOCK; ++i) sums[i] += std::sin(angles[i] * term);
    for (int term = 1; term <= COSINES; ++term)
        for (std::size_t i = 0; i < BLOCK; ++i) sums[i] += std::cos(angles[i] * term);
}

[[gnu::always_inline]] inline void fillSines(const std::vector<double>& instants,
                                             std::vector<double>& results) {
    for (std::size_t begin = 0; begin < instants.size(); begin += BLOCK) {
        const std::size_t count = std::min(BLOCK, instants.size() - begin);
        Values angles = {};
        Values sums = {};
        std::copy_n(instants.data() + begin, count, angles);
        addSines(angles, sums);
        std::copy_n(sums, count, results.data() + begin);
    }
}

[[gnu::always_inline]] inline void fillRow(const Directions& targets, double x, double y, double z,
                                           double* __restrict row) {
    const std::size_t count = targets.x.size();
    for (std::size_t i = 0; i < count; ++i)
        row[i] = std::acos(targets.x[i] * x + targets.y[i] * y + targets.z[i] * z);
}

[[gnu::always_inline]] inline void fillArcs(const Directions& targets, const Directions& moons,
                                            std::vector<double>& separations) {
    for (std::size_t i = 0; i < moons.x.size(); ++i)
        fillRow(targets, moons.x[i], moons.y[i], moons.z[i],
                separations.data() + i * targets.x.size());
}

using Sines = void(const std::vector<double>&, std::vector<double>&);
using Arcs = void(const Directions&, const Directions&, std::vector<double>&);

void sinesAnywhere(const std::vector<double>& instants, std::vector<double>& results) {
    fillSines(instants, results);
}
void arcsAnywhere(const Directions& targets, const Directions& moons, std::vector<double>& arcs) {
    fillArcs(targets, moons, arcs);
}

#ifdef ZARNSYS_VECTOR_FUNCTIONS
[[gnu::target("avx2")]] void sinesAvx2(const std::vector<double>& instants,
                                       std::vector<double>& results) {
    fillSines(instants, results);
}
[[gnu::target("avx512f,avx512dq")]] void sinesAvx512(const std::vector<double>& instants,
                                                     std::vector<double>& results) {
    fillSines(instants, results);
}
[[gnu::target("avx2")]] void arcsAvx2(const Directions& targets, const Directions& moons,
                                      std::vector<double>& arcs) {
    fillArcs(targets, moons, arcs);
}
[[gnu::target("avx512f,avx512dq")]] void arcsAvx512(const Directions& targets,
                                                    const Directions& moons,
                                                    std::vector<double>& arcs) {
    fillArcs(targets, moons, arcs);
}
#endif

/// The fastest of the forms that this processor and its system can run.
template <typename Form>
Form* choose([[maybe_unused]] Form* avx512, [[maybe_unused]] Form* avx2, Form* anywhere) {
#ifdef ZARNSYS_VECTOR_FUNCTIONS
    if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512dq")) return avx512;
    if (__builtin_cpu_supports("avx2")) return avx2;
#endif
    return anywhere;
}

#ifndef ZARNSYS_VECTOR_FUNCTIONS
constexpr Sines* sinesAvx2 = sinesAnywhere;
constexpr Sines* sinesAvx512 = sinesAnywhere;
constexpr Arcs* arcsAvx2 = arcsAnywhere;
constexpr Arcs* arcsAvx512 = arcsAnywhere;
#endif

}  // namespace

void sineGrid(const std::vector<double>& instants, std::vector<double>& results) {
    static Sines* const chosen = choose<Sines>(sinesAvx512, sinesAvx2, sinesAnywhere);
    chosen(instants, results);
}

void arcGrid(const Directions& targets, const Directions& moons, std::vector<double>& separations) {
    static Arcs* const chosen = choose<Arcs>(arcsAvx512, arcsAvx2, arcsAnywhere);
    chosen(targets, moons, separations);
}

}  // namespace bare
