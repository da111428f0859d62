#include "zarnsys/util/Astronomy.h"

#include <cmath>
#include <cstdio>

#include "zarnsys/util/Formulas.h"
#include "zarnsys/util/Positions.h"

using formulas::circleAngle;
using formulas::cosDeg;
using formulas::DEG_PER_RAD;
using formulas::HOURS_PER_DAY;
using formulas::HOURS_PER_RAD;
using formulas::Pair;
using formulas::PI;
using formulas::siderealTime;
using formulas::sinDeg;
using formulas::toHorizon;
using formulas::Vector;
using formulas::withinOne;
using positions::pairOf;
using positions::SMALL_ANGLE;

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
    *az = formulas::azimuth(horizon);
    return formulas::altitude(horizon);
}

double subtend(double ra1, double dec1, double ra2, double dec2) {
    constexpr double NEAR_POLE = 1.5697963267948951;  // [rad], 0.001 from it
    ra1 /= HOURS_PER_RAD;
    dec1 /= DEG_PER_RAD;
    ra2 /= HOURS_PER_RAD;
    dec2 /= DEG_PER_RAD;
    const double theta = positions::angleBetween(positions::directionOf(pairOf(ra1), pairOf(dec1)),
                                                 positions::directionOf(pairOf(ra2), pairOf(dec2)));
    const bool awayFromPoles = std::fabs(dec1) < NEAR_POLE && std::fabs(dec2) < NEAR_POLE;
    if (!(theta < SMALL_ANGLE) || !awayFromPoles) return theta;
    double difference = ra2 - ra1;
    if (std::fabs(difference) > PI)  // on either side of 0 h
        difference = std::remainder(difference, HOURS_PER_DAY / HOURS_PER_RAD);
    const double east = difference * std::cos((dec1 + dec2) / 2.0);
    const double north = dec2 - dec1;
    return std::sqrt(east * east + north * north);
}

void lpsun(double jd, double* ra, double* dec) {
    const Vector sun = positions::sunAt(jd);
    *ra = positions::rightAscension(sun);
    *dec = positions::declination(sun);
}

void lpmoon(double jd, double lat, double sid, double* ra, double* dec, double* dist) {
    const formulas::Place moon =
        positions::moonAt(jd, pairOf(lat / DEG_PER_RAD), pairOf(sid / HOURS_PER_RAD));
    *ra = positions::rightAscension(moon.direction);
    *dec = positions::declination(moon.direction);
    *dist = moon.distance;
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
