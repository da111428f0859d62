#include "zarnsys/util/ZarnMoonVal.h"

#include <cmath>
#include <iterator>
#include <ostream>

#include "zarnsys/util/Astronomy.h"

namespace {

constexpr double JD_OF_MJD_0 = 2400000.5;
constexpr double DEG_PER_HOUR = 15.0;
constexpr double SYNODIC_MONTH = 29.5305888531;  // mean [d]
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
    const double jdstart = mjdStart + JD_OF_MJD_0;
    *lstValPtr = lst(jdstart, longitude / DEG_PER_HOUR);
    double moonra = 0;
    double moondec = 0;
    lpmoon(jdstart, latitude, *lstValPtr, &moonra, &moondec, objdistPtr);
    *moondistPtr = subtend(starRa / DEG_PER_HOUR, starDec, moonra, moondec) * DEG_PER_RAD;
    *moonaltPtr = altit(moondec, adj_time(*lstValPtr - moonra), latitude, moonazPtr);
    int nlun = 0;
    *moonphasePtr = static_cast<double>(lun_age(jdstart, &nlun)) / SYNODIC_MONTH;
    double sunra = 0;
    double sundec = 0;
    lpsun(jdstart, &sunra, &sundec);
    *alphasunPtr = subtend(sunra, sundec, moonra, moondec);
    *moonfliPtr = (1.0 - std::cos(subtend(moonra, moondec, sunra, sundec))) * 0.5;
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
