/// The library's sun and moon, as they also go into FITS headers.
#ifndef ZARN_MOON_LIBRARYEPHEMERIS_H
#define ZARN_MOON_LIBRARYEPHEMERIS_H

#include "zarn-moon/night/Ephemeris.h"

namespace zarn::moon {

/// `computeMoonGrid`, `lpsun` and `flmoon`: the Earth is a sphere, universal time is taken for
/// dynamical time, and nutation is left out. The equator and equinox are the mean ones of date.
class LibraryEphemeris : public Ephemeris {
public:
    SkyPath pathOver(const Site& site, const std::vector<MJD_DATE>& instants) const override;
    double phaseTime(int lunation, int phase) const override;
    std::vector<Direction> directionsOfDate(const std::vector<Position>& positions, Equinox equinox,
                                            double mjd) const override;
};

}  // namespace zarn::moon

#endif  // ZARN_MOON_LIBRARYEPHEMERIS_H
