/// Sun and moon as they appear from the Earth's centre, by ERFA.
///
/// Sun: `eraEpv00`, 0.02 arc seconds. Moon: `eraMoon98`, Meeus 1998 after ELP 2000, 10 arc seconds
/// in longitude, 4 in latitude. Light time and aberration are applied. Times are dynamical [MJD].
#ifndef ZARN_MOON_APPARENT_H
#define ZARN_MOON_APPARENT_H

#include <vector>

#include "zarn-moon/night/Horizon.h"

namespace zarn::moon {

inline constexpr double EARTH_RADIUS = 6378137.0;  ///< at the equator [m]

/// A rotation from one frame to another.
struct Rotation {
    double matrix[3][3];

    Vector operator()(const Vector& vector) const;
};

/// Where something is [Earth radii], and how it moves [Earth radii per day].
struct Motion {
    Vector position;
    Vector velocity;
};

/// @{
/// In the celestial reference system.
Motion apparentSun(double tt);
Motion apparentMoon(double tt);
/// @}

/// The Earth's velocity in the celestial reference system, in units of that of light.
Vector earthVelocity(double tt);

/// The moon's apparent ecliptic longitude less the sun's [deg], -180 to 180.
double elongationInLongitude(double tt);

/// The motion of a body over some hours, interpolated between nodes.
class Track {
public:
    /// @param body      `apparentSun` or `apparentMoon`
    /// @param rotation  of the celestial reference system into the frame that the track is in
    /// @param begin     of the time that is covered
    /// @param end       of it
    /// @param step      between two nodes [d]
    Track(Motion (*body)(double tt), const Rotation& rotation, double begin, double end,
          double step);

    /// The body's position [Earth radii], by the cubic that has position and velocity of the nodes
    /// on either side.
    Vector operator()(double tt) const;

private:
    double begin_;
    double step_;
    std::vector<Motion> nodes_;
};

/// @{
/// Distances of nodes [d]: the moon's track is within 1e-6 degrees, the sun's within 1e-5.
inline constexpr double MOON_STEP = 1.0 / 12.0;
inline constexpr double SUN_STEP = 1.0;
/// @}

}  // namespace zarn::moon

#endif  // ZARN_MOON_APPARENT_H
