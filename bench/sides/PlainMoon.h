/// The moon as a textbook has it: every term of every formula written out, nothing shared between
/// the routines. It is what a user would write who does without the library.
#ifndef ZARNSYS_BENCH_PLAINMOON_H
#define ZARNSYS_BENCH_PLAINMOON_H

namespace plain {

/// The values of the library's `computeMoonParam`, in its units.
struct Moon {
    double siderealTime, illumination, targetDistance, altitude, azimuth, phase, elongation,
        distance;
};

/// @param ra, dec        target [deg]
/// @param longitude      [deg], west positive
Moon computeMoon(double ra, double dec, double mjd, double longitude, double latitude);

/// The moon's age [d]; `lunation` becomes its number.
float moonAge(double jd, int& lunation);

}  // namespace plain

#endif  // ZARNSYS_BENCH_PLAINMOON_H
