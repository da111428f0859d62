/// Directions in the sky, and how an observer's horizon stands among them.
#ifndef ZARN_MOON_HORIZON_H
#define ZARN_MOON_HORIZON_H

#include <zarnsys/util/MoonGrid.h>

#include <vector>

namespace zarn::moon {

/// In the equator of date x is to the equinox and z to the north pole; in the frame of the horizon
/// x is up, y north and z east.
struct Vector {
    double x;
    double y;
    double z;
};

using Direction = Vector;  ///< one of length 1

Vector operator+(const Vector& a, const Vector& b);
Vector operator-(const Vector& a, const Vector& b);
Vector operator*(double factor, const Vector& vector);
Vector operator/(const Vector& vector, double divisor);
double lengthOf(const Vector& vector);

/// The cosine of the angle between two vectors, -1 to 1.
double cosineBetween(const Vector& a, const Vector& b);

/// The angle between two vectors [deg].
double angleBetween(const Vector& a, const Vector& b);

/// The direction of a position in the equinox of date.
Direction directionOf(const SkyPosition& position);

/// The observer's horizon at an instant. All that takes a sine is done once, for any number of
/// targets.
class Horizon {
public:
    /// @param lst       local sidereal time [h]
    /// @param latitude  of the site [deg], north positive
    Horizon(double lst, double latitude);

    /// A vector of the equator of date in the frame of the horizon.
    Vector turned(const Vector& vector) const {
        const double south = vector.x * cosSidereal_ + vector.y * sinSidereal_;
        const double west = vector.x * sinSidereal_ - vector.y * cosSidereal_;
        return {south * cosLatitude_ + vector.z * sinLatitude_,
                vector.z * cosLatitude_ - south * sinLatitude_, -west};
    }

private:
    double sinSidereal_;
    double cosSidereal_;
    double sinLatitude_;
    double cosLatitude_;
};

/// The altitude [deg] of a vector in the frame of the horizon, without refraction.
double altitudeOf(const Vector& vector);

/// Its azimuth from north through east [deg], 0 to 360.
double azimuthOf(const Vector& vector);

/// A direction in the frame of the horizon.
///
/// @param altitude  [deg]
/// @param azimuth   from north through east [deg]
Direction directionAt(double altitude, double azimuth);

}  // namespace zarn::moon

#endif  // ZARN_MOON_HORIZON_H
