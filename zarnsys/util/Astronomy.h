/// @file
/// Positions of the sun and the moon, sidereal time, the moon's phases, and its light in the sky.
///
/// Right ascension, hour angle and sidereal time are in hours, all other angles in degrees unless a
/// comment says radians. Longitudes are positive to the WEST. Nutation, aberration and refraction
/// are left out. Every function is reentrant, keeps no state and throws nothing. Outputs are always
/// written. A not-a-number among the inputs gives not-a-number results, but for `lunskybright`.
#ifndef ZARNSYS_UTIL_ASTRONOMY_H
#define ZARNSYS_UTIL_ASTRONOMY_H

#include "Export.h"

/// Local mean sidereal time, by the expression of the IAU of 1982.
///
/// @param jd      Julian Date, universal time [d]
/// @param longit  longitude [h], positive WEST
/// @return        sidereal time [h], 0 <= t < 24
ZARNSYS_EXPORT double lst(double jd, double longit);

/// A time or hour angle reduced by whole days.
///
/// @param x  [h]
/// @return   -12 <= x <= 12. When |x| >= 100000 or x is not a number, it comes back as it is, and a
///           line on standard output says so.
ZARNSYS_EXPORT double adj_time(double x);

/// The angle of the point (x, y), seen from the origin.
///
/// @return  [rad], 0 <= angle < 2 pi; 0 for the origin itself
ZARNSYS_EXPORT double atan_circ(double x, double y);

/// Altitude and azimuth of a direction given by its declination and hour angle.
///
/// @param dec  declination [deg]
/// @param ha   hour angle [h], positive west of the meridian
/// @param lat  observer's latitude [deg], north positive
/// @param az   receives the azimuth [deg], 0 <= az < 360, from north through east
/// @return     altitude [deg], without refraction and parallax; 90 at the zenith, also where
///             rounding carries the sine above 1
ZARNSYS_EXPORT double altit(double dec, double ha, double lat, double* az);

/// The angle between two positions.
///
/// Below 1e-5 rad, away from the poles, a small-angle form takes the place of the arc cosine, which
/// is blind there: within 0.06 degrees of a pole, coincident positions may give 2e-8. Rounding that
/// carries a cosine above 1 gives 0, and a right ascension just below 24 h is near one just above
/// 0 h.
///
/// @param ra1, ra2    right ascensions [h]
/// @param dec1, dec2  declinations [deg]
/// @return            [rad], 0 to pi
ZARNSYS_EXPORT double subtend(double ra1, double dec1, double ra2, double dec2);

/// The sun's place in the equinox of date, by the Astronomical Almanac's low-precision formulae:
/// from 2000 to 2050 0.005 degrees in the root mean square, 0.014 at worst, nutation included.
///
/// @param jd   Julian Date, universal time [d]
/// @param ra   receives the right ascension [h], 0 <= ra < 24
/// @param dec  receives the declination [deg]
ZARNSYS_EXPORT void lpsun(double jd, double* ra, double* dec);

/// The moon's place in the equinox of date as the observer sees it, by the Astronomical Almanac's
/// low-precision formulae and the parallax on a spherical Earth: from 2000 to 2050 0.11 degrees in
/// the root mean square, 0.38 at worst.
///
/// @param jd    Julian Date, universal time [d]
/// @param lat   observer's latitude [deg]
/// @param sid   local sidereal time [h]
/// @param ra    receives the right ascension [h], 0 <= ra < 24
/// @param dec   receives the declination [deg]
/// @param dist  receives the distance from observer to moon [Earth radii]
ZARNSYS_EXPORT void lpmoon(double jd, double lat, double sid, double* ra, double* dec,
                           double* dist);

/// The time of one of the moon's phases.
///
/// The series is Meeus's (Astronomical Formulae for Calculators); its dynamical time is taken for
/// universal time.
///
/// @param n      lunation: 0 is the one whose mean new moon falls on JD 2415020.75933, in 1900
/// @param nph    0 new moon, 1 first quarter, 2 full moon, 3 last quarter; others shift
///               the lunation by quarters and use the quarters' corrections
/// @param jdout  receives the Julian Date of the phase [d]
ZARNSYS_EXPORT void flmoon(int n, int nph, double* jdout);

/// The moon's age: the time since the last new moon before an instant.
///
/// At the very instant of a new moon, from that of lunation 1 on, the age is a whole lunation.
///
/// @param jd    Julian Date [d]. Before 1900 the search may start at the new moon to come: the
///              age is then negative. The series' new moons advance up to JD 6.836e9; beyond, and
///              where lunation numbers of 32 bits end, the age is not a number and the lunation 0.
/// @param nlun  receives that new moon's lunation number, as `flmoon` counts; 0 without one
/// @return      age [d], rounded to single precision
ZARNSYS_EXPORT float lun_age(double jd, int* nlun);

/// The sky brightness that the moon adds at a target, by Krisciunas & Schaefer 1991, PASP 103,
/// 1033, with an allowance for the opposition surge within 7 degrees of full moon.
///
/// Nothing is said of a moon or target below the horizon: test the altitudes first.
///
/// @param alpha     angle between sun and moon [deg]: 0 at new moon, 180 at full moon
/// @param rho       angle between moon and target [deg]
/// @param kzen      extinction at the zenith [mag per airmass]
/// @param altmoon   moon's altitude [deg]
/// @param alt       target's altitude [deg]
/// @param moondist  moon's distance [Earth radii]
/// @return          [V mag per square arc second], larger is darker; 99.0 where it is negligible
///                  or an input is not a number
ZARNSYS_EXPORT double lunskybright(double alpha, double rho, double kzen, double altmoon,
                                   double alt, double moondist);

#endif  // ZARNSYS_UTIL_ASTRONOMY_H
