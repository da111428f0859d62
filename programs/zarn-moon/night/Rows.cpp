#include "zarn-moon/night/Rows.h"

#include <zarnsys/util/Astronomy.h>

#include <algorithm>
#include <cmath>

#include "shared/sky/Angles.h"
#include "shared/sky/Calendar.h"
#include "shared/sky/Precession.h"

namespace zarn::moon {

namespace {

constexpr double NEGLIGIBLE = 99.0;  // what lunskybright gives for no moonlight [mag]

/// Airmass by Pickering 2002, DIO 12, 3: good down to the horizon, which the secant is not.
double airmassOf(double altitude) {
    const double effective = altitude + 244.0 / (165.0 + 47.0 * std::pow(altitude, 1.1));  // [deg]
    return 1.0 / std::sin(effective / DEG_PER_RAD);
}

/// The surface brightness of two lights together [mag per square arc second].
double together(double a, double b) {
    return -2.5 * std::log10(std::pow(10.0, -0.4 * a) + std::pow(10.0, -0.4 * b));
}

/// The moon at an instant, as the brightness model needs it.
struct Moonlight {
    double sunDistance;  ///< of the moon [deg]
    double altitude;     ///< [deg]
    double range;        ///< [Earth radii]
    bool up;
};

/// A target's values at an instant, from its altitude and its distance from the moon [deg].
TargetValues valuesOf(const Settings& settings, double altitude, double moonDistance,
                      const Moonlight& moon, bool isDark) {
    TargetValues values = {altitude, moonDistance, {}, {}, {}, false};
    if (altitude < 0.0) return values;
    values.airmass = airmassOf(altitude);
    const double added = moon.up ? lunskybright(moon.sunDistance, moonDistance, settings.extinction,
                                                moon.altitude, altitude, moon.range)
                                 : NEGLIGIBLE;
    if (added < NEGLIGIBLE) values.moonSky = added;
    if (isDark) {
        values.sky = values.moonSky ? together(settings.darkSky, added) : settings.darkSky;
    }
    return values;
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
    const MoonGrid moon = computeMoonGrid(targets, instants, placeOf(site));
    std::vector<Row> rows;
    for (std::size_t i = 0; i < instants.size(); ++i) {
        Row row = rowOf(site, moon, i, instants[i]);
        const Moonlight light = {moon.elongation[i], row.moonAltitude, moon.distance[i],
                                 row.moonUp};
        const bool isDark = row.sunAltitude < ASTRONOMICAL_TWILIGHT;
        for (std::size_t t = 0; t < targets.size(); ++t) {
            const double altitude = altitudeOf(targets[t], row.lst, site.latitude);
            row.targets.push_back(
                valuesOf(settings, altitude, moon.separation(i, t), light, isDark));
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
