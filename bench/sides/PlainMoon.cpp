#include "PlainMoon.h"

#include <cmath>

namespace plain {
namespace {

using std::acos;
using std::asin;
using std::cos;
using std::sin;

constexpr double DEG_PER_RAD = 57.2957795130823;
constexpr double HOURS_PER_RAD = 3.819718634205;
constexpr double PI = 3.14159265358979;
constexpr double J2000 = 2451545.0;  // [d], Julian Date
constexpr double DAYS_PER_CENTURY = 36525.0;

struct Position {
    double ra;   // [h]
    double dec;  // [deg]
};

double siderealTime(double jd, double longitude) {
    const double whole = std::floor(jd);
    const double fraction = jd - whole;
    const double midnight = fraction < 0.5 ? whole - 0.5 : whole + 0.5;
    const double ut = fraction < 0.5 ? fraction + 0.5 : fraction - 0.5;
    const double t = (midnight - J2000) / DAYS_PER_CENTURY;
    double turns =
        (24110.54841 + 8640184.812866 * t + 0.093104 * t * t - 6.2e-6 * t * t * t) / 86400.0;
    turns = turns - std::floor(turns) + 1.0027379093 * ut - longitude / 24.0;
    return (turns - std::floor(turns)) * 24.0;
}

double circleAngle(double x, double y) {
    const double angle = std::atan2(y, x);
    return angle < 0.0 ? angle + 2.0 * PI : angle;
}

double altitude(double dec, double hourAngle, double latitude, double& azimuth) {
    const double d = dec / DEG_PER_RAD;
    const double h = hourAngle / HOURS_PER_RAD;
    const double l = latitude / DEG_PER_RAD;
    azimuth =
        circleAngle(sin(d) * cos(l) - cos(d) * cos(h) * sin(l), -cos(d) * sin(h)) * DEG_PER_RAD;
    return asin(cos(d) * cos(h) * cos(l) + sin(d) * sin(l)) * DEG_PER_RAD;
}

double angleBetween(const Position& one, const Position& other) {
    constexpr double SMALL = 1e-5;  // [rad]
    const double ra1 = one.ra / HOURS_PER_RAD;
    const double dec1 = one.dec / DEG_PER_RAD;
    const double ra2 = other.ra / HOURS_PER_RAD;
    const double dec2 = other.dec / DEG_PER_RAD;
    const double x1 = cos(ra1) * cos(dec1);
    const double y1 = sin(ra1) * cos(dec1);
    const double z1 = sin(dec1);
    const double x2 = cos(ra2) * cos(dec2);
    const double y2 = sin(ra2) * cos(dec2);
    const double z2 = sin(dec2);
    const double angle = acos(x1 * x2 + y1 * y2 + z1 * z2);
    if (angle >= SMALL) return angle;
    return std::hypot((ra2 - ra1) * cos((dec1 + dec2) / 2.0), dec2 - dec1);
}

Position sun(double jd) {
    const double n = jd - J2000;
    const double g = (357.528 + 0.9856003 * n) / DEG_PER_RAD;
    const double lambda =
        (280.46 + 0.9856474 * n + 1.915 * sin(g) + 0.02 * sin(2.0 * g)) / DEG_PER_RAD;
    const double epsilon = (23.439 - 4e-7 * n) / DEG_PER_RAD;
    const double x = cos(lambda);
    const double y = cos(epsilon) * sin(lambda);
    const double z = sin(epsilon) * sin(lambda);
    return {circleAngle(x, y) * HOURS_PER_RAD, asin(z) * DEG_PER_RAD};
}

Position moon(double jd, double latitude, double sidereal, double& distance) {
    const double T = (jd - J2000) / DAYS_PER_CENTURY;
    const double lambda =
        (218.32 + 481267.883 * T + 6.29 * sin((134.9 + 477198.85 * T) / DEG_PER_RAD) -
         1.27 * sin((259.2 - 413335.38 * T) / DEG_PER_RAD) +
         0.66 * sin((235.7 + 890534.23 * T) / DEG_PER_RAD) +
         0.21 * sin((269.9 + 954397.7 * T) / DEG_PER_RAD) -
         0.19 * sin((357.5 + 35999.05 * T) / DEG_PER_RAD) -
         0.11 * sin((186.6 + 966404.05 * T) / DEG_PER_RAD)) /
        DEG_PER_RAD;
    const double beta = (5.13 * sin((93.3 + 483202.03 * T) / DEG_PER_RAD) +
                         0.28 * sin((228.2 + 960400.87 * T) / DEG_PER_RAD) -
                         0.28 * sin((318.3 + 6003.18 * T) / DEG_PER_RAD) -
                         0.17 * sin((217.6 - 407332.2 * T) / DEG_PER_RAD)) /
                        DEG_PER_RAD;
    const double parallax = (0.9508 + 0.0518 * cos((134.9 + 477198.85 * T) / DEG_PER_RAD) +
                             0.0095 * cos((259.2 - 413335.38 * T) / DEG_PER_RAD) +
                             0.0078 * cos((235.7 + 890534.23 * T) / DEG_PER_RAD) +
                             0.0028 * cos((269.9 + 954397.7 * T) / DEG_PER_RAD)) /
                            DEG_PER_RAD;
    const double away = 1.0 / sin(parallax);
    const double phi = latitude / DEG_PER_RAD;
    const double theta = sidereal / HOURS_PER_RAD;
    const double x = away * cos(beta) * cos(lambda) - cos(phi) * cos(theta);
    const double y =
        away * (0.9175 * cos(beta) * sin(lambda) - 0.3978 * sin(beta)) - cos(phi) * sin(theta);
    const double z = away * (0.3978 * cos(beta) * sin(lambda) + 0.9175 * sin(beta)) - sin(phi);
    distance = std::sqrt(x * x + y * y + z * z);
    return {circleAngle(x, y) * HOURS_PER_RAD, asin(z / distance) * DEG_PER_RAD};
}

double newMoon(int lunation) {
    const double n = lunation;
    const double T = n / 1236.85;
    const double jd = 2415020.75933 + 29.53058868 * n + 0.0001178 * T * T - 1.55e-7 * T * T * T +
                      0.00033 * sin((166.56 + 132.87 * T - 0.009173 * T * T) / DEG_PER_RAD);
    const double m =
        (359.2242 + 29.10535608 * n - 3.33e-5 * T * T - 3.47e-6 * T * T * T) / DEG_PER_RAD;
    const double a =
        (306.0253 + 385.81691806 * n + 0.0107306 * T * T + 1.236e-5 * T * T * T) / DEG_PER_RAD;
    const double f =
        (21.2964 + 390.67050646 * n - 0.0016528 * T * T - 2.39e-6 * T * T * T) / DEG_PER_RAD;
    return jd + (0.1734 - 0.000393 * T) * sin(m) + 0.0021 * sin(2.0 * m) - 0.4068 * sin(a) +
           0.0161 * sin(2.0 * a) - 0.0004 * sin(3.0 * a) + 0.0104 * sin(2.0 * f) -
           0.0051 * sin(m + a) - 0.0074 * sin(m - a) + 0.0004 * sin(2.0 * f + m) -
           0.0004 * sin(2.0 * f - m) - 0.0006 * sin(2.0 * f + a) + 0.001 * sin(2.0 * f - a) +
           0.0005 * sin(m + 2.0 * a);
}

}  // namespace

float moonAge(double jd, int& lunation) {
    lunation = static_cast<int>((jd - 2415020.5) / 29.5307) - 1;
    double last = newMoon(lunation);
    double next = newMoon(lunation + 1);
    while (next < jd) {
        last = next;
        ++lunation;
        next = newMoon(lunation + 1);
    }
    return static_cast<float>(jd - last);
}

Moon computeMoon(double ra, double dec, double mjd, double longitude, double latitude) {
    const double jd = mjd + 2400000.5;
    Moon result = {};
    result.siderealTime = siderealTime(jd, longitude / 15.0);
    const Position moonAt = moon(jd, latitude, result.siderealTime, result.distance);
    result.targetDistance = angleBetween({ra / 15.0, dec}, moonAt) * DEG_PER_RAD;
    double hourAngle = result.siderealTime - moonAt.ra;
    while (hourAngle > 12.0) hourAngle -= 24.0;
    while (hourAngle < -12.0) hourAngle += 24.0;
    result.altitude = altitude(moonAt.dec, hourAngle, latitude, result.azimuth);
    int lunation = 0;
    result.phase = static_cast<double>(moonAge(jd, lunation)) / 29.5305888531;
    const Position sunAt = sun(jd);
    result.elongation = angleBetween(sunAt, moonAt);
    result.illumination = (1.0 - cos(angleBetween(moonAt, sunAt))) * 0.5;
    return result;
}

}  // namespace plain
