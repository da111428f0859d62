/// The sun and the moon as directions, behind Astronomy.h and ZarnMoonVal.h.
///
/// Unlike those of Formulas.h, these are for one instant: sine and cosine of an angle come from a
/// single call of the mathematical library.
#ifndef ZARNSYS_UTIL_POSITIONS_H
#define ZARNSYS_UTIL_POSITIONS_H

#include <cmath>

#include "zarnsys/util/Formulas.h"

namespace positions {

using formulas::Pair;
using formulas::Vector;

constexpr double SMALL_ANGLE = 1e-5;  // [rad], below which an arc cosine sees too little

inline Pair pairOf(double angle) { return {std::sin(angle), std::cos(angle)}; }

inline Vector directionOf(const Pair& ra, const Pair& dec) {
    return {ra.cosine * dec.cosine, ra.sine * dec.cosine, dec.sine};
}

/// The angle between two directions [rad], by the arc cosine.
inline double angleBetween(const Vector& a, const Vector& b) {
    return std::acos(formulas::cosineBetween(a, b));
}

/// A direction's right ascension [h] and declination [deg].
inline double rightAscension(const Vector& direction) {
    return formulas::circleAngle(direction.x, direction.y) * formulas::HOURS_PER_RAD;
}
inline double declination(const Vector& direction) {
    return std::asin(formulas::withinOne(direction.z)) * formulas::DEG_PER_RAD;
}

inline Vector sunAt(double jd) {
    const double longitude = formulas::sunLongitude(jd, pairOf(formulas::sunAnomaly(jd)));
    return formulas::sunDirection(pairOf(longitude), pairOf(formulas::obliquity(jd)));
}

/// The moon as an observer sees it, given his latitude and the local sidereal time.
inline formulas::Place moonAt(double jd, const Pair& latitude, const Pair& sidereal) {
    return formulas::moonPlace(
        pairOf(formulas::moonLongitude(jd)), pairOf(formulas::moonLatitude(jd)),
        std::sin(formulas::moonParallax(jd)), directionOf(sidereal, latitude));
}

}  // namespace positions

#endif  // ZARNSYS_UTIL_POSITIONS_H
