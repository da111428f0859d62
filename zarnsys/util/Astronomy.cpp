#include "zarnsys/util/Astronomy.h"

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <iterator>
#include <limits>
#include <utility>

#include "zarnsys/util/Formulas.h"
#include "zarnsys/util/Lunation.h"

using formulas::circleAngle;
using formulas::cosDeg;
using formulas::DEG_PER_RAD;
using formulas::HOURS_PER_DAY;
using formulas::HOURS_PER_RAD;
using formulas::moonLatitude;
using formulas::moonLongitude;
using formulas::moonParallax;
using formulas::moonPlace;
using formulas::obliquity;
using formulas::Pair;
using formulas::PI;
using formulas::Place;
using formulas::siderealTime;
using formulas::sinDeg;
using formulas::sunDirection;
using formulas::sunLongitude;
using formulas::toHorizon;
using formulas::Vector;
using formulas::withinOne;

namespace {

Pair pairOf(double angle) { return {std::sin(angle), std::cos(angle)}; }

/// One correction of a phase's time: coefficient * sin(m M + mpr M' + f F).
struct PhaseTerm {
    int m;           // multiples of the sun's mean anomaly,
    int mpr;         // the moon's,
    int f;           // and the moon's argument of latitude
    double newFull;  // [d], for new and full moon
    double quarter;  // [d], for the quarters
};

constexpr PhaseTerm PHASE_TERMS[] = {
    // after the first term, which changes with time
    {2, 0, 0, 0.0021, 0.0021},    {0, 1, 0, -0.4068, -0.628}, {0, 2, 0, 0.0161, 0.0089},
    {0, 3, 0, -0.0004, -0.0004},  {0, 0, 2, 0.0104, 0.0079},  {1, 1, 0, -0.0051, -0.0119},
    {1, -1, 0, -0.0074, -0.0047}, {1, 0, 2, 0.0004, 0.0003},  {-1, 0, 2, -0.0004, -0.0004},
    {0, 1, 2, -0.0006, -0.0006},  {0, -1, 2, 0.001, 0.0021},  {1, 2, 0, 0.0005, 0.0003},
    {1, -2, 0, 0.0, 0.0004},      {2, 1, 0, 0.0, -0.0003},
};
constexpr auto EVERY_PHASE_TERM = std::make_index_sequence<std::size(PHASE_TERMS)>();

constexpr double LUNATIONS_PER_CENTURY = 1236.85;

/// What the mean phases and their corrections depend on [rad].
struct PhaseAngles {
    double m;
    double mpr;
    double f;
};

template <double PhaseTerm::*COLUMN, std::size_t I>
double addPhaseTerm(double sum, const PhaseAngles& at) {
    constexpr PhaseTerm TERM = PHASE_TERMS[I];
    if constexpr (TERM.*COLUMN == 0.0) return sum;
    return sum + TERM.*COLUMN * std::sin(TERM.m * at.m + TERM.mpr * at.mpr + TERM.f * at.f);
}

template <double PhaseTerm::*COLUMN, std::size_t... I>
double addPhaseTerms(double sum, const PhaseAngles& at, std::index_sequence<I...> /*terms*/) {
    ((sum = addPhaseTerm<COLUMN, I>(sum, at)), ...);
    return sum;
}

double correctionOfNewOrFull(double T, const PhaseAngles& at) {
    const double first = (0.1734 - 0.000393 * T) * std::sin(at.m);
    return addPhaseTerms<&PhaseTerm::newFull>(first, at, EVERY_PHASE_TERM);
}

double correctionOfQuarter(double T, const PhaseAngles& at, int nph) {
    const double first = (0.1721 - 0.0004 * T) * std::sin(at.m);
    const double sum = addPhaseTerms<&PhaseTerm::quarter>(first, at, EVERY_PHASE_TERM);
    const double quarter = 0.0028 - 0.0004 * std::cos(at.m) + 0.0003 * std::cos(at.mpr);
    if (nph == 1) return sum + quarter;
    return nph == 3 ? sum - quarter : sum;
}

/// The mean phase without its periodic term [d], Julian Date, at `lun` lunations and T centuries.
double meanPhase(double lun, double T) {
    const double T2 = T * T;
    return 2415020.75933 + 29.53058868 * lun + 0.0001178 * T2 - 1.55e-7 * (T2 * T);
}

double newMoon(std::int64_t lunation) {
    double jd = 0;
    flmoon(static_cast<int>(lunation), 0, &jd);
    return jd;
}

/// Between which instants [d] a new moon comes for certain.
struct Bounds {
    double earliest;
    double latest;
};

Bounds newMoonBounds(std::int64_t lunation) {
    const auto lun = static_cast<double>(lunation);
    const double T = lun / LUNATIONS_PER_CENTURY;
    // The sum of all coefficients is 0.62493 + 0.000393 |T|; the rest is for rounding.
    const double corrections = 0.626 + 0.0004 * std::fabs(T);
    const double mean = meanPhase(lun, T);
    return {mean - corrections, mean + corrections};
}

// The last instant for which the search for a new moon ends [d], Julian Date: the series' cubic
// term lets the mean new moons advance up to lunation 346,000,000 only.
constexpr double LAST_DATE = 6.836e9;
constexpr double LONGEST_MEAN_LUNATION =
    29.5307;                                   // [d], more than any, corrections' growth included
constexpr double LUNATIONS_EPOCH = 2415020.5;  // [d], Julian Date

/// Where the search for a new moon begins: a lunation early, at present.
double firstGuess(double jd) {
    return std::trunc((jd - LUNATIONS_EPOCH) / LONGEST_MEAN_LUNATION - 1.0);
}

/// The first lunation from `n` on whose end is not before `jd` for certain.
std::int64_t skipEarlier(std::int64_t n, double jd) {
    for (;;) {
        const double left = jd - newMoonBounds(n + 1).latest;
        if (left <= 0.0) return n;
        n += 1 + static_cast<std::int64_t>(left / LONGEST_MEAN_LUNATION);
    }
}

}  // namespace

double lst(double jd, double longit) { return siderealTime(jd, longit); }

double adj_time(double x) {
    constexpr double BOUND = 100000.0;
    if (std::isnan(x) || std::fabs(x) >= BOUND) {
        std::puts("Out of bounds in adj_time!");
        return x;
    }
    while (x > 12.0) x -= HOURS_PER_DAY;
    while (x < -12.0) x += HOURS_PER_DAY;
    return x;
}

double atan_circ(double x, double y) { return circleAngle(x, y); }

double altit(double dec, double ha, double lat, double* az) {
    const Pair declination = pairOf(dec / DEG_PER_RAD);
    const Pair hourAngle = pairOf(ha / HOURS_PER_RAD);
    const Vector horizon =
        toHorizon(declination.cosine * hourAngle.cosine, declination.cosine * hourAngle.sine,
                  declination.sine, pairOf(lat / DEG_PER_RAD));
    *az = circleAngle(horizon.y, horizon.z) * DEG_PER_RAD;
    return std::asin(withinOne(horizon.x)) * DEG_PER_RAD;
}

double subtend(double ra1, double dec1, double ra2, double dec2) {
    constexpr double SMALL = 1e-5;                    // [rad]
    constexpr double NEAR_POLE = 1.5697963267948951;  // [rad], 0.001 from it
    ra1 /= HOURS_PER_RAD;
    dec1 /= DEG_PER_RAD;
    ra2 /= HOURS_PER_RAD;
    dec2 /= DEG_PER_RAD;
    const double x = (std::cos(ra1) * std::cos(dec1)) * (std::cos(ra2) * std::cos(dec2));
    const double y = (std::sin(ra1) * std::cos(dec1)) * (std::sin(ra2) * std::cos(dec2));
    const double z = std::sin(dec1) * std::sin(dec2);
    const double theta = std::acos(withinOne(x + y + z));
    const bool awayFromPoles = std::fabs(dec1) < NEAR_POLE && std::fabs(dec2) < NEAR_POLE;
    if (!(theta < SMALL) || !awayFromPoles) return theta;
    double difference = ra2 - ra1;
    if (std::fabs(difference) > PI)  // on either side of 0 h
        difference = std::remainder(difference, HOURS_PER_DAY / HOURS_PER_RAD);
    const double east = difference * std::cos((dec1 + dec2) / 2.0);
    const double north = dec2 - dec1;
    return std::sqrt(east * east + north * north);
}

void lpsun(double jd, double* ra, double* dec) {
    const Vector sun = sunDirection(pairOf(sunLongitude(jd)), pairOf(obliquity(jd)));
    *ra = circleAngle(sun.x, sun.y) * HOURS_PER_RAD;
    *dec = std::asin(withinOne(sun.z)) * DEG_PER_RAD;
}

void lpmoon(double jd, double lat, double sid, double* ra, double* dec, double* dist) {
    const Pair latitude = pairOf(lat / DEG_PER_RAD);
    const Pair sidereal = pairOf(sid / HOURS_PER_RAD);
    const Vector observer = {latitude.cosine * sidereal.cosine, latitude.cosine * sidereal.sine,
                             latitude.sine};
    const Place moon = moonPlace(pairOf(moonLongitude(jd)), pairOf(moonLatitude(jd)),
                                 std::sin(moonParallax(jd)), observer);
    *ra = circleAngle(moon.direction.x, moon.direction.y) * HOURS_PER_RAD;
    *dec = std::asin(withinOne(moon.direction.z)) * DEG_PER_RAD;
    *dist = moon.distance;
}

void flmoon(int n, int nph, double* jdout) {
    const double lun = 0.25 * nph + n;
    const double T = lun / LUNATIONS_PER_CENTURY;
    const double T2 = T * T;
    const double T3 = T2 * T;
    const double jd = meanPhase(lun, T) + 0.00033 * sinDeg(166.56 + 132.87 * T - 0.009173 * T2);
    const PhaseAngles at = {
        (359.2242 + 29.10535608 * lun - 3.33e-5 * T2 - 3.47e-6 * T3) / DEG_PER_RAD,
        (306.0253 + 385.81691806 * lun + 0.0107306 * T2 + 1.236e-5 * T3) / DEG_PER_RAD,
        (21.2964 + 390.67050646 * lun - 0.0016528 * T2 - 2.39e-6 * T3) / DEG_PER_RAD};
    const bool newOrFull = nph == 0 || nph == 2;
    *jdout = jd + (newOrFull ? correctionOfNewOrFull(T, at) : correctionOfQuarter(T, at, nph));
}

Lunation findLunation(double jd) {
    constexpr double NONE = std::numeric_limits<double>::quiet_NaN();
    constexpr double FIRST_LUNATION = std::numeric_limits<int>::min();
    const double guess = firstGuess(jd);
    if (!(guess >= FIRST_LUNATION) || !(jd <= LAST_DATE)) return {0, NONE, NONE};
    // As if one lunation after the other were tried from the guess on, until one ends at `jd` or
    // later; the series is needed for ends that may come on either side of it only.
    std::int64_t n = skipEarlier(static_cast<std::int64_t>(guess), jd);
    while (newMoonBounds(n + 1).earliest < jd) {
        const double end = newMoon(n + 1);
        if (end >= jd) return {static_cast<int>(n), newMoon(n), end};
        ++n;
    }
    return {static_cast<int>(n), newMoon(n), newMoonBounds(n + 1).earliest};
}

bool holds(const Lunation& lunation, double jd) {
    constexpr int REGULAR = 600000;  // so far from 1900, new moons still come in their order
    return lunation.number > -REGULAR && lunation.number < REGULAR && lunation.newMoon < jd &&
           jd <= lunation.lastsUntil && firstGuess(jd) <= lunation.number;
}

float lun_age(double jd, int* nlun) {
    const Lunation lunation = findLunation(jd);
    *nlun = lunation.number;
    return static_cast<float>(jd - lunation.newMoon);
}

double lunskybright(double alpha, double rho, double kzen, double altmoon, double alt,
                    double moondist) {
    constexpr double MEAN_DISTANCE = 60.27;  // of the moon [Earth radii]
    const double a = 180.0 - alpha;          // the moon's phase angle [deg]
    const double d = moondist / MEAN_DISTANCE;
    double istar =
        std::pow(10.0, -0.4 * (3.84 + 0.026 * std::fabs(a) + 4e-9 * a * a * a * a)) / (d * d);
    if (std::fabs(a) < 7.0) istar *= 1.35 - 0.05 * std::fabs(a);
    const double cosRho = cosDeg(rho);
    double fofrho = 229087.0 * (1.06 + cosRho * cosRho);
    if (std::fabs(rho) > 10.0) {
        fofrho += std::pow(10.0, 6.15 - rho / 40.0);
    } else if (std::fabs(rho) > 0.25) {
        fofrho += 6.2e7 / (rho * rho);
    } else {
        fofrho += 9.9e8;  // within the lunar disc
    }
    const double sinZmoon = sinDeg(90.0 - altmoon);
    const double sinZ = sinDeg(90.0 - alt);
    const double Xzm = 1.0 / std::sqrt(1.0 - 0.96 * sinZmoon * sinZmoon);
    const double Xo = 1.0 / std::sqrt(1.0 - 0.96 * sinZ * sinZ);
    const double Bmoon = fofrho * istar * std::pow(10.0, -0.4 * kzen * Xzm) *
                         (1.0 - std::pow(10.0, -0.4 * kzen * Xo));  // [nanolambert]
    return Bmoon > 0.001 ? 22.5 - 1.08574 * std::log(Bmoon / 34.08) : 99.0;
}
