#include "Figures.h"

namespace {

constexpr double ARC_SECOND = 1.0 / 3600.0;  // [deg]
constexpr double RADIAN_SECOND = ARC_SECOND * RAD_PER_DEG;
constexpr double HALF_TURN = 180.0 * RAD_PER_DEG;
constexpr double LEAST_AGE = 1.0 / 32.0;  // [d]: below it a Julian Date is coarser than an age

/// Below the horizon's poles, between the ends of an angle, away from new moon.
constexpr Regular offZenith(Output of) { return {of, -90.0 + ARC_SECOND, 90.0 - ARC_SECOND}; }
constexpr Regular apartInDegrees(Output of) { return {of, ARC_SECOND, 180.0 - ARC_SECOND}; }
constexpr Regular apartInRadians(Output of) {
    return {of, RADIAN_SECOND, HALF_TURN - RADIAN_SECOND};
}
constexpr Regular always(Output of) { return {of, -UNBOUNDED, UNBOUNDED}; }

constexpr Regular AGED{AGE, LEAST_AGE, UNBOUNDED};
constexpr Regular PAST_NEW{P_PHASE, LEAST_AGE / SYNODIC_MONTH, UNBOUNDED};

constexpr double STEP = 1;
constexpr double DIVIDED_STEP = STEP + 1e-8;  // the age over the month is rounded once more
constexpr unsigned long PARAM = setOf(MJD, LONGITUDE, LAT);

}  // namespace

const Figure FIGURE_TABLE[FIGURES] = {
    {"lst", "h", SIDEREAL, setOf(JD, WEST), SIDEREAL_BOUND, always(SIDEREAL), 24},
    {"altit", "deg", ALTITUDE, setOf(DEC, HA, LAT), ANGLE_BOUND, offZenith(ALTITUDE)},
    {"altit azimuth", "deg", AZIMUTH, setOf(DEC, HA, LAT), UNBOUNDED, offZenith(ALTITUDE), 360},
    {"  on the sky", "deg", AZIMUTH, setOf(DEC, HA, LAT), ROUNDING_BOUND, offZenith(ALTITUDE), 360,
     Measure::ON_THE_SKY},
    {"subtend", "rad", ANGLE, setOf(RA1, DEC1, RA2, DEC2), ANGLE_BOUND, apartInRadians(ANGLE)},
    {"lpsun ra", "h", SUN_RA, setOf(JD), ANGLE_BOUND, always(SUN_RA), 24},
    {"lpsun dec", "deg", SUN_DEC, setOf(JD), ANGLE_BOUND, always(SUN_DEC)},
    {"lpmoon ra", "h", MOON_RA, setOf(JD, LAT, SID), ANGLE_BOUND, always(MOON_RA), 24},
    {"lpmoon dec", "deg", MOON_DEC, setOf(JD, LAT, SID), ANGLE_BOUND, always(MOON_DEC)},
    {"lpmoon dist", "radii", MOON_DIST, setOf(JD, LAT, SID), ANGLE_BOUND, always(MOON_DIST)},
    {"flmoon", "d", PHASE_TIME, setOf(LUNATION, QUARTER), TIME_BOUND, always(PHASE_TIME)},
    {"lun_age", "steps", AGE, setOf(JD), STEP, AGED, 0, Measure::AGE_STEPS, 1},
    {"lun_age lunation", "", AGE_LUNATION, setOf(JD), 0, AGED, 0, Measure::PLAIN, 0.5},
    {"lunskybright", "mag", BRIGHTNESS, setOf(ALPHA, RHO, KZEN, ALTMOON, ALT, MOONDIST),
     ROUNDING_BOUND, always(BRIGHTNESS), 0, Measure::PLAIN, 50},
    {"moon: sidereal time", "h", P_LST, PARAM, SIDEREAL_BOUND, always(P_LST), 24},
    {"moon: lit fraction", "", P_FLI, PARAM, ANGLE_BOUND, always(P_FLI)},
    {"moon: from target", "deg", P_MOONDIST, PARAM | setOf(STAR_RA, STAR_DEC), ANGLE_BOUND,
     apartInDegrees(P_MOONDIST)},
    {"moon: altitude", "deg", P_MOONALT, PARAM, ANGLE_BOUND, offZenith(P_MOONALT)},
    {"moon: azimuth", "deg", P_MOONAZ, PARAM, UNBOUNDED, offZenith(P_MOONALT), 360},
    {"  on the sky", "deg", P_MOONAZ, PARAM, ANGLE_BOUND, offZenith(P_MOONALT), 360,
     Measure::ON_THE_SKY},
    {"moon: phase", "steps", P_PHASE, PARAM, DIVIDED_STEP, PAST_NEW, 0, Measure::PHASE_STEPS, 0.5},
    {"moon: from sun", "rad", P_ALPHASUN, PARAM, ANGLE_BOUND, apartInRadians(P_ALPHASUN)},
    {"moon: distance", "radii", P_OBJDIST, PARAM, ANGLE_BOUND, always(P_OBJDIST)},
};
