#include "zarn-moon/night/LibraryEphemeris.h"

#include <zarnsys/util/Astronomy.h>

#include <utility>

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

SkyPath LibraryEphemeris::pathOver(const Site& site, std::vector<MJD_DATE> instants) const {
    SkyPath path;
    path.instants = std::move(instants);
    path.moon = computeMoonGrid({}, path.instants, placeOf(site));
    addHorizons(path, site.latitude);
    for (std::size_t i = 0; i < path.instants.size(); ++i)
        path.sunAltitudes.push_back(sunAltitude(path.instants[i], path.horizons[i]));
    return path;
}

double LibraryEphemeris::phaseTime(int lunation, int phase) const {
    double jd = 0;
    flmoon(lunation, phase, &jd);
    return jd - JD_OF_MJD_0;
}

Direction LibraryEphemeris::directionOfDate(const Position& position, Equinox equinox,
                                            double mjd) const {
    const auto [ra, dec] =
        equinox == Equinox::OF_DATE ? position : precessed(position, J2000_EPOCH, mjd);
    return directionOf({ra, dec});
}

}  // namespace zarn::moon
