/// Directions in the sky, and how an observer's horizon stands among them.
#ifndef ZARN_MOON_HORIZON_H
#define ZARN_MOON_HORIZON_H

#include <zarnsys/util/MoonGrid.h>

#include <vector>

namespace zarn::moon {

/// A direction as a vector of length 1. In the equator of date x is to the equinox and z to the
/// north pole; in the frame of the horizon x is up, y north and z east.
struct Direction {
    double x;
    double y;
    double z;
};

/// The direction of a position in the equinox of date.
Direction directionOf(const SkyPosition& position);

/// The cosine of the angle between two directions, -1 to 1.
double cosineBetween(const Direction& a, const Direction& b);

/// The observer's horizon at an instant. All that takes a sine is done once, for any number of
/// targets.
class Horizon {
public:
    /// @param lst       local sidereal time [h]
    /// @param latitude  of the site [deg], north positive
    Horizon(double lst, double latitude);

    /// A direction of the equator of date in the frame of the horizon.
    Direction turned(const Direction& direction) const {
        const double south = direction.x * cosSidereal_ + direction.y * sinSidereal_;
        const double west = direction.x * sinSidereal_ - direction.y * cosSidereal_;
        return {south * cosLatitude_ + direction.z * sinLatitude_,
                direction.z * cosLatitude_ - south * sinLatitude_, -west};
    }

private:
    double sinSidereal_;
    double cosSidereal_;
    double sinLatitude_;
    double cosLatitude_;
};

/// The altitude [deg] of a direction in the frame of the horizon, without refraction.
double altitudeOf(const Direction& direction);

/// A direction in the frame of the horizon.
///
/// @param altitude  [deg]
/// @param azimuth   from north through east [deg]
Direction directionAt(double altitude, double azimuth);

}  // namespace zarn::moon

#endif  // ZARN_MOON_HORIZON_H
