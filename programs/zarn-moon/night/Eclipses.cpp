#include "zarn-moon/night/Eclipses.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "shared/sky/DeltaT.h"
#include "shared/sky/Units.h"
#include "zarn-moon/night/Apparent.h"
#include "zarn-moon/night/Crossings.h"

namespace zarn::moon {

namespace {

constexpr int FULL_MOON = 2;
constexpr double HALF_SPAN = 0.25;  // [d], more than from a full moon to the end of its eclipse

/// The full moon nearest to an instant [MJD], to some minutes.
double fullMoonNear(double mjd) {
    return ephemerisOf(Theory::LIBRARY).phaseTime(lunationOf(mjd), FULL_MOON);
}

/// How deep the moon is in the Earth's shadow, minute by minute: angles from the outermost position
/// that counts, negative beyond it [deg].
struct Depths {
    std::vector<double> minutes;  ///< [MJD]
    std::vector<double> penumbral;
    std::vector<double> partial;
    std::vector<double> total;
    std::vector<double> separation;  ///< from the axis of the shadow
    std::vector<double> diameter;    ///< of the moon
};

double arcSine(double sine) { return std::asin(sine) * DEG_PER_RAD; }

void append(Depths& depths, double mjd, const Vector& moon, const Vector& sun) {
    constexpr double SUN_RADIUS = 109.12;  // [Earth radii]
    constexpr double MOON_RADIUS = 0.2725076;
    constexpr double ENLARGED = 1.01;  // Danjon's 1 + 1/85 - 1/594, for the air and the flattening
    const double earth = ENLARGED * arcSine(1.0 / lengthOf(moon)) + arcSine(1.0 / lengthOf(sun));
    const double sunRadius = arcSine(SUN_RADIUS / lengthOf(sun));
    const double moonRadius = arcSine(MOON_RADIUS / lengthOf(moon));
    const double separation = angleBetween(moon, -1.0 * sun);
    depths.minutes.push_back(mjd);
    depths.penumbral.push_back(earth + sunRadius + moonRadius - separation);
    depths.partial.push_back(earth - sunRadius + moonRadius - separation);
    depths.total.push_back(earth - sunRadius - moonRadius - separation);
    depths.separation.push_back(separation);
    depths.diameter.push_back(2.0 * moonRadius);
}

Depths depthsAround(double fullMoon) {
    constexpr Rotation NONE = {{{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}}};
    const double tt = fullMoon + deltaT(fullMoon);
    const Track moon(apparentMoon, NONE, tt - HALF_SPAN, tt + HALF_SPAN, MOON_STEP);
    const Track sun(apparentSun, NONE, tt - HALF_SPAN, tt + HALF_SPAN, SUN_STEP);
    constexpr auto MINUTES = static_cast<int>(HALF_SPAN * MINUTES_PER_DAY);
    Depths depths;
    for (int minute = -MINUTES; minute <= MINUTES; ++minute) {
        const double since = minute / MINUTES_PER_DAY;
        append(depths, fullMoon + since, moon(tt + since), sun(tt + since));
    }
    return depths;
}

/// When the moon is nearest to the axis, by a parabola through three minutes.
double greatest(const Depths& depths) {
    const auto& s = depths.separation;
    const auto least = std::min_element(s.begin() + 1, s.end() - 1);
    const double before = *(least - 1) - *least;
    const double after = *(least + 1) - *least;
    return depths.minutes[static_cast<std::size_t>(least - s.begin())] +
           (before - after) / (before + after) / 2.0 / MINUTES_PER_DAY;
}

/// The eclipse with its contacts' times.
std::optional<Eclipse> eclipseOf(const Depths& depths) {
    const auto reaches = [](const std::vector<double>& depth) {
        return *std::max_element(depth.begin(), depth.end()) > 0.0;
    };
    if (!reaches(depths.penumbral)) return std::nullopt;
    const auto deepest = std::max_element(depths.partial.begin(), depths.partial.end());
    const auto index = static_cast<std::size_t>(deepest - depths.partial.begin());
    Eclipse eclipse = {"penumbral", *deepest / depths.diameter[index], {}};
    if (reaches(depths.partial)) eclipse.kind = "partial";
    if (reaches(depths.total)) eclipse.kind = "total";
    const auto add = [&](const char* name, const std::vector<double>& depth, bool begins) {
        for (const double time : crossings(depths.minutes, depth, begins))
            eclipse.contacts.push_back({name, time});
    };
    add(CONTACTS[0], depths.penumbral, true);
    add(CONTACTS[1], depths.partial, true);
    add(CONTACTS[2], depths.total, true);
    eclipse.contacts.push_back({CONTACTS[3], greatest(depths)});
    add(CONTACTS[4], depths.total, false);
    add(CONTACTS[5], depths.partial, false);
    add(CONTACTS[6], depths.penumbral, false);
    return eclipse;
}

/// Whether the moon is up in any minute of a night that is within an eclipse.
bool isSeen(const Night& night, const Eclipse& eclipse) {
    for (std::size_t i = 0; i < night.instants.size(); ++i) {
        const double mjd = night.instants[i];
        if (night.moon.altitude[i] >= HORIZON && mjd >= eclipse.contacts.front().mjd &&
            mjd <= eclipse.contacts.back().mjd)
            return true;
    }
    return false;
}

}  // namespace

std::optional<Eclipse> eclipseIn(const Ephemeris& ephemeris, const Night& night) {
    const double fullMoon = fullMoonNear(middleOf(night));
    if (std::fabs(fullMoon - middleOf(night)) > 0.5 + HALF_SPAN) return std::nullopt;
    std::optional<Eclipse> eclipse = eclipseOf(depthsAround(fullMoon));
    if (!eclipse || !isSeen(night, *eclipse)) return std::nullopt;
    std::vector<MJD_DATE> times;
    for (const Contact& contact : eclipse->contacts) times.push_back(contact.mjd);
    const SkyPath sky = ephemeris.pathOver(night.site, times);
    for (std::size_t i = 0; i < times.size(); ++i)
        eclipse->contacts[i].moonUp = sky.moon.altitude[i] >= HORIZON;
    return eclipse;
}

}  // namespace zarn::moon
