#include "zarn-moon/night/Horizon.h"

#include <algorithm>
#include <cmath>

#include "shared/sky/Units.h"

namespace zarn::moon {

namespace {

double product(const Vector& a, const Vector& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

Vector crossed(const Vector& a, const Vector& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

}  // namespace

Vector operator+(const Vector& a, const Vector& b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }

Vector operator-(const Vector& a, const Vector& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }

Vector operator*(double factor, const Vector& vector) {
    return {factor * vector.x, factor * vector.y, factor * vector.z};
}

Vector operator/(const Vector& vector, double divisor) { return 1.0 / divisor * vector; }

double lengthOf(const Vector& vector) { return std::sqrt(product(vector, vector)); }

double cosineBetween(const Vector& a, const Vector& b) {
    return std::clamp(product(a, b) / std::sqrt(product(a, a) * product(b, b)), -1.0, 1.0);
}

double angleBetween(const Vector& a, const Vector& b) {
    return std::atan2(lengthOf(crossed(a, b)), product(a, b)) * DEG_PER_RAD;
}

Direction directionOf(const SkyPosition& position) {
    const double ra = position.ra / DEG_PER_RAD;
    const double dec = position.dec / DEG_PER_RAD;
    return {std::cos(dec) * std::cos(ra), std::cos(dec) * std::sin(ra), std::sin(dec)};
}

Horizon::Horizon(double lst, double latitude)
    : sinSidereal_(std::sin(lst * DEG_PER_HOUR / DEG_PER_RAD)),
      cosSidereal_(std::cos(lst * DEG_PER_HOUR / DEG_PER_RAD)),
      sinLatitude_(std::sin(latitude / DEG_PER_RAD)),
      cosLatitude_(std::cos(latitude / DEG_PER_RAD)) {}

double altitudeOf(const Vector& vector) {
    return std::atan2(vector.x, std::hypot(vector.y, vector.z)) * DEG_PER_RAD;
}

double azimuthOf(const Vector& vector) {
    const double azimuth = std::atan2(vector.z, vector.y) * DEG_PER_RAD;
    return azimuth < 0.0 ? azimuth + FULL_CIRCLE : azimuth;
}

Direction directionAt(double altitude, double azimuth) {
    const double a = altitude / DEG_PER_RAD;
    const double north = azimuth / DEG_PER_RAD;
    return {std::sin(a), std::cos(a) * std::cos(north), std::cos(a) * std::sin(north)};
}

}  // namespace zarn::moon
