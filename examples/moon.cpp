/// The moon for a target, and its light there: example-moon MJD LATITUDE LONGITUDE RA DEC
///
/// Angles in degrees, the longitude positive to the west, the target's place in the equinox of
/// date.

#include <zarnsys/util/Astronomy.h>
#include <zarnsys/util/MoonGrid.h>

#include <cstdlib>
#include <iomanip>
#include <iostream>

int main(int argc, char** argv) {
    if (argc != 6) return 2;
    constexpr double DEG_PER_RAD = 57.29577951308232;
    constexpr double DEG_PER_HOUR = 15.0;
    constexpr double EXTINCTION = 0.172;  // at the zenith [mag per airmass]
    const MJD_DATE mjd = std::strtod(argv[1], nullptr);
    const double latitude = std::strtod(argv[2], nullptr);
    const double longitude = std::strtod(argv[3], nullptr);
    const MoonTarget target = {std::strtod(argv[4], nullptr), std::strtod(argv[5], nullptr)};

    // The first and only instant of a grid, and its first and only target.
    const MoonGrid moon = computeMoonGrid({target}, {mjd}, longitude, latitude);
    const double sunAngle = moon.alphasun[0] * DEG_PER_RAD;
    std::cout << std::fixed << std::setprecision(2) << "altitude " << moon.moonalt[0]
              << ", azimuth " << moon.moonaz[0] << ", distance " << moon.moondist[0] << ", phase "
              << moon.moonphase[0] << ", lit " << moon.moonfli[0] << ", from the sun " << sunAngle
              << "\n";

    double azimuth = 0.0;
    const double hourAngle = moon.lst[0] - target.ra / DEG_PER_HOUR;
    const double altitude = altit(target.dec, hourAngle, latitude, &azimuth);
    if (altitude > 0.0 && moon.moonalt[0] > 0.0) {
        std::cout << "its light there, if the sky is dark: "
                  << lunskybright(sunAngle, moon.moondist[0], EXTINCTION, moon.moonalt[0], altitude,
                                  moon.objdist[0])
                  << " mag per square arc second\n";
    }

    const ZarnMoonVal atTelescope(target.ra, target.dec, mjd, VEK1);
    std::cout << "seen from VEK1: altitude " << atTelescope.getMoonAlt() << "\n";
    return 0;
}
