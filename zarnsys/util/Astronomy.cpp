#include "zarnsys/util/Astronomy.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>

namespace {

// Shortened literals are part of the results: none of these is replaced by a fuller value.
constexpr double DEG_PER_RAD = 57.2957795130823;
constexpr double HOURS_PER_RAD = 3.819718634205;
constexpr double PI = 3.14159265358979;
constexpr double TWO_PI = 6.28318530717958;
constexpr double HALF_PI = 1.570796326794895;
constexpr double THREE_HALVES_PI = 4.712388980384685;

constexpr double J2000 = 2451545.0;           // [d], Julian Date
constexpr double DAYS_PER_CENTURY = 36525.0;  // Julian century [d]
constexpr double HOURS_PER_DAY = 24.0;
constexpr double SECONDS_PER_DAY = 86400.0;

double sinDeg(double degrees) { return std::sin(degrees / DEG_PER_RAD); }
double cosDeg(double degrees) { return std::cos(degrees / DEG_PER_RAD); }

/// A sine or cosine that rounding may have carried beyond 1; not-a-number stays so.
double withinOne(double x) { return std::clamp(x, -1.0, 1.0); }

/// One term of a series in T, Julian centuries from J2000: amplitude * f(phase + rate * T).
struct Term {
    double amplitude;  // [deg]
    double phase;      // [deg]
    double rate;       // [deg per century]
};

// The Astronomical Almanac's low-precision moon.
constexpr Term LONGITUDE[] = {
    // sines
    {6.29, 134.9, 477198.85}, {-1.27, 259.2, -413335.38}, {0.66, 235.7, 890534.23},
    {0.21, 269.9, 954397.7},  {-0.19, 357.5, 35999.05},   {-0.11, 186.6, 966404.05},
};
constexpr Term LATITUDE[] = {
    // sines
    {5.13, 93.3, 483202.03},
    {0.28, 228.2, 960400.87},
    {-0.28, 318.3, 6003.18},
    {-0.17, 217.6, -407332.2},
};
constexpr Term PARALLAX[] = {
    // cosines
    {0.0518, 134.9, 477198.85},
    {0.0095, 259.2, -413335.38},
    {0.0078, 235.7, 890534.23},
    {0.0028, 269.9, 954397.7},
};

template <std::size_t N>
double addSines(double sum, const Term (&series)[N], double T) {
    for (const Term& term : series) sum += term.amplitude * sinDeg(term.phase + term.rate * T);
    return sum;
}

template <std::size_t N>
double addCosines(double sum, const Term (&series)[N], double T) {
    for (const Term& term : series) sum += term.amplitude * cosDeg(term.phase + term.rate * T);
    return sum;
}

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

double newMoon(std::int64_t lunation) {
    double jd = 0;
    flmoon(static_cast<int>(lunation), 0, &jd);
    return jd;
}

// Where the search for a new moon ends: the series' cubic term lets the mean new moons advance up
// to this lunation only, near JD 6.84e9.
constexpr std::int64_t LAST_LUNATION = 346000000;
constexpr double LONGEST_LUNATION = 30.0;  // [d], more than any

}  // namespace

double lst(double jd, double longit) {
    const double jdint = std::trunc(jd);
    const double jdfrac = jd - jdint;
    const bool beforeMidnight = jdfrac < 0.5;
    const double jdmid = beforeMidnight ? jdint - 0.5 : jdint + 0.5;
    const double ut = beforeMidnight ? jdfrac + 0.5 : jdfrac - 0.5;
    const double t = (jdmid - J2000) / DAYS_PER_CENTURY;
    double sid_g = (24110.54841 + 8640184.812866 * t + 0.093104 * t * t - 6.2e-6 * t * t * t) /
                   SECONDS_PER_DAY;
    sid_g -= std::trunc(sid_g);
    double sid = sid_g + 1.0027379093 * ut - longit / HOURS_PER_DAY;
    sid = (sid - std::trunc(sid)) * HOURS_PER_DAY;
    if (sid < 0.0) sid += HOURS_PER_DAY;
    return sid >= HOURS_PER_DAY ? 0.0 : sid;  // a tiny negative time rounds up to 24
}

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

double atan_circ(double x, double y) {
    if (x == 0.0) {
        if (y > 0.0) return HALF_PI;
        if (y < 0.0) return THREE_HALVES_PI;
        return std::isnan(y) ? y : 0.0;
    }
    double theta = std::atan(y / x);
    if (x < 0.0) theta += PI;
    if (theta < 0.0) theta += TWO_PI;
    return theta;
}

double altit(double dec, double ha, double lat, double* az) {
    dec /= DEG_PER_RAD;
    ha /= HOURS_PER_RAD;
    lat /= DEG_PER_RAD;
    const double x = std::cos(dec) * std::cos(ha) * std::cos(lat) + std::sin(dec) * std::sin(lat);
    const double y =
        std::sin(dec) * std::cos(lat) - std::cos(dec) * std::cos(ha) * std::sin(lat);  // north
    const double z = -std::cos(dec) * std::sin(ha);                                    // east
    *az = atan_circ(y, z) * DEG_PER_RAD;
    return std::asin(withinOne(x)) * DEG_PER_RAD;
}

double subtend(double ra1, double dec1, double ra2, double dec2) {
    constexpr double SMALL = 1e-5;                    // [rad]
    constexpr double NEAR_POLE = 1.5697963267948951;  // [rad], 0.001 from it
    ra1 /= HOURS_PER_RAD;
    dec1 /= DEG_PER_RAD;
    ra2 /= HOURS_PER_RAD;
    dec2 /= DEG_PER_RAD;
    const double x = std::cos(ra1) * std::cos(dec1) * std::cos(ra2) * std::cos(dec2);
    const double y = std::sin(ra1) * std::cos(dec1) * std::sin(ra2) * std::cos(dec2);
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
    const double n = jd - J2000;
    const double L = 280.46 + 0.9856474 * n;
    const double g = (357.528 + 0.9856003 * n) / DEG_PER_RAD;
    const double lambda = (L + 1.915 * std::sin(g) + 0.02 * std::sin(2.0 * g)) / DEG_PER_RAD;
    const double epsilon = (23.439 - 4e-7 * n) / DEG_PER_RAD;
    const double x = std::cos(lambda);
    const double y = std::cos(epsilon) * std::sin(lambda);
    const double z = std::sin(epsilon) * std::sin(lambda);
    *ra = atan_circ(x, y) * HOURS_PER_RAD;
    *dec = std::asin(withinOne(z)) * DEG_PER_RAD;
}

void lpmoon(double jd, double lat, double sid, double* ra, double* dec, double* dist) {
    const double T = (jd - J2000) / DAYS_PER_CENTURY;
    const double lambda = addSines(218.32 + 481267.883 * T, LONGITUDE, T) / DEG_PER_RAD;
    const double beta = addSines(0.0, LATITUDE, T) / DEG_PER_RAD;
    const double pie = addCosines(0.9508, PARALLAX, T) / DEG_PER_RAD;
    const double distance = 1.0 / std::sin(pie);
    // Direction cosines; the obliquity is taken as fixed.
    const double l = std::cos(beta) * std::cos(lambda);
    const double m = 0.9175 * std::cos(beta) * std::sin(lambda) - 0.3978 * std::sin(beta);
    const double n = 0.3978 * std::cos(beta) * std::sin(lambda) + 0.9175 * std::sin(beta);
    // From the Earth's centre to the observer, on a sphere of radius 1.
    const double rad_lat = lat / DEG_PER_RAD;
    const double rad_lst = sid / HOURS_PER_RAD;
    const double x = l * distance - std::cos(rad_lat) * std::cos(rad_lst);
    const double y = m * distance - std::cos(rad_lat) * std::sin(rad_lst);
    const double z = n * distance - std::sin(rad_lat);
    const double topo_dist = std::sqrt(x * x + y * y + z * z);
    *ra = atan_circ(x / topo_dist, y / topo_dist) * HOURS_PER_RAD;
    *dec = std::asin(withinOne(z / topo_dist)) * DEG_PER_RAD;
    *dist = topo_dist;
}

void flmoon(int n, int nph, double* jdout) {
    const double lun = 0.25 * nph + n;
    const double T = lun / 1236.85;  // centuries
    const double T2 = T * T;
    const double T3 = T2 * T;
    const double jd = 2415020.75933 + 29.53058868 * lun + 0.0001178 * T2 - 1.55e-7 * T3 +
                      0.00033 * sinDeg(166.56 + 132.87 * T - 0.009173 * T2);
    const double M = (359.2242 + 29.10535608 * lun - 3.33e-5 * T2 - 3.47e-6 * T3) / DEG_PER_RAD;
    const double Mpr =
        (306.0253 + 385.81691806 * lun + 0.0107306 * T2 + 1.236e-5 * T3) / DEG_PER_RAD;
    const double F = (21.2964 + 390.67050646 * lun - 0.0016528 * T2 - 2.39e-6 * T3) / DEG_PER_RAD;
    const bool newOrFull = nph == 0 || nph == 2;
    double cor = (newOrFull ? 0.1734 - 0.000393 * T : 0.1721 - 0.0004 * T) * std::sin(M);
    for (const PhaseTerm& term : PHASE_TERMS) {
        const double argument = term.m * M + term.mpr * Mpr + term.f * F;
        cor += (newOrFull ? term.newFull : term.quarter) * std::sin(argument);
    }
    const double quarter = 0.0028 - 0.0004 * std::cos(M) + 0.0003 * std::cos(Mpr);
    if (nph == 1) cor += quarter;
    if (nph == 3) cor -= quarter;
    *jdout = jd + cor;
}

float lun_age(double jd, int* nlun) {
    const double guess = std::trunc((jd - 2415020.5) / 29.5307 - 1.0);
    constexpr double FIRST_LUNATION = std::numeric_limits<int>::min();
    *nlun = 0;
    if (!(guess >= FIRST_LUNATION) || !(jd <= newMoon(LAST_LUNATION)))
        return std::numeric_limits<float>::quiet_NaN();
    auto n = static_cast<std::int64_t>(guess);
    double newjd = newMoon(n + 1);
    while (newjd < jd) {
        // Lunations that lie between for certain, at least one: as one step at a time, but sooner.
        n += std::max<std::int64_t>(1, static_cast<std::int64_t>((jd - newjd) / LONGEST_LUNATION));
        newjd = newMoon(n + 1);
    }
    *nlun = static_cast<int>(n);
    return static_cast<float>(jd - newMoon(n));
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
