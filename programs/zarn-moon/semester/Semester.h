/// What many nights are worth for each target.
#ifndef ZARN_MOON_SEMESTER_H
#define ZARN_MOON_SEMESTER_H

#include <cstddef>
#include <vector>

#include "zarn-moon/night/Limits.h"
#include "zarn-moon/night/Night.h"
#include "zarn-moon/night/Rows.h"
#include "zarn-moon/settings/Settings.h"

namespace zarn::moon {

/// A target in one night.
struct TargetNight {
    double usableHours;          ///< that the limits allow
    double darkEquivalentHours;  ///< what they are worth, see `worthOf`
    Window best;                 ///< within the limits
    std::size_t rank;            ///< among the target's nights, from 1; 0: worth nothing
};

/// The nights of one target, in their order.
using Season = std::vector<TargetNight>;

/// What an hour is worth, as a part of an hour with the target at the zenith of a dark sky.
///
/// Where the sky limits the depth, an exposure of length t reaches the signal-to-noise ratio
/// S t / sqrt(B t), S and B being the rates of target and sky (Merline & Howell 1995, Experimental
/// Astronomy 6, 163, without the detector's noise): for one depth t goes with B / S^2. Sky of
/// brightness m in place of m0 makes B greater by 10^(0.4 (m0 - m)), the air S smaller by
/// 10^(-0.4 k (X - 1)). The worth is the inverse of t. It is 0 where the brightness of the sky is
/// not known: in twilight, and below the horizon.
double worthOf(const Settings& settings, const TargetValues& values);

/// A target in a night, not yet ranked. The hours are counted in whole minutes; their worth is
/// evaluated once per step, at the middle one of the minutes that the limits allow.
TargetNight targetNightOf(const Settings& settings, const Night& night, const Direction& direction,
                          const std::vector<bool>& allowed);

/// Ranks a season's nights by their dark-equivalent hours; of equal ones the earlier comes first.
void rankNights(Season& season);

/// The nights of the best ranks, in the order of their ranks: indices into the season.
std::vector<std::size_t> bestNights(const Season& season);

/// The minutes between two evaluations of a semester.
std::size_t minutesPerStep(const Settings& settings);

}  // namespace zarn::moon

#endif  // ZARN_MOON_SEMESTER_H
