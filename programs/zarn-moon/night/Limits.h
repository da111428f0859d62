/// The minutes of a night at which an observer's limits allow a target.
#ifndef ZARN_MOON_LIMITS_H
#define ZARN_MOON_LIMITS_H

#include <vector>

#include "zarn-moon/night/Night.h"
#include "zarn-moon/settings/Settings.h"

namespace zarn::moon {

/// Whether any limit is given: a single night's best windows are shown only then.
bool hasLimits(const Settings& settings);

/// Whether any limit is one of altitude.
bool limitsAltitudes(const Settings& settings);

/// The least altitude of a target [deg]: its own before that of all, and never below the site's
/// horizon.
double leastAltitudeOf(const Settings& settings, const Target& target);

/// The least angle between the moon and a target while the moon is up [deg]; 0: any.
///
/// Moon avoidance is a Lorentzian over the days from full moon, the form that surveys use: its
/// whole angle at full moon, half of it the given number of days before and after.
///
/// @param phase  the moon's age over the mean synodic month
double leastMoonDistance(const Settings& settings, double phase);

/// The limits in one night, made once for any number of targets.
class Limits {
public:
    /// Keeps references to both.
    Limits(const Settings& settings, const Night& night);

    /// Whether each minute of the night is allowed. The target is above the horizon then.
    ///
    /// @param target  the settings' own
    /// @param direction  the same in the equator of date
    std::vector<bool> minutesFor(const Target& target, const Direction& direction) const;

private:
    double leastSine(const Target& target) const;
    bool moonAllows(std::size_t minute, const Direction& direction) const;

    const Settings& settings_;
    const Night& night_;
    std::vector<std::size_t> nightly_;  ///< minutes at which the sun is low enough
    std::vector<double> mostCosines_;   ///< of the angle to the moon, one for each minute
};

}  // namespace zarn::moon

#endif  // ZARN_MOON_LIMITS_H
