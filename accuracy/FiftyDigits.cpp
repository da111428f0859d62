#include "FiftyDigits.h"

namespace {

/// A constant, from the digits as they stand.
Real operator""_r(const char* digits) { return Real(digits); }

Real fromDegrees(const Real& degrees) { return degrees / 57.2957795130823_r; }
Real toDegrees(const Real& radians) { return radians * 57.2957795130823_r; }
Real fromHours(const Real& hours) { return hours / 3.819718634205_r; }
Real toHours(const Real& radians) { return radians * 3.819718634205_r; }
Real sinDegrees(const Real& degrees) { return sin(fromDegrees(degrees)); }
Real cosDegrees(const Real& degrees) { return cos(fromDegrees(degrees)); }

/// The last of fifty digits may carry a sine or cosine beyond 1, too.
Real withinOne(const Real& x) { return x > 1 ? Real(1) : x < -1 ? Real(-1) : x; }

Real fullCircle(const Real& x, const Real& y) {
    if (x == 0 && y == 0) return 0;
    if (x == 0) return y > 0 ? 1.570796326794895_r : 4.712388980384685_r;
    Real theta = atan(y / x);
    if (x < 0) theta += 3.14159265358979_r;
    if (theta < 0) theta += 6.28318530717958_r;
    return theta;
}

Real siderealTime(const Real& jd, const Real& west) {
    const Real day = trunc(jd);
    const Real fraction = jd - day;
    const bool morning = fraction >= 0.5_r;  // of the civil day, which begins at .5
    const Real midnight = morning ? day + 0.5_r : day - 0.5_r;
    const Real ut = morning ? fraction - 0.5_r : fraction + 0.5_r;
    const Real t = (midnight - 2451545.0_r) / 36525.0_r;
    const Real seconds =
        24110.54841_r + 8640184.812866_r * t + 0.093104_r * pow(t, 2) - 6.2e-6_r * pow(t, 3);
    const Real greenwich = seconds / 86400.0_r;
    const Real local = greenwich - trunc(greenwich) + 1.0027379093_r * ut - west / 24.0_r;
    const Real hours = (local - trunc(local)) * 24.0_r;
    return hours < 0 ? hours + 24.0_r : hours;
}

Real hourAngle(Real hours) {
    while (hours > 12) hours -= 24;
    while (hours < -12) hours += 24;
    return hours;
}

struct Horizon {
    Real altitude, azimuth;  // [deg]
};

Horizon horizonOf(const Real& declination, const Real& hours, const Real& latitude) {
    const Real d = fromDegrees(declination);
    const Real h = fromHours(hours);
    const Real phi = fromDegrees(latitude);
    const Real up = cos(d) * cos(h) * cos(phi) + sin(d) * sin(phi);
    const Real north = sin(d) * cos(phi) - cos(d) * cos(h) * sin(phi);
    const Real east = -cos(d) * sin(h);
    return {toDegrees(asin(withinOne(up))), toDegrees(fullCircle(north, east))};
}

/// A place in the sky; the moon's also has a distance.
struct Place {
    Real ra;        // [h]
    Real dec;       // [deg]
    Real distance;  // [Earth radii]
};

Real angleBetween(const Place& a, const Place& b) {
    const Real ra1 = fromHours(a.ra);
    const Real ra2 = fromHours(b.ra);
    const Real dec1 = fromDegrees(a.dec);
    const Real dec2 = fromDegrees(b.dec);
    const Real dot = cos(ra1) * cos(dec1) * cos(ra2) * cos(dec2) +
                     sin(ra1) * cos(dec1) * sin(ra2) * cos(dec2) + sin(dec1) * sin(dec2);
    Real theta = acos(withinOne(dot));
    const Real limit = 1.5697963267948951_r;
    if (theta >= 1e-5_r || abs(dec1) >= limit || abs(dec2) >= limit) return theta;
    Real east = ra2 - ra1;
    if (east > 3.14159265358979_r) east -= fromHours(24.0_r);
    if (east < -3.14159265358979_r) east += fromHours(24.0_r);
    return sqrt(pow(east * cos((dec1 + dec2) / 2), 2) + pow(dec2 - dec1, 2));
}

Place sunAt(const Real& jd) {
    const Real n = jd - 2451545.0_r;
    const Real meanLongitude = 280.46_r + 0.9856474_r * n;
    const Real g = fromDegrees(357.528_r + 0.9856003_r * n);
    const Real lambda = fromDegrees(meanLongitude + 1.915_r * sin(g) + 0.02_r * sin(2 * g));
    const Real epsilon = fromDegrees(23.439_r - 4e-7_r * n);
    const Real ra = fullCircle(cos(lambda), cos(epsilon) * sin(lambda));
    return {toHours(ra), toDegrees(asin(withinOne(sin(epsilon) * sin(lambda)))), 0};
}

Real moonLongitude(const Real& T) {
    return 218.32_r + 481267.883_r * T + 6.29_r * sinDegrees(134.9_r + 477198.85_r * T) -
           1.27_r * sinDegrees(259.2_r - 413335.38_r * T) +
           0.66_r * sinDegrees(235.7_r + 890534.23_r * T) +
           0.21_r * sinDegrees(269.9_r + 954397.7_r * T) -
           0.19_r * sinDegrees(357.5_r + 35999.05_r * T) -
           0.11_r * sinDegrees(186.6_r + 966404.05_r * T);
}

Real moonLatitude(const Real& T) {
    return 5.13_r * sinDegrees(93.3_r + 483202.03_r * T) +
           0.28_r * sinDegrees(228.2_r + 960400.87_r * T) -
           0.28_r * sinDegrees(318.3_r + 6003.18_r * T) -
           0.17_r * sinDegrees(217.6_r - 407332.2_r * T);
}

Real moonParallax(const Real& T) {
    return 0.9508_r + 0.0518_r * cosDegrees(134.9_r + 477198.85_r * T) +
           0.0095_r * cosDegrees(259.2_r - 413335.38_r * T) +
           0.0078_r * cosDegrees(235.7_r + 890534.23_r * T) +
           0.0028_r * cosDegrees(269.9_r + 954397.7_r * T);
}

Place moonAt(const Real& jd, const Real& latitude, const Real& sidereal) {
    const Real T = (jd - 2451545.0_r) / 36525.0_r;
    const Real lambda = fromDegrees(moonLongitude(T));
    const Real beta = fromDegrees(moonLatitude(T));
    const Real geocentric = 1 / sinDegrees(moonParallax(T));
    const Real phi = fromDegrees(latitude);
    const Real theta = fromHours(sidereal);
    const Real sinCos = cos(beta) * sin(lambda);
    const Real x = geocentric * cos(beta) * cos(lambda) - cos(phi) * cos(theta);
    const Real y = geocentric * (0.9175_r * sinCos - 0.3978_r * sin(beta)) - cos(phi) * sin(theta);
    const Real z = geocentric * (0.3978_r * sinCos + 0.9175_r * sin(beta)) - sin(phi);
    const Real distance = sqrt(x * x + y * y + z * z);
    return {toHours(fullCircle(x / distance, y / distance)),
            toDegrees(asin(withinOne(z / distance))), distance};
}

/// The angles of a lunation's series [rad], and its centuries since 1900.
struct Anomalies {
    Real T, sun, moon, latitude;
};

Real newOrFullCorrection(const Anomalies& a) {
    const Real& M = a.sun;
    const Real& m = a.moon;
    const Real F2 = 2 * a.latitude;
    return (0.1734_r - 0.000393_r * a.T) * sin(M) + 0.0021_r * sin(2 * M) - 0.4068_r * sin(m) +
           0.0161_r * sin(2 * m) - 0.0004_r * sin(3 * m) + 0.0104_r * sin(F2) -
           0.0051_r * sin(M + m) - 0.0074_r * sin(M - m) + 0.0004_r * sin(F2 + M) -
           0.0004_r * sin(F2 - M) - 0.0006_r * sin(F2 + m) + 0.001_r * sin(F2 - m) +
           0.0005_r * sin(M + 2 * m);
}

Real quarterCorrection(const Anomalies& a) {
    const Real& M = a.sun;
    const Real& m = a.moon;
    const Real F2 = 2 * a.latitude;
    return (0.1721_r - 0.0004_r * a.T) * sin(M) + 0.0021_r * sin(2 * M) - 0.628_r * sin(m) +
           0.0089_r * sin(2 * m) - 0.0004_r * sin(3 * m) + 0.0079_r * sin(F2) -
           0.0119_r * sin(M + m) - 0.0047_r * sin(M - m) + 0.0003_r * sin(F2 + M) -
           0.0004_r * sin(F2 - M) - 0.0006_r * sin(F2 + m) + 0.0021_r * sin(F2 - m) +
           0.0003_r * sin(M + 2 * m) + 0.0004_r * sin(M - 2 * m) - 0.0003_r * sin(2 * M + m);
}

Real phaseTime(int n, int nph) {
    const Real k = n + 0.25_r * nph;
    const Real T = k / 1236.85_r;
    const Real T2 = T * T;
    const Real T3 = T * T * T;
    const Real mean = 2415020.75933_r + 29.53058868_r * k + 0.0001178_r * T2 - 1.55e-7_r * T3 +
                      0.00033_r * sinDegrees(166.56_r + 132.87_r * T - 0.009173_r * T2);
    const Anomalies a{
        T, fromDegrees(359.2242_r + 29.10535608_r * k - 3.33e-5_r * T2 - 3.47e-6_r * T3),
        fromDegrees(306.0253_r + 385.81691806_r * k + 0.0107306_r * T2 + 1.236e-5_r * T3),
        fromDegrees(21.2964_r + 390.67050646_r * k - 0.0016528_r * T2 - 2.39e-6_r * T3)};
    if (nph == 0 || nph == 2) return mean + newOrFullCorrection(a);
    const Real shift = 0.0028_r - 0.0004_r * cos(a.sun) + 0.0003_r * cos(a.moon);
    const Real sign = nph == 1 ? 1 : nph == 3 ? -1 : 0;
    return mean + quarterCorrection(a) + sign * shift;
}

struct Age {
    int lunation;
    Real days;  // rounded to single precision
};

Age ageAt(const Real& jd) {
    int n = static_cast<int>(trunc((jd - 2415020.5_r) / 29.5307_r - 1));
    Real last = phaseTime(n, 0);
    for (Real next = phaseTime(n + 1, 0); next < jd; next = phaseTime(n + 1, 0)) {
        last = next;
        ++n;
    }
    const Real days = jd - last;
    return {n, static_cast<float>(static_cast<double>(days))};
}

Real scattering(const Real& rho) {
    const Real rayleigh = 229087.0_r * (1.06_r + pow(cosDegrees(rho), 2));
    if (abs(rho) > 10) return rayleigh + pow(10_r, 6.15_r - rho / 40);
    if (abs(rho) > 0.25_r) return rayleigh + 6.2e7_r / (rho * rho);
    return rayleigh + 9.9e8_r;
}

Real airmass(const Real& altitude) {
    return 1 / sqrt(1 - 0.96_r * pow(sinDegrees(90 - altitude), 2));
}

Real brightness(const Inputs& in) {
    const Real a = abs(180 - Real(in[ALPHA]));
    const Real d = Real(in[MOONDIST]) / 60.27_r;
    const Real extinction = -0.4_r * Real(in[KZEN]);
    Real moon = pow(10_r, -0.4_r * (3.84_r + 0.026_r * a + 4e-9_r * pow(a, 4))) / (d * d);
    if (a < 7) moon *= 1.35_r - 0.05_r * a;
    const Real nanolamberts = scattering(in[RHO]) * moon *
                              pow(10_r, extinction * airmass(in[ALTMOON])) *
                              (1 - pow(10_r, extinction * airmass(in[ALT])));
    if (nanolamberts <= 0.001_r) return 99;
    return 22.5_r - 1.08574_r * log(nanolamberts / 34.08_r);
}

void evaluateMoonParam(const Inputs& in, Outputs<Real>& out) {
    const Real jd = Real(in[MJD]) + 2400000.5_r;
    out[P_LST] = siderealTime(jd, Real(in[LONGITUDE]) / 15);
    const Place moon = moonAt(jd, in[LAT], out[P_LST]);
    const Place sun = sunAt(jd);
    const Place star{Real(in[STAR_RA]) / 15, in[STAR_DEC], 0};
    out[P_OBJDIST] = moon.distance;
    out[P_MOONDIST] = angleBetween(star, moon) * 57.29577951308238_r;
    const Horizon horizon = horizonOf(moon.dec, hourAngle(out[P_LST] - moon.ra), in[LAT]);
    out[P_MOONALT] = horizon.altitude;
    out[P_MOONAZ] = horizon.azimuth;
    out[P_PHASE] = ageAt(jd).days / 29.5305888531_r;
    out[P_ALPHASUN] = angleBetween(sun, moon);
    out[P_FLI] = (1 - cos(out[P_ALPHASUN])) / 2;
}

}  // namespace

Outputs<Real> evaluateExactly(const Inputs& in) {
    Outputs<Real> out;
    out[SIDEREAL] = siderealTime(in[JD], in[WEST]);
    const Horizon horizon = horizonOf(in[DEC], in[HA], in[LAT]);
    out[ALTITUDE] = horizon.altitude;
    out[AZIMUTH] = horizon.azimuth;
    out[ANGLE] = angleBetween({in[RA1], in[DEC1], 0}, {in[RA2], in[DEC2], 0});
    const Place sun = sunAt(in[JD]);
    out[SUN_RA] = sun.ra;
    out[SUN_DEC] = sun.dec;
    const Place moon = moonAt(in[JD], in[LAT], in[SID]);
    out[MOON_RA] = moon.ra;
    out[MOON_DEC] = moon.dec;
    out[MOON_DIST] = moon.distance;
    out[PHASE_TIME] = phaseTime(static_cast<int>(in[LUNATION]), static_cast<int>(in[QUARTER]));
    const Age age = ageAt(in[JD]);
    out[AGE] = age.days;
    out[AGE_LUNATION] = age.lunation;
    out[BRIGHTNESS] = brightness(in);
    evaluateMoonParam(in, out);
    return out;
}
