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
    constexpr double DEG_PER_HOUR = 15.0;
    constexpr double EXTINCTION = 0.172;  // at the zenith [mag per airmass]
    const MJD_DATE mjd = std::strtod(argv[1], nullptr);
    const Place place = {std::strtod(argv[2], nullptr), std::strtod(argv[3], nullptr)};
    const MoonTarget target = {std::strtod(argv[4], nullptr), std::strtod(argv[5], nullptr)};

    // The first and only instant of a grid, and its first and only target.
    const MoonGrid moon = computeMoonGrid({target}, {mjd}, place);
    const double separation = moon.separation(0, 0);
    std::cout << std::fixed << std::setprecision(2) << "altitude " << moon.altitude[0]
              << ", azimuth " << moon.azimuth[0] << ", distance " << separation << ", phase "
              << moon.phase[0] << ", lit " << moon.illumination[0] << ", from the sun "
              << moon.elongation[0] << "\n";

    double azimuth = 0.0;
    const double hourAngle = moon.siderealTime[0] - target.ra / DEG_PER_HOUR;
    const double altitude = altit(target.dec, hourAngle, place.latitude, &azimuth);
    if (altitude > 0.0 && moon.altitude[0] > 0.0) {
        std::cout << "its light there, if the sky is dark: "
                  << lunskybright(moon.elongation[0], separation, EXTINCTION, moon.altitude[0],
                                  altitude, moon.distance[0])
                  << " mag per square arc second\n";
    }

    const ZarnMoonVal atTelescope(target.ra, target.dec, mjd, VEK1);
    std::cout << "seen from VEK1: altitude " << atTelescope.getMoonAlt() << "\n";
    return 0;
}
