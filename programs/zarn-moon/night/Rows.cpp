#include "zarn-moon/night/Rows.h"

#include <zarnsys/util/Astronomy.h>

#include <cmath>
#include <optional>

#include "shared/sky/Angles.h"
#include "shared/sky/Calendar.h"
#include "shared/sky/Precession.h"

namespace zarn::moon {

namespace {

std::optional<double> ifNumber(double value) {
    return std::isnan(value) ? std::nullopt : std::optional(value);
}

SkyConditions conditionsOf(const Settings& settings) {
    SkyConditions conditions;
    conditions.extinction = settings.extinction;
    conditions.darkSky = settings.darkSky;
    return conditions;
}

/// A target's values at an instant, by their places in the grid.
TargetValues valuesOf(const SkyGrid& sky, std::size_t i, std::size_t target, bool isDark) {
    return {sky.altitude(i, target),
            sky.separation(i, target),
            ifNumber(sky.airmass(i, target)),
            ifNumber(sky.moonlight(i, target)),
            isDark ? ifNumber(sky.sky(i, target)) : std::nullopt,
            false};
}

/// The row of the i-th instant, without its targets.
Row rowOf(const Site& site, const MoonGrid& moon, std::size_t i, double mjd) {
    return {mjd,
            moon.siderealTime[i],
            sunAltitude(mjd, moon.siderealTime[i], site.latitude),
            moon.altitude[i],
            moon.azimuth[i],
            moon.illumination[i],
            moon.phase[i],
            moon.altitude[i] >= HORIZON,
            {}};
}

}  // namespace

std::vector<SkyPosition> positionsOfDate(const Settings& settings, double mjd) {
    std::vector<SkyPosition> positions;
    for (const Target& target : settings.targets) {
        const Position position = settings.equinox == Equinox::OF_DATE
                                      ? target.position
                                      : precessed(target.position, J2000_EPOCH, mjd);
        positions.push_back({position.ra, position.dec});
    }
    return positions;
}

std::vector<MJD_DATE> instantsOf(const Night& night, double stepMinutes) {
    const double begin = night.minutes.front();
    const double day = std::floor(begin);
    const Site& site = night.site;
    const double minutesBefore = (begin - day) * MINUTES_PER_DAY;
    std::vector<MJD_DATE> instants;
    for (auto step = static_cast<int>(std::ceil(minutesBefore / stepMinutes));; ++step) {
        const double mjd = day + step * stepMinutes / MINUTES_PER_DAY;
        if (mjd > night.minutes.back()) return instants;
        const double sidereal = lst(mjd + JD_OF_MJD_0, site.longitude / DEG_PER_HOUR);
        if (sunAltitude(mjd, sidereal, site.latitude) < HORIZON) instants.push_back(mjd);
    }
}

std::vector<Row> makeRows(const Settings& settings, const std::vector<MJD_DATE>& instants,
                          const std::vector<SkyPosition>& targets,
                          const std::vector<Window>& windows) {
    const Site& site = settings.site;
    const MoonGrid moon = computeMoonGrid({}, instants, placeOf(site));
    const SkyGrid sky = computeSkyGrid(targets, instants, placeOf(site), conditionsOf(settings));
    std::vector<Row> rows;
    for (std::size_t i = 0; i < instants.size(); ++i) {
        Row row = rowOf(site, moon, i, instants[i]);
        const bool isDark = row.sunAltitude < ASTRONOMICAL_TWILIGHT;
        for (std::size_t t = 0; t < targets.size(); ++t) {
            row.targets.push_back(valuesOf(sky, i, t, isDark));
            if (!windows.empty()) {
                row.targets.back().best =
                    instants[i] >= windows[t].begin && instants[i] <= windows[t].end;
            }
        }
        rows.push_back(std::move(row));
    }
    return rows;
}

}  // namespace zarn::moon
