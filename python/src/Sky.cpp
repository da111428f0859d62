#include "Sky.h"

#include <zarnsys/util/Astronomy.h>

#include <cmath>
#include <stdexcept>
#include <string>

#include "shared/cli/Value.h"
#include "shared/sky/Precession.h"
#include "shared/sky/SkyLimits.h"
#include "shared/sky/Units.h"

namespace zarn::python {

namespace {

constexpr int KINDS = 4;

/// The lunation, as `flmoon` counts, whose mean new moon is the last before an instant, within one
/// or two for the years of `phasesBetween`.
int lunationAt(MJD_DATE mjd) {
    constexpr double MEAN_NEW_MOON = 15020.25933;  // of lunation 0 [MJD]
    constexpr double SYNODIC_MONTH = 29.53058868;  // mean [d]
    return static_cast<int>(std::floor((mjd - MEAN_NEW_MOON) / SYNODIC_MONTH));
}

void requireYears(const std::string& name, MJD_DATE mjd) {
    constexpr double MJD_OF_1900 = 15020.0;
    constexpr double MOST_DAYS = 3652500.0;
    if (std::isnan(mjd)) throw std::invalid_argument(name + " is no time");
    if (std::fabs(mjd - MJD_OF_1900) > MOST_DAYS)
        throw std::invalid_argument(name + " is not within 10000 years of 1900");
}

void requireWithin(double least, double most, const std::string& name, double value) {
    if (value < least || value > most)
        throw std::invalid_argument(name + " is not from " + shortest(least) + " to " +
                                    shortest(most) + ": " + shortest(value));
}

}  // namespace

SkyConditions conditionsOf(double darkSky, double extinction) {
    requireWithin(BRIGHTEST_DARK_SKY, DARKEST_SKY, "dark_sky", darkSky);
    requireWithin(0.0, MOST_EXTINCTION, "extinction", extinction);
    SkyConditions conditions;
    conditions.darkSky = darkSky;
    conditions.extinction = extinction;
    return conditions;
}

Sun sunAt(const std::vector<MJD_DATE>& instants, const Place& place) {
    const std::vector<double> zeros(instants.size());
    Sun sun = {zeros, zeros, zeros};
    for (std::size_t i = 0; i < instants.size(); ++i) {
        const double jd = instants[i] + JD_OF_MJD_0;
        double ra = 0.0;
        double azimuth = 0.0;
        lpsun(jd, &ra, &sun.dec[i]);
        const double hourAngle = lst(jd, place.westLongitude / DEG_PER_HOUR) - ra;
        sun.ra[i] = ra * DEG_PER_HOUR;
        sun.altitude[i] = altit(sun.dec[i], hourAngle, place.latitude, &azimuth);
    }
    return sun;
}

Phases phasesBetween(MJD_DATE start, MJD_DATE stop) {
    constexpr int MARGIN = 2;
    requireYears("start", start);
    requireYears("stop", stop);
    Phases phases;
    const int last = lunationAt(stop) + MARGIN;
    for (int lunation = lunationAt(start) - MARGIN; lunation <= last; ++lunation) {
        for (int kind = 0; kind < KINDS; ++kind) {
            double jd = 0.0;
            flmoon(lunation, kind, &jd);
            const MJD_DATE mjd = jd - JD_OF_MJD_0;
            if (mjd < start || mjd >= stop) continue;
            phases.instants.push_back(mjd);
            phases.kinds.push_back(kind);
        }
    }
    return phases;
}

PositionTables precessedTo(const std::vector<MJD_DATE>& instants,
                           const std::vector<SkyPosition>& targets) {
    PositionTables tables;
    tables.ra.resize(instants.size(), targets.size());
    tables.dec.resize(instants.size(), targets.size());
    for (std::size_t i = 0; i < instants.size(); ++i) {
        double* const ra = tables.ra.row(i);
        double* const dec = tables.dec.row(i);
        for (std::size_t k = 0; k < targets.size(); ++k) {
            const Position ofDate =
                precessed({targets[k].ra, targets[k].dec}, J2000_EPOCH, instants[i]);
            ra[k] = ofDate.ra;
            dec[k] = ofDate.dec;
        }
    }
    return tables;
}

}  // namespace zarn::python
