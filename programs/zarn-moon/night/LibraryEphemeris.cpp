#include "zarn-moon/night/LibraryEphemeris.h"

#include <zarnsys/util/Astronomy.h>

#include "shared/sky/Precession.h"

namespace zarn::moon {

namespace {

/// The sun's altitude [deg].
double sunAltitude(double mjd, const Horizon& horizon) {
    double ra = 0;
    double dec = 0;
    lpsun(mjd + JD_OF_MJD_0, &ra, &dec);
    return altitudeOf(horizon.turned(directionOf({ra * DEG_PER_HOUR, dec})));
}

}  // namespace

SkyPath LibraryEphemeris::pathOver(const Site& site, const std::vector<MJD_DATE>& instants) const {
    SkyPath path;
    path.instants = instants;
    path.moon = computeMoonGrid({}, instants, placeOf(site));
    for (std::size_t i = 0; i < instants.size(); ++i) {
        const Horizon horizon(path.moon.siderealTime[i], site.latitude);
        path.horizons.push_back(horizon);
        path.moonDirections.push_back(directionAt(path.moon.altitude[i], path.moon.azimuth[i]));
        path.sunAltitudes.push_back(sunAltitude(instants[i], horizon));
    }
    return path;
}

double LibraryEphemeris::phaseTime(int lunation, int phase) const {
    double jd = 0;
    flmoon(lunation, phase, &jd);
    return jd - JD_OF_MJD_0;
}

std::vector<Direction> LibraryEphemeris::directionsOfDate(const std::vector<Position>& positions,
                                                          Equinox equinox, double mjd) const {
    std::vector<Direction> directions;
    for (const Position& position : positions) {
        const auto [ra, dec] =
            equinox == Equinox::OF_DATE ? position : precessed(position, J2000_EPOCH, mjd);
        directions.push_back(directionOf({ra, dec}));
    }
    return directions;
}

}  // namespace zarn::moon
