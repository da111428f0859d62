/// Where sun and moon stand: the one interface between the theories and all that is made of them.
#ifndef ZARN_MOON_EPHEMERIS_H
#define ZARN_MOON_EPHEMERIS_H

#include <zarnsys/util/MoonGrid.h>

#include <vector>

#include "shared/sky/Angles.h"
#include "zarn-moon/night/Horizon.h"
#include "zarn-moon/settings/Settings.h"
#include "zarn-moon/settings/Site.h"

namespace zarn::moon {

/// Sun and moon as an observer sees them at instants. The vectors have one element per instant.
/// What follows for targets costs no more than a few multiplications and inverse functions, see
/// `valuesOf`.
struct SkyPath {
    std::vector<MJD_DATE> instants;         ///< [MJD], UT
    std::vector<double> sunAltitudes;       ///< of the centre [deg], without refraction
    MoonGrid moon;                          ///< without separations
    std::vector<Horizon> horizons;          ///< the observer's
    std::vector<Direction> moonDirections;  ///< in the frame of the horizon
};

/// A theory of sun and moon. Its places belong to one equator and equinox of date, the theory's
/// own. Objects have no state.
class Ephemeris {
public:
    Ephemeris() = default;
    Ephemeris(const Ephemeris&) = delete;
    Ephemeris& operator=(const Ephemeris&) = delete;
    virtual ~Ephemeris();

    /// Sun and moon at instants [MJD]. Instants of one night are the fastest together, in rising
    /// order.
    virtual SkyPath pathOver(const Site& site, const std::vector<MJD_DATE>& instants) const = 0;

    /// The time of a phase [MJD].
    ///
    /// @param lunation  as `flmoon` counts them
    /// @param phase     0 new moon, 1 first quarter, 2 full moon, 3 last quarter
    virtual double phaseTime(int lunation, int phase) const = 0;

    /// The directions of targets at a date [MJD], in the frame of the theory's places. Within a
    /// night they move by less than an arc second.
    ///
    /// @param positions  in the mean equinox of J2000 or of date
    virtual std::vector<Direction> directionsOfDate(const std::vector<Position>& positions,
                                                    Equinox equinox, double mjd) const = 0;
};

/// The lunation that an instant [MJD] is in, as `flmoon` counts them; within some minutes of a new
/// moon it may be a neighbour.
int lunationOf(double mjd);

/// The theory of a name.
const Ephemeris& ephemerisOf(Theory theory);

}  // namespace zarn::moon

#endif  // ZARN_MOON_EPHEMERIS_H
