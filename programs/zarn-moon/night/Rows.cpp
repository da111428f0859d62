#include "zarn-moon/night/Rows.h"

#include <zarnsys/util/Astronomy.h>

#include <cmath>
#include <optional>

#include "shared/sky/Units.h"
#include "zarnsys/util/Formulas.h"

namespace zarn::moon {

namespace {

/// What the moon adds at a target above the horizon [mag per square arc second].
std::optional<double> moonlightAt(const MoonGrid& moon, std::size_t i, double distance,
                                  double extinction, double altitude) {
    constexpr double NEGLIGIBLE = 99.0;
    if (moon.altitude[i] < HORIZON) return std::nullopt;
    const double light = lunskybright(moon.elongation[i], distance, extinction, moon.altitude[i],
                                      altitude, moon.distance[i]);
    return light == NEGLIGIBLE ? std::nullopt : std::optional(light);
}

/// The brightness of two lights together, of which one may be missing [mag].
double together(double one, const std::optional<double>& other) {
    constexpr double POGSON = -2.5;  // magnitudes per decade
    if (!other) return one;
    return POGSON * std::log10(std::pow(10.0, one / POGSON) + std::pow(10.0, *other / POGSON));
}

/// The row of the i-th instant, without its targets.
Row rowOf(const SkyPath& sky, std::size_t i) {
    const MoonGrid& moon = sky.moon;
    return {sky.instants[i],
            moon.siderealTime[i],
            sky.sunAltitudes[i],
            moon.altitude[i],
            moon.azimuth[i],
            moon.illumination[i],
            moon.phase[i],
            moon.altitude[i] >= HORIZON,
            {}};
}

}  // namespace

double airmassAt(double altitude) {
    const double power = std::pow(altitude, formulas::AIRMASS_POWER);
    return 1.0 / std::sin(formulas::airmassAngle(altitude, power));
}

std::vector<Direction> directionsOfDate(const Settings& settings, const Ephemeris& ephemeris,
                                        double mjd) {
    std::vector<Position> positions;
    for (const Target& target : settings.targets) positions.push_back(target.position);
    return ephemeris.directionsOfDate(positions, settings.equinox, mjd);
}

TargetValues valuesOf(const Settings& settings, const SkyPath& sky, std::size_t i,
                      const Direction& target) {
    const Direction direction = sky.horizons[i].turned(target);
    TargetValues values = {};
    values.altitude = altitudeOf(direction);
    values.moonDistance = angleBetween(direction, sky.moonDirections[i]);
    if (values.altitude < 0.0) return values;
    values.airmass = airmassAt(values.altitude);
    values.moonSky =
        moonlightAt(sky.moon, i, values.moonDistance, settings.extinction, values.altitude);
    if (sky.sunAltitudes[i] < ASTRONOMICAL_TWILIGHT)
        values.sky = together(settings.darkSky, values.moonSky);
    return values;
}

std::vector<MJD_DATE> instantsOf(const Ephemeris& ephemeris, const Night& night,
                                 double stepMinutes) {
    const double begin = night.instants.front();
    const double day = std::floor(begin);
    const double minutesBefore = (begin - day) * MINUTES_PER_DAY;
    const auto at = [&](int step) { return day + step * stepMinutes / MINUTES_PER_DAY; };
    std::vector<MJD_DATE> steps;
    for (auto step = static_cast<int>(std::ceil(minutesBefore / stepMinutes));
         at(step) <= night.instants.back(); ++step)
        steps.push_back(at(step));
    const SkyPath sky = ephemeris.pathOver(night.site, steps);
    std::vector<MJD_DATE> instants;
    for (std::size_t i = 0; i < steps.size(); ++i) {
        if (sky.sunAltitudes[i] < HORIZON) instants.push_back(steps[i]);
    }
    return instants;
}

std::vector<Row> makeRows(const Settings& settings, const SkyPath& sky,
                          const std::vector<Direction>& targets,
                          const std::vector<Window>& windows) {
    std::vector<Row> rows;
    for (std::size_t i = 0; i < sky.instants.size(); ++i) {
        Row row = rowOf(sky, i);
        for (std::size_t t = 0; t < targets.size(); ++t) {
            row.targets.push_back(valuesOf(settings, sky, i, targets[t]));
            if (!windows.empty()) {
                row.targets.back().best =
                    sky.instants[i] >= windows[t].begin && sky.instants[i] <= windows[t].end;
            }
        }
        rows.push_back(std::move(row));
    }
    return rows;
}

}  // namespace zarn::moon
