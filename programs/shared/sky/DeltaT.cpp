#include "shared/sky/DeltaT.h"

#include <erfa.h>
#include <erfam.h>

#include <cmath>

#include "shared/sky/Units.h"

namespace zarn {

namespace {

/// A polynomial in the years since an epoch.
struct Years {
    double until;            // [yr]
    double epoch;            // [yr]
    double coefficients[6];  // [s], rising powers
};

constexpr Years POLYNOMIALS[] = {
    {1920.0, 1900.0, {-2.79, 1.494119, -0.0598939, 0.0061966, -0.000197}},
    {1941.0, 1920.0, {21.20, 0.84493, -0.076100, 0.0020936}},
    {1961.0, 1950.0, {29.07, 0.407, -1.0 / 233.0, 1.0 / 2547.0}},
    {1986.0, 1975.0, {45.45, 1.067, -1.0 / 260.0, -1.0 / 718.0}},
    {2005.0, 2000.0, {63.86, 0.3345, -0.060374, 0.0017275, 0.000651814, 0.00002373599}},
    {2050.0, 2000.0, {62.92, 0.32217, 0.005589}},
    // -20 + 32 u^2 - 0.5628 (2150 - year), with u in centuries since 1820.
    {2150.0, 1820.0, {-20.0 - 0.5628 * 330.0, 0.5628, 0.0032}},
    {HUGE_VAL, 1820.0, {-20.0, 0.0, 0.0032}},
};

}  // namespace

double deltaT(double mjd) {
    const double year = eraEpj(ERFA_DJM0, mjd);
    const Years* polynomial = POLYNOMIALS;
    while (year >= polynomial->until) ++polynomial;
    double seconds = 0.0;
    double power = 1.0;
    for (const double coefficient : polynomial->coefficients) {
        seconds += coefficient * power;
        power *= year - polynomial->epoch;
    }
    return seconds / SECONDS_PER_DAY;
}

}  // namespace zarn
