// This file is compiled for vector instructions, as zarnsys/util/MoonGrid.cpp is.
#include <cmath>

#if defined(__GNUC__) && !defined(__clang__) && defined(__x86_64__) && defined(__GLIBC__) && \
    __GLIBC_PREREQ(2, 35)
#define FOR_THE_PROCESSOR [[gnu::target_clones("avx512f", "avx2", "default")]]
extern "C" {
[[gnu::simd("notinbranch")]] double sin(double) noexcept;
[[gnu::simd("notinbranch")]] double cos(double) noexcept;
[[gnu::simd("notinbranch")]] double acos(double) noexcept;
}
#else
#define FOR_THE_PROCESSOR
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

[[gnu::always_inline]] inline void fillRow(const Directions& targets, double x, double y, double z,
                                           double* __restrict row) {
    const std::size_t count = targets.x.size();
    for (std::size_t i = 0; i < count; ++i)
        row[i] = std::acos(targets.x[i] * x + targets.y[i] * y + targets.z[i] * z);
}

}  // namespace

FOR_THE_PROCESSOR void sineGrid(const std::vector<double>& instants, std::vector<double>& results) {
    for (std::size_t begin = 0; begin < instants.size(); begin += BLOCK) {
        const std::size_t count = std::min(BLOCK, instants.size() - begin);
        Values angles = {};
        Values sums = {};
        std::copy_n(instants.data() + begin, count, angles);
        addSines(angles, sums);
        std::copy_n(sums, count, results.data() + begin);
    }
}

FOR_THE_PROCESSOR void arcGrid(const Directions& targets, const Directions& moons,
                               std::vector<double>& separations) {
    for (std::size_t i = 0; i < moons.x.size(); ++i)
        fillRow(targets, moons.x[i], moons.y[i], moons.z[i],
                separations.data() + i * targets.x.size());
}

}  // namespace bare
