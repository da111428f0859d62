#include "zarnsys/util/ZarnMoonVal.h"

#include <cmath>
#include <iterator>
#include <ostream>

#include "zarnsys/util/Astronomy.h"
#include "zarnsys/util/Formulas.h"
#include "zarnsys/util/Positions.h"

namespace {

using formulas::Pair;
using formulas::Vector;
using positions::pairOf;

constexpr double JD_OF_MJD_0 = 2400000.5;
constexpr double DEG_PER_HOUR = 15.0;
// The full value, unlike the shortened one of the routines beneath; it is part of the results.
constexpr double DEG_PER_RAD = 57.29577951308238;

// Deployment data: one row per telescope, in the order of the enumeration. Made-up sites.
constexpr struct {
    double latitude;   // [deg], north positive
    double longitude;  // [deg], WEST positive
} TELESCOPES[] = {
    {38.7421, -5.3168},   // OLAN
    {-29.8643, 67.4125},  // VEK1
    {-29.8641, 67.4129},  // VEK2
    {-29.8639, 67.4134},  // VEK3
    {-29.8646, 67.4138},  // VEK4
};

/// What `subtend` gives for two directions [rad].
double subtended(const Vector& a, const Vector& b) {
    const double angle = positions::angleBetween(a, b);
    if (!(angle < positions::SMALL_ANGLE)) return angle;
    return subtend(positions::rightAscension(a), positions::declination(a),
                   positions::rightAscension(b), positions::declination(b));
}

/// A direction in the frame of the horizon, given its hour angle [h] and the observer's latitude.
Vector horizonOf(const Vector& direction, double ha, const Pair& latitude) {
    const Pair hourAngle = pairOf(ha / formulas::HOURS_PER_RAD);
    const double cosDec = std::sqrt(direction.x * direction.x + direction.y * direction.y);
    return formulas::toHorizon(cosDec * hourAngle.cosine, cosDec * hourAngle.sine, direction.z,
                               latitude);
}

}  // namespace

int getTelescopeCoord(double& latitude, double& longitude, Telescope telescope) {
    latitude = 0.0;
    longitude = 0.0;
    const auto row = static_cast<unsigned>(telescope);  // a negative value is a large one
    if (row >= std::size(TELESCOPES)) return -1;
    latitude = TELESCOPES[row].latitude;
    longitude = TELESCOPES[row].longitude;
    return 0;
}

void computeMoonParam(const double& starRa, const double& starDec, const MJD_DATE& mjdStart,
                      const double& longitude, const double& latitude, double* lstValPtr,
                      double* moonfliPtr, double* moondistPtr, double* moonaltPtr,
                      double* moonazPtr, double* moonphasePtr, double* alphasunPtr,
                      double* objdistPtr) {
    // In an order that puts work between a value and its use: processors do both at a time.
    const double jd = mjdStart + JD_OF_MJD_0;
    *lstValPtr = lst(jd, longitude / DEG_PER_HOUR);
    const Pair site = pairOf(latitude / formulas::DEG_PER_RAD);
    const auto [moon, distance] =
        positions::moonAt(jd, site, pairOf(*lstValPtr / formulas::HOURS_PER_RAD));
    const Vector sun = positions::sunAt(jd);
    const Vector star =
        positions::directionOf(pairOf(starRa / DEG_PER_HOUR / formulas::HOURS_PER_RAD),
                               pairOf(starDec / formulas::DEG_PER_RAD));
    const double hourAngle = adj_time(*lstValPtr - positions::rightAscension(moon));
    *moondistPtr = subtended(star, moon) * DEG_PER_RAD;
    *alphasunPtr = subtended(sun, moon);
    const Vector horizon = horizonOf(moon, hourAngle, site);
    *moonfliPtr = (1.0 - formulas::cosineBetween(sun, moon)) * 0.5;
    int nlun = 0;
    *moonphasePtr = static_cast<double>(lun_age(jd, &nlun)) / formulas::SYNODIC_MONTH;
    *moonaltPtr = formulas::altitude(horizon);
    *moonazPtr = formulas::azimuth(horizon);
    *objdistPtr = distance;
}

ZarnMoonVal::ZarnMoonVal()
    : phase_(0.0), altitude_(0.0), azimuth_(0.0), distanceToTarget_(0.0), fli_(0.0) {}

ZarnMoonVal::ZarnMoonVal(const double& starRa, const double& starDec, const MJD_DATE& mjdStart,
                         Telescope telescope)
    : ZarnMoonVal() {
    double latitude = 0;
    double longitude = 0;
    getTelescopeCoord(latitude, longitude, telescope);
    double lstVal = 0;
    double alphasun = 0;
    double objdist = 0;
    computeMoonParam(starRa, starDec, mjdStart, longitude, latitude, &lstVal, &fli_,
                     &distanceToTarget_, &altitude_, &azimuth_, &phase_, &alphasun, &objdist);
}

std::ostream& ZarnMoonVal::print(std::ostream& stream) const {
    return stream << phase_ << ' ' << altitude_ << ' ' << azimuth_ << ' ' << distanceToTarget_
                  << ' ' << fli_;
}
