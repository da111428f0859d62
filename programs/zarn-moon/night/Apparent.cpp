#include "zarn-moon/night/Apparent.h"

#include <erfa.h>
#include <erfam.h>

#include <algorithm>
#include <cmath>

#include "shared/sky/Units.h"

namespace zarn::moon {

namespace {

constexpr double RADII_PER_AU = ERFA_DAU / EARTH_RADIUS;
constexpr double LIGHT_DAYS = ERFA_AULT / ERFA_DAYSEC;  // for an astronomical unit [d]

Vector vectorOf(const double (&coordinates)[3]) {
    return {coordinates[0], coordinates[1], coordinates[2]};
}

/// Longitude in the mean ecliptic of date [deg].
double longitudeOf(const Rotation& toEcliptic, const Vector& vector) {
    const Vector ecliptic = toEcliptic(vector);
    return std::atan2(ecliptic.y, ecliptic.x) * DEG_PER_RAD;
}

}  // namespace

Vector Rotation::operator()(const Vector& vector) const {
    const auto row = [this, &vector](int i) {
        return matrix[i][0] * vector.x + matrix[i][1] * vector.y + matrix[i][2] * vector.z;
    };
    return {row(0), row(1), row(2)};
}

Motion apparentSun(double tt) {
    double heliocentric[2][3];
    double barycentric[2][3];
    eraEpv00(ERFA_DJM0, tt, heliocentric, barycentric);
    const Vector toSun = -1.0 * vectorOf(heliocentric[0]);
    // Aberration moves what is seen towards where the Earth goes.
    const double lightTime = lengthOf(toSun) * LIGHT_DAYS;
    return {RADII_PER_AU * (toSun + lightTime * vectorOf(barycentric[1])),
            -RADII_PER_AU * vectorOf(heliocentric[1])};
}

Motion apparentMoon(double tt) {
    double moon[2][3];
    eraMoon98(ERFA_DJM0, tt, moon);
    const Vector toMoon = vectorOf(moon[0]);
    const Vector velocity = vectorOf(moon[1]);
    const double lightTime = lengthOf(toMoon) * LIGHT_DAYS;
    return {RADII_PER_AU * (toMoon - lightTime * velocity), RADII_PER_AU * velocity};
}

Vector earthVelocity(double tt) {
    double heliocentric[2][3];
    double barycentric[2][3];
    eraEpv00(ERFA_DJM0, tt, heliocentric, barycentric);
    return LIGHT_DAYS * vectorOf(barycentric[1]);
}

double elongationInLongitude(double tt) {
    Rotation toEcliptic = {};
    eraEcm06(ERFA_DJM0, tt, toEcliptic.matrix);
    return std::remainder(longitudeOf(toEcliptic, apparentMoon(tt).position) -
                              longitudeOf(toEcliptic, apparentSun(tt).position),
                          FULL_CIRCLE);
}

Track::Track(Motion (*body)(double tt), const Rotation& rotation, double begin, double end,
             double step)
    : begin_(begin), step_(step) {
    const double steps = std::max(1.0, std::ceil((end - begin) / step));
    for (int i = 0; i <= static_cast<int>(steps); ++i) {
        const Motion motion = body(begin + i * step);
        nodes_.push_back({rotation(motion.position), rotation(motion.velocity)});
    }
}

Vector Track::operator()(double tt) const {
    const double steps = (tt - begin_) / step_;
    const double most = static_cast<double>(nodes_.size()) - 2.0;
    const double node = std::clamp(std::floor(steps), 0.0, most);
    const Motion& begin = nodes_[static_cast<std::size_t>(node)];
    const Motion& end = nodes_[static_cast<std::size_t>(node) + 1];
    const double s = steps - node;
    const double left = 1.0 - s;
    return begin.position + s * s * (3.0 - 2.0 * s) * (end.position - begin.position) +
           step_ * s * left * (left * begin.velocity - s * end.velocity);
}

}  // namespace zarn::moon
