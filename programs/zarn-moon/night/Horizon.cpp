#include "zarn-moon/night/Horizon.h"

#include <algorithm>
#include <cmath>

#include "shared/sky/Units.h"

namespace zarn::moon {

namespace {

/// A sine or cosine that rounding may have carried beyond 1.
double withinOne(double x) { return std::clamp(x, -1.0, 1.0); }

}  // namespace

Direction directionOf(const SkyPosition& position) {
    const double ra = position.ra / DEG_PER_RAD;
    const double dec = position.dec / DEG_PER_RAD;
    return {std::cos(dec) * std::cos(ra), std::cos(dec) * std::sin(ra), std::sin(dec)};
}

double cosineBetween(const Direction& a, const Direction& b) {
    return withinOne(a.x * b.x + a.y * b.y + a.z * b.z);
}

Horizon::Horizon(double lst, double latitude)
    : sinSidereal_(std::sin(lst * DEG_PER_HOUR / DEG_PER_RAD)),
      cosSidereal_(std::cos(lst * DEG_PER_HOUR / DEG_PER_RAD)),
      sinLatitude_(std::sin(latitude / DEG_PER_RAD)),
      cosLatitude_(std::cos(latitude / DEG_PER_RAD)) {}

double altitudeOf(const Direction& direction) {
    return std::asin(withinOne(direction.x)) * DEG_PER_RAD;
}

Direction directionAt(double altitude, double azimuth) {
    const double a = altitude / DEG_PER_RAD;
    const double north = azimuth / DEG_PER_RAD;
    return {std::sin(a), std::cos(a) * std::cos(north), std::cos(a) * std::sin(north)};
}

}  // namespace zarn::moon
