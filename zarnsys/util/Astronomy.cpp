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
    const auto tenTo = [](double exponent) { return std::pow(10.0, exponent); };
    const double phaseAngle = 180.0 - alpha;
    const double moon = formulas::atDistance(tenTo(formulas::illuminanceExponent(phaseAngle)),
                                             moondist, phaseAngle);
    const double scattered =
        formulas::scattering(rho, cosDeg(rho), tenTo(formulas::farScatteringExponent(rho)));
    const double arriving = tenTo(formulas::remainingExponent(kzen, sinDeg(altmoon)));
    const double passing = tenTo(formulas::remainingExponent(kzen, sinDeg(alt)));
    const double light = scattered * moon * arriving * (1.0 - passing);
    if (!(light > formulas::LEAST_MOONLIGHT)) return 99.0;
    return formulas::magnitude(std::log(light / formulas::LIGHT_UNIT));
}
