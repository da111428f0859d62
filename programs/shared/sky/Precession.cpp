#include "shared/sky/Precession.h"

#include <erfa.h>
#include <erfam.h>

#include <array>

namespace zarn {

namespace {

using Vector = std::array<double, 3>;

/// A vector turned by the rotation from the ICRS to the mean equinox of a date: `eraRxp` applies
/// it, `eraTrxp` its inverse.
Vector turned(Vector v, double jd1, double jd2, decltype(&eraRxp) apply) {
    double rotation[3][3] = {};
    eraPmat06(jd1, jd2, rotation);
    Vector result = {};
    apply(rotation, v.data(), result.data());
    return result;
}

}  // namespace

Position precessed(const Position& position, double epoch, double mjd) {
    Vector v = {};
    eraS2c(position.ra * ERFA_DD2R, position.dec * ERFA_DD2R, v.data());
    if (epoch != J2000_EPOCH) {
        double zero = 0;
        double mjdOfEpoch = 0;
        eraEpj2jd(epoch, &zero, &mjdOfEpoch);
        v = turned(v, zero, mjdOfEpoch, eraTrxp);
    }
    v = turned(v, ERFA_DJM0, mjd, eraRxp);
    double ra = 0;
    double dec = 0;
    eraC2s(v.data(), &ra, &dec);
    return {eraAnp(ra) * ERFA_DR2D, dec * ERFA_DR2D};
}

}  // namespace zarn
