/// Inputs and outputs of the moon and sky routines, for programs that compare two evaluations.
#ifndef ZARNSYS_BENCH_SKYCASE_H
#define ZARNSYS_BENCH_SKYCASE_H

#include <array>
#include <cstddef>

enum Input : std::size_t {
    JD,         ///< [d], of lst, lpsun, lpmoon, lun_age
    WEST,       ///< longitude of lst [h]
    SID,        ///< sidereal time of lpmoon [h]
    LAT,        ///< latitude of altit, lpmoon, computeMoonParam [deg]
    DEC,        ///< of altit [deg]
    HA,         ///< of altit [h]
    RA1,        ///< of subtend [h]
    DEC1,       ///< [deg]
    RA2,        ///< [h]
    DEC2,       ///< [deg]
    LUNATION,   ///< of flmoon
    QUARTER,    ///< of flmoon, its nph
    ALPHA,      ///< of lunskybright [deg]
    RHO,        ///< [deg]
    KZEN,       ///< [mag per airmass]
    ALTMOON,    ///< [deg]
    ALT,        ///< [deg]
    MOONDIST,   ///< [Earth radii]
    STAR_RA,    ///< of computeMoonParam [deg]
    STAR_DEC,   ///< [deg]
    MJD,        ///< [d]
    LONGITUDE,  ///< [deg], west
    INPUTS
};

enum Output : std::size_t {
    SIDEREAL,
    ALTITUDE,
    AZIMUTH,
    ANGLE,
    SUN_RA,
    SUN_DEC,
    MOON_RA,
    MOON_DEC,
    MOON_DIST,
    PHASE_TIME,
    AGE,
    AGE_LUNATION,
    BRIGHTNESS,
    P_LST,  // computeMoonParam's, in the order of its arguments
    P_FLI,
    P_MOONDIST,
    P_MOONALT,
    P_MOONAZ,
    P_PHASE,
    P_ALPHASUN,
    P_OBJDIST,
    OUTPUTS
};

static_assert(INPUTS <= 32 && OUTPUTS <= 32, "sets of them are the bits of an unsigned long");

using Inputs = std::array<double, INPUTS>;
template <typename Number>
using Outputs = std::array<Number, OUTPUTS>;

/// A set of inputs or of outputs.
template <typename... Names>
constexpr unsigned long setOf(Names... names) {
    return (... | (1UL << names));
}

extern const char* const INPUT_NAMES[INPUTS];

/// What the library gives.
Outputs<double> evaluate(const Inputs& in);

#endif  // ZARNSYS_BENCH_SKYCASE_H
