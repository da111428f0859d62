#include "SkyInputs.h"

#include <zarnsys/util/Astronomy.h>

#include <cmath>

#include "programs/shared/sky/Units.h"

namespace {

constexpr double JD_1950 = 2433282.5;
constexpr double JD_2100 = 2488069.5;
constexpr double ARC_SECOND = 1.0 / 3600.0;    // [deg]
constexpr double HALF_DAY = 12.0;              // [h]
constexpr double JD_STEP = 1.0 / (1UL << 31);  // [d], of a double near JD 2.4e6

double cosDegrees(double degrees) { return std::cos(degrees * RAD_PER_DEG); }
double sinDegrees(double degrees) { return std::sin(degrees * RAD_PER_DEG); }

/// A small step over the sky.
struct Step {
    double east, north;  // [deg]
};

/// Of 0.1 to 1 arc second, in any direction.
Step smallStep(Random& random) {
    const double length = random.between(0.1, 1.0) * ARC_SECOND;
    const double direction = random.between(0.0, zarn::FULL_CIRCLE);
    return {length * sinDegrees(direction), length * cosDegrees(direction)};
}

void setDate(Inputs& in, double jd) {
    in[JD] = jd;
    in[MJD] = jd - zarn::JD_OF_MJD_0;
}

void nearZenith(Inputs& in, Random& random) {
    const Step step = smallStep(random);
    in[LAT] = random.between(-89.0, 89.0);
    in[DEC] = in[LAT] + step.north;
    in[HA] = step.east / cosDegrees(in[LAT]) / zarn::DEG_PER_HOUR;
}

void atZenith(Inputs& in, Random&) {
    in[DEC] = in[LAT];
    in[HA] = 0.0;
}

void nearNadir(Inputs& in, Random& random) {
    nearZenith(in, random);
    in[DEC] = -in[DEC];
    in[HA] += HALF_DAY;
}

void atPolesAndEquator(Inputs& in, Random& random) {
    in[LAT] = 90.0 * random.integer(-1, 1);
    in[DEC] = in[LAT] == 0.0 ? 0.0 : in[DEC];
}

void samePlace(Inputs& in, Random&) {
    in[RA2] = in[RA1];
    in[DEC2] = in[DEC1];
}

void samePlaceNearPole(Inputs& in, Random& random) {
    in[DEC1] = std::copysign(random.between(89.95, 90.0), in[DEC1]);
    samePlace(in, random);
}

void secondApart(Inputs& in, Random& random) {
    const Step step = smallStep(random);
    in[DEC1] = random.between(-89.0, 89.0);
    in[DEC2] = in[DEC1] + step.north;
    in[RA2] = in[RA1] + step.east / cosDegrees(in[DEC1]) / zarn::DEG_PER_HOUR;
}

void acrossZeroHours(Inputs& in, Random& random) {
    in[RA1] = 0.0;
    secondApart(in, random);
    if (in[RA2] < 0.0) in[RA2] += 2.0 * HALF_DAY;
}

void antipodes(Inputs& in, Random&) {
    in[RA2] = in[RA1] + std::copysign(HALF_DAY, HALF_DAY - in[RA1]);
    in[DEC2] = -in[DEC1];
}

void nearAntipodes(Inputs& in, Random& random) {
    secondApart(in, random);
    in[RA2] += std::copysign(HALF_DAY, HALF_DAY - in[RA2]);
    in[DEC2] = -in[DEC2];
}

void atMidnight(Inputs& in, Random&) { setDate(in, std::floor(in[JD]) + 0.5); }

void betweenSteps(Inputs& in, Random& random) { in[MJD] += random.between(-0.5, 0.5) * JD_STEP; }

void longAgo(Inputs& in, Random& random) { setDate(in, random.onGrid(0.0, 5e6, 2.0 * JD_STEP)); }

void nearNewMoon(Inputs& in, Random& random) {
    double jd = 0;
    flmoon(static_cast<int>(in[LUNATION]), 0, &jd);
    setDate(in, jd + random.integer(-4, 4) * JD_STEP);
}

void atBrightnessBranch(Inputs& in, Random& random) {
    constexpr double RHOS[] = {0.25, 10.0};
    const double rho = RHOS[random.integer(0, 1)];
    in[RHO] = random.integer(0, 1) == 1 ? rho : std::nextafter(rho, 2.0 * rho);
    constexpr double SURGE = 173.0;
    if (random.integer(0, 1) == 1) in[ALPHA] = SURGE;
    if (random.integer(0, 3) == 1) in[ALPHA] = std::nextafter(SURGE, 2.0 * SURGE);
}

void withoutExtinction(Inputs& in, Random& random) {
    in[KZEN] = std::pow(10.0, random.between(-9.0, -3.0));
}

/// Seeks the extinction that swallows the last of the moonlight, and stays on either side of it.
void atDarkness(Inputs& in, Random& random) {
    constexpr int HALVINGS = 60;  // more than a double has binary digits
    double light = 1.0;
    double dark = 100.0;
    for (int i = 0; i < HALVINGS; ++i) {
        in[KZEN] = (light + dark) / 2.0;
        const double magnitude =
            lunskybright(in[ALPHA], in[RHO], in[KZEN], in[ALTMOON], in[ALT], in[MOONDIST]);
        (magnitude == NO_MOONLIGHT ? dark : light) = in[KZEN];
    }
    in[KZEN] = random.integer(0, 1) == 1 ? light : dark;
}

void besideDarkness(Inputs& in, Random& random) {
    constexpr double BESIDE = 1e-6;
    atDarkness(in, random);
    in[KZEN] *= 1.0 + (random.integer(0, 1) == 1 ? BESIDE : -BESIDE);
}

struct Place {
    double ra, dec;  // [deg]
};

/// The moon's place for `computeMoonParam`.
Place moonFor(const Inputs& in) {
    const double sidereal = lst(in[MJD] + zarn::JD_OF_MJD_0, in[LONGITUDE] / zarn::DEG_PER_HOUR);
    double distance = 0;
    Place moon{};
    lpmoon(in[MJD] + zarn::JD_OF_MJD_0, in[LAT], sidereal, &moon.ra, &moon.dec, &distance);
    return {moon.ra * zarn::DEG_PER_HOUR, moon.dec};
}

void onTheMoon(Inputs& in, Random& random) {
    const Place moon = moonFor(in);
    const Step step = smallStep(random);
    in[STAR_DEC] = moon.dec + step.north;
    in[STAR_RA] = moon.ra + step.east / cosDegrees(moon.dec);
}

void oppositeTheMoon(Inputs& in, Random& random) {
    onTheMoon(in, random);
    in[STAR_DEC] = -in[STAR_DEC];
    in[STAR_RA] += zarn::FULL_CIRCLE / 2.0;
}

/// Puts the observer where the sidereal time is this [deg].
void setSiderealTime(Inputs& in, double sidereal) {
    const double greenwich = lst(in[MJD] + zarn::JD_OF_MJD_0, 0.0) * zarn::DEG_PER_HOUR;
    in[LONGITUDE] = std::remainder(greenwich - sidereal, zarn::FULL_CIRCLE);
}

void underTheMoon(Inputs& in, Random& random) {
    constexpr int ROUNDS = 12;  // each brings the observer 60 times nearer to the place
    for (int i = 0; i < ROUNDS; ++i) {
        const Place moon = moonFor(in);
        in[LAT] = moon.dec;
        setSiderealTime(in, moon.ra);
    }
    const Step step = smallStep(random);
    in[LAT] += step.north;
    in[LONGITUDE] += step.east / cosDegrees(in[LAT]);
}

struct Vector {
    double x, y, z;
};

Vector toVector(double raHours, double dec, double length) {
    const double ra = raHours * zarn::DEG_PER_HOUR;
    return {length * cosDegrees(dec) * cosDegrees(ra), length * cosDegrees(dec) * sinDegrees(ra),
            length * sinDegrees(dec)};
}

/// Puts the observer into the axis of the shadow: sun and moon stand in one line with him.
///
/// @param quarter  of the lunation: 0 the sun behind the moon, 2 opposite
/// @return         whether this lunation's axis meets the Earth
bool toShadowAxis(Inputs& in, int lunation, int quarter) {
    double jd = 0;
    flmoon(lunation, quarter, &jd);
    setDate(in, jd);
    double ra = 0;
    double dec = 0;
    double distance = 0;
    lpsun(jd, &ra, &dec);
    const Vector sun = toVector(ra, dec, quarter == 0 ? 1.0 : -1.0);
    lpmoon(jd, 0.0, 0.0, &ra, &dec, &distance);
    Vector moon = toVector(ra, dec, distance);
    moon.x += 1.0;  // from the observer at latitude 0, sidereal time 0 back to the Earth's centre
    const double along = moon.x * sun.x + moon.y * sun.y + moon.z * sun.z;
    const double across = moon.x * moon.x + moon.y * moon.y + moon.z * moon.z - along * along;
    if (across >= 1.0) return false;
    const double t = along - std::sqrt(1.0 - across);
    in[LAT] = std::asin(moon.z - t * sun.z) / RAD_PER_DEG;
    setSiderealTime(in, std::atan2(moon.y - t * sun.y, moon.x - t * sun.x) / RAD_PER_DEG);
    return true;
}

/// Tries lunations until one has such an axis; a sky that is wrong may have none.
void seekShadowAxis(Inputs& in, Random& random, int quarter) {
    for (int tries = 0; tries < 1000; ++tries)
        if (toShadowAxis(in, random.integer(700, 2300), quarter)) return;
}

void sunBehindMoon(Inputs& in, Random& random) { seekShadowAxis(in, random, 0); }

void moonOppositeSun(Inputs& in, Random& random) { seekShadowAxis(in, random, 2); }

constexpr unsigned long SUN_AND_MOON = setOf(SUN_RA, SUN_DEC, MOON_RA, MOON_DEC, MOON_DIST);
constexpr unsigned long AGES = setOf(AGE, AGE_LUNATION, P_PHASE);
constexpr unsigned long PARAM =
    setOf(P_LST, P_FLI, P_MOONDIST, P_MOONALT, P_MOONAZ, P_ALPHASUN, P_OBJDIST);

constexpr bool BOUNDED = true;
constexpr bool LOSSY = false;

constexpr char ARC_SINE[] = "the arc sine near 1 loses 1e-16 / distance, at most 3e-8 rad";
constexpr char ARC_COSINE[] = "the arc cosine near 1 loses 1e-16 / distance, at most 3e-8 rad";
constexpr char SMALL_ANGLE[] = "the small-angle form loses nothing but the inputs' digits";

}  // namespace

const EdgeKind EDGE_TABLE[EDGES] = {
    {"0.1 to 1 arc second from the zenith", ARC_SINE, nearZenith, setOf(ALTITUDE, AZIMUTH), LOSSY},
    {"at the zenith", ARC_SINE, atZenith, setOf(ALTITUDE), LOSSY},
    {"0.1 to 1 arc second from the nadir", ARC_SINE, nearNadir, setOf(ALTITUDE, AZIMUTH), LOSSY},
    {"observer at a pole or the equator", "nothing is lost", atPolesAndEquator,
     setOf(ALTITUDE, AZIMUTH), BOUNDED},
    {"same place", SMALL_ANGLE, samePlace, setOf(ANGLE), BOUNDED},
    {"same place within 3' of a pole", ARC_COSINE, samePlaceNearPole, setOf(ANGLE), LOSSY},
    {"0.1 to 1 arc second apart", SMALL_ANGLE, secondApart, setOf(ANGLE), BOUNDED},
    {"0.1 to 1 arc second apart across 0 h", SMALL_ANGLE, acrossZeroHours, setOf(ANGLE), BOUNDED},
    {"antipodes", ARC_COSINE, antipodes, setOf(ANGLE), LOSSY},
    {"0.1 to 1 arc second from the antipode", ARC_COSINE, nearAntipodes, setOf(ANGLE), LOSSY},
    {"days that end in .5", "midnight's branch", atMidnight, setOf(SIDEREAL) | SUN_AND_MOON | PARAM,
     BOUNDED},
    {"Modified Julian Dates finer than Julian Dates", "2e-10 d go with the sum: 6e-9 h, 8e-8 deg",
     betweenSteps, PARAM, LOSSY},
    {"Julian Dates 0 to 5,000,000", "angles of 5e7 deg have steps of 7e-9 deg", longAgo,
     setOf(SIDEREAL) | SUN_AND_MOON | AGES | PARAM, LOSSY},
    {"within 2e-9 d of a new moon", "the age begins anew, with a Julian Date's digits", nearNewMoon,
     AGES, LOSSY},
    {"rho 0.25 or 10, alpha 173", "branches begin", atBrightnessBranch, setOf(BRIGHTNESS), BOUNDED},
    {"extinction 1e-9 to 1e-3", "1 - 10^-x loses 1e-16 / x", withoutExtinction, setOf(BRIGHTNESS),
     LOSSY},
    {"light of 0.001 nanolambert", "the 99.0 begins", atDarkness, setOf(BRIGHTNESS), LOSSY},
    {"light of nearly 0.001 nanolambert", "it has begun or not", besideDarkness, setOf(BRIGHTNESS),
     BOUNDED},
    {"target 0.1 to 1 arc second from the moon", SMALL_ANGLE, onTheMoon, setOf(P_MOONDIST),
     BOUNDED},
    {"target opposite the moon, as near", ARC_COSINE, oppositeTheMoon, setOf(P_MOONDIST), LOSSY},
    {"moon 0.1 to 1 arc second from the zenith", ARC_SINE, underTheMoon, setOf(P_MOONALT, P_MOONAZ),
     LOSSY},
    {"sun behind the moon", SMALL_ANGLE, sunBehindMoon, setOf(P_ALPHASUN, P_FLI), BOUNDED},
    {"moon opposite the sun", ARC_COSINE, moonOppositeSun, setOf(P_ALPHASUN, P_FLI), LOSSY},
};

Inputs randomInputs(Random& random) {
    Inputs in{};
    setDate(in, random.onGrid(JD_1950, JD_2100, JD_STEP));
    in[WEST] = random.between(-HALF_DAY, HALF_DAY);
    in[SID] = random.between(0.0, 2.0 * HALF_DAY);
    in[LAT] = random.between(-90.0, 90.0);
    in[DEC] = std::asin(random.between(-1.0, 1.0)) / RAD_PER_DEG;
    in[HA] = random.between(-HALF_DAY, HALF_DAY);
    for (const Input ra : {RA1, RA2}) in[ra] = random.between(0.0, 2.0 * HALF_DAY);
    for (const Input dec : {DEC1, DEC2, STAR_DEC})
        in[dec] = std::asin(random.between(-1.0, 1.0)) / RAD_PER_DEG;
    in[LUNATION] = random.integer(620, 2470);  // of the same years
    in[QUARTER] = random.integer(0, 3);
    for (const Input angle : {ALPHA, RHO}) in[angle] = random.between(0.0, zarn::FULL_CIRCLE / 2.0);
    in[KZEN] = random.between(0.05, 1.0);
    for (const Input altitude : {ALTMOON, ALT}) in[altitude] = random.between(-90.0, 90.0);
    in[MOONDIST] = random.between(55.0, 65.0);
    in[STAR_RA] = random.between(0.0, zarn::FULL_CIRCLE);
    in[LONGITUDE] = random.between(-zarn::FULL_CIRCLE / 2.0, zarn::FULL_CIRCLE / 2.0);
    return in;
}
