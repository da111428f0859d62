#include "zarnsys/util/Lunation.h"

#include <cmath>
#include <cstdint>
#include <iterator>
#include <limits>
#include <utility>

#include "zarnsys/util/Astronomy.h"
#include "zarnsys/util/Formulas.h"
#include "zarnsys/util/Positions.h"

using formulas::DEG_PER_RAD;
using formulas::Pair;
using formulas::sinDeg;
using positions::pairOf;

namespace {

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

/// The mean phase with its own periodic term, and what its corrections depend on.
struct MeanPhase {
    double T;   ///< centuries
    double jd;  ///< Julian Date [d]
    double m;   ///< M, M' and F [rad]
    double mpr;
    double f;
};

/// The mean phase without its periodic term, Julian Date [d].
double meanTime(double lun, double T) {
    const double T2 = T * T;
    return 2415020.75933 + 29.53058868 * lun + 0.0001178 * T2 - 1.55e-7 * (T2 * T);
}

MeanPhase meanPhase(double lun) {
    const double T = lun / LUNATIONS_PER_CENTURY;
    const double T2 = T * T;
    const double T3 = T2 * T;
    return {T, meanTime(lun, T) + 0.00033 * sinDeg(166.56 + 132.87 * T - 0.009173 * T2),
            (359.2242 + 29.10535608 * lun - 3.33e-5 * T2 - 3.47e-6 * T3) / DEG_PER_RAD,
            (306.0253 + 385.81691806 * lun + 0.0107306 * T2 + 1.236e-5 * T3) / DEG_PER_RAD,
            (21.2964 + 390.67050646 * lun - 0.0016528 * T2 - 2.39e-6 * T3) / DEG_PER_RAD};
}

/// The coefficients of the first correction, that of sin(M) [d].
double firstOfNewOrFull(double T) { return 0.1734 - 0.000393 * T; }
double firstOfQuarter(double T) { return 0.1721 - 0.0004 * T; }

template <double PhaseTerm::*COLUMN, std::size_t... I>
double addCorrections(double sum, const MeanPhase& at, std::index_sequence<I...> /*terms*/) {
    const auto add = [&sum, &at](const PhaseTerm& term) {
        if (term.*COLUMN == 0.0) return;
        sum += term.*COLUMN * std::sin(term.m * at.m + term.mpr * at.mpr + term.f * at.f);
    };
    (add(PHASE_TERMS[I]), ...);
    return sum;
}

double correctionOfNewOrFull(const MeanPhase& at) {
    const double first = firstOfNewOrFull(at.T) * std::sin(at.m);
    return addCorrections<&PhaseTerm::newFull>(first, at, EVERY_PHASE_TERM);
}

double correctionOfQuarter(const MeanPhase& at, int nph) {
    const double first = firstOfQuarter(at.T) * std::sin(at.m);
    const double sum = addCorrections<&PhaseTerm::quarter>(first, at, EVERY_PHASE_TERM);
    const double quarter = 0.0028 - 0.0004 * std::cos(at.m) + 0.0003 * std::cos(at.mpr);
    if (nph == 1) return sum + quarter;
    return nph == 3 ? sum - quarter : sum;
}

/// The angle 0, so that nothing is computed for it.
struct NoAngle {};

Pair sum(const NoAngle& /*nothing*/, const Pair& angle) { return angle; }

Pair sum(const Pair& a, const Pair& b) {
    return {a.sine * b.cosine + a.cosine * b.sine, a.cosine * b.cosine - a.sine * b.sine};
}

template <int K, typename Start>
auto addMultiple(const Start& start, const Pair& angle) {
    if constexpr (K == 0) return start;
    if constexpr (K > 0) return addMultiple<K - 1>(sum(start, angle), angle);
    if constexpr (K < 0) return addMultiple<K + 1>(sum(start, {-angle.sine, angle.cosine}), angle);
}

template <std::size_t I>
double quickCorrection(const Pair& m, const Pair& mpr, const Pair& f) {
    constexpr PhaseTerm TERM = PHASE_TERMS[I];
    if constexpr (TERM.newFull == 0.0) return 0.0;
    const auto multiple =
        addMultiple<TERM.m>(addMultiple<TERM.f>(addMultiple<TERM.mpr>(NoAngle(), mpr), f), m);
    return TERM.newFull * multiple.sine;
}

template <std::size_t... I>
double quickCorrections(const Pair& m, const Pair& mpr, const Pair& f,
                        std::index_sequence<I...> /*terms*/) {
    return (quickCorrection<I>(m, mpr, f) + ...);
}

double newMoon(std::int64_t lunation) {
    double jd = 0;
    flmoon(static_cast<int>(lunation), 0, &jd);
    return jd;
}

/// A new moon like `newMoon`, but for a unit of the last place, from a third of the sines.
double quickNewMoon(std::int64_t lunation) {
    const MeanPhase at = meanPhase(static_cast<double>(lunation));
    const Pair m = pairOf(at.m);
    const double first = firstOfNewOrFull(at.T) * m.sine;
    return at.jd + (first + quickCorrections(m, pairOf(at.mpr), pairOf(at.f), EVERY_PHASE_TERM));
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
    const double mean = meanTime(lun, T);
    return {mean - corrections, mean + corrections};
}

// The last instant for which the search for a new moon ends [d], Julian Date: the series' cubic
// term lets the mean new moons advance up to lunation 346,000,000 only.
constexpr double LAST_DATE = 6.836e9;
constexpr double LONGEST_MEAN_LUNATION = 29.5307;  // [d], more than any, with growing corrections
constexpr double NEVER = -std::numeric_limits<double>::infinity();
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

/// A lunation, given an instant up to which it lasts for certain.
Lunation lunationOf(std::int64_t n, double until) {
    constexpr double TWO_UNITS = 4.5e-16;  // of the last place, relative
    // Up to there new moons come in their order; before the first the search may begin too late.
    constexpr int REGULAR = 600000;
    const bool isRegular = n >= 0 && n < REGULAR;
    const double begin = quickNewMoon(n);
    // The second part, for new moons near the Julian Date 0: the corrections' angles grow with it.
    const double angles = LONGEST_MEAN_LUNATION * std::fabs(static_cast<double>(n));
    const double uncertainty = TWO_UNITS * (std::fabs(begin) + angles);
    if (!isRegular) until = NEVER;
    return {static_cast<int>(n), begin, uncertainty, begin + uncertainty, until};
}

}  // namespace

void flmoon(int n, int nph, double* jdout) {
    const MeanPhase at = meanPhase(0.25 * nph + n);
    const bool newOrFull = nph == 0 || nph == 2;
    *jdout = at.jd + (newOrFull ? correctionOfNewOrFull(at) : correctionOfQuarter(at, nph));
}

Lunation findLunation(double jd) {
    constexpr double NONE = std::numeric_limits<double>::quiet_NaN();
    constexpr double FIRST_LUNATION = std::numeric_limits<int>::min();
    const double guess = firstGuess(jd);
    if (!(guess >= FIRST_LUNATION) || !(jd <= LAST_DATE)) return {0, NONE, 0.0, NEVER, NEVER};
    // As if one lunation after the other were tried from the guess on, until one ends at `jd` or
    // later; the series is needed for ends that may come on either side of it only.
    std::int64_t n = skipEarlier(static_cast<std::int64_t>(guess), jd);
    while (newMoonBounds(n + 1).earliest < jd) {
        const double end = newMoon(n + 1);
        if (end >= jd) return lunationOf(n, end);
        ++n;
    }
    return lunationOf(n, newMoonBounds(n + 1).earliest);
}

void makeExact(Lunation& lunation) {
    lunation.newMoon = newMoon(lunation.number);
    lunation.uncertainty = 0.0;
}

float lun_age(double jd, int* nlun) {
    Lunation lunation = findLunation(jd);
    *nlun = lunation.number;
    return ageIn(lunation, jd);
}
