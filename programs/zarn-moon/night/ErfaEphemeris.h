/// ERFA's sun and moon, as almanacs have them.
#ifndef ZARN_MOON_ERFAEPHEMERIS_H
#define ZARN_MOON_ERFAEPHEMERIS_H

#include "zarn-moon/night/Ephemeris.h"

namespace zarn::moon {

/// `apparentSun` and `apparentMoon` for an observer on the WGS84 ellipsoid at his elevation, in the
/// true equator and equinox of date, with apparent sidereal time. Precession and nutation are those
/// of the middle of a night.
class ErfaEphemeris : public Ephemeris {
public:
    SkyPath pathOver(const Site& site, const std::vector<MJD_DATE>& instants) const override;
    double phaseTime(int lunation, int phase) const override;
    std::vector<Direction> directionsOfDate(const std::vector<Position>& positions, Equinox equinox,
                                            double mjd) const override;
};

}  // namespace zarn::moon

#endif  // ZARN_MOON_ERFAEPHEMERIS_H
