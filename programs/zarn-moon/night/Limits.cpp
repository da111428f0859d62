#include "zarn-moon/night/Limits.h"

#include <algorithm>
#include <cmath>

#include "shared/sky/Units.h"
#include "zarn-moon/night/Rows.h"

namespace zarn::moon {

namespace {

constexpr double ANY_COSINE = 2.0;  // which no angle reaches

/// The altitude [deg] at which the airmass is `most`: by bisection, as it falls with the altitude.
double altitudeOfAirmass(double most) {
    constexpr double ENOUGH = 1e-9;  // [deg]
    double low = 0.0;
    double high = 90.0;
    while (high - low > ENOUGH) {
        const double middle = (low + high) / 2.0;
        (airmassAt(middle) > most ? low : high) = middle;
    }
    return high;
}

}  // namespace

bool hasLimits(const Settings& settings) {
    return limitsAltitudes(settings) || settings.maxAirmass || settings.minMoonDistance ||
           settings.moonAvoidance || settings.maxSky || settings.sunAltitude;
}

bool limitsAltitudes(const Settings& settings) {
    return settings.minAltitude || settings.horizon ||
           std::any_of(settings.targets.begin(), settings.targets.end(),
                       [](const Target& target) { return target.minAltitude.has_value(); });
}

double leastAltitudeOf(const Settings& settings, const Target& target) {
    const double asked = target.minAltitude.value_or(settings.minAltitude.value_or(0.0));
    return std::max(asked, settings.horizon.value_or(0.0));
}

double leastMoonDistance(const Settings& settings, double phase) {
    constexpr double FULL = 0.5;
    const double least = settings.minMoonDistance.value_or(0.0);
    if (!settings.moonAvoidance) return least;
    const double widths = (phase - FULL) * SYNODIC_MONTH / settings.moonAvoidance->days;
    return std::max(least, settings.moonAvoidance->degrees / (1.0 + widths * widths));
}

Limits::Limits(const Settings& settings, const Night& night)
    : settings_(settings), night_(night), mostCosines_(night.instants.size(), ANY_COSINE) {
    const double sunBelow = settings.sunAltitude.value_or(ASTRONOMICAL_TWILIGHT);
    for (std::size_t i = 0; i < night.instants.size(); ++i) {
        if (night.sunAltitudes[i] >= sunBelow) continue;
        nightly_.push_back(i);
        const double least = leastMoonDistance(settings, night.moon.phase[i]);
        if (least > 0.0 && night.moon.altitude[i] >= HORIZON)
            mostCosines_[i] = std::cos(least / DEG_PER_RAD);
    }
}

/// The sine of the least altitude.
double Limits::leastSine(const Target& target) const {
    double altitude = leastAltitudeOf(settings_, target);
    if (settings_.maxAirmass)
        altitude = std::max(altitude, altitudeOfAirmass(*settings_.maxAirmass));
    return std::sin(altitude / DEG_PER_RAD);
}

bool Limits::moonAllows(std::size_t minute, const Direction& direction) const {
    if (mostCosines_[minute] != ANY_COSINE) {
        const Direction target = night_.horizons[minute].turned(direction);
        if (cosineBetween(target, night_.moonDirections[minute]) > mostCosines_[minute])
            return false;
    }
    if (!settings_.maxSky) return true;
    const std::optional<double> sky = valuesOf(settings_, night_, minute, direction).sky;
    return sky && *sky >= *settings_.maxSky;
}

std::vector<bool> Limits::minutesFor(const Target& target, const Direction& direction) const {
    std::vector<bool> allowed(night_.instants.size());
    const double least = leastSine(target);
    for (const std::size_t i : nightly_) {
        allowed[i] = night_.horizons[i].turned(direction).x >= least && moonAllows(i, direction);
    }
    return allowed;
}

}  // namespace zarn::moon
