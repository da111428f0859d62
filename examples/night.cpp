/// How near the moon comes to 20 stars in a night: example-night MJD LATITUDE LONGITUDE
///
/// The night is the half day from MJD on, looked at every ten minutes. Angles in degrees, the
/// longitude positive to the west. Prints each star with its least separation from the moon [deg],
/// and for how long the moon is up and nearer than 40 degrees [h].

#include <erfa.h>
#include <erfam.h>
#include <zarnsys/util/MoonGrid.h>

#include <algorithm>
#include <cstdlib>
#include <iomanip>
#include <iostream>
#include <vector>

namespace {

/// A star as a catalogue has it, in the equinox of J2000 [deg].
struct Star {
    const char* name;
    double ra;
    double dec;
};

constexpr Star STARS[] = {
    {"Achernar", 24.429, -57.237},   {"Aldebaran", 68.980, 16.509}, {"Altair", 297.696, 8.868},
    {"Antares", 247.352, -26.432},   {"Arcturus", 213.915, 19.182}, {"Bellatrix", 81.283, 6.350},
    {"Betelgeuse", 88.793, 7.407},   {"Canopus", 95.988, -52.696},  {"Capella", 79.172, 45.998},
    {"Castor", 113.650, 31.888},     {"Deneb", 310.358, 45.280},    {"Elnath", 81.573, 28.608},
    {"Fomalhaut", 344.413, -29.622}, {"Pollux", 116.329, 28.026},   {"Procyon", 114.825, 5.225},
    {"Regulus", 152.093, 11.967},    {"Rigel", 78.634, -8.202},     {"Sirius", 101.287, -16.716},
    {"Spica", 201.298, -11.161},     {"Vega", 279.235, 38.784},
};

/// The stars in the mean equinox of a date, in which the library has the moon: precession moves
/// them by up to 0.7 degrees until 2050. Their own motion is less than 0.05 degrees in that time.
std::vector<SkyPosition> positionsAt(double mjd) {
    double rotation[3][3] = {};
    eraPmat06(ERFA_DJM0, mjd, rotation);
    std::vector<SkyPosition> positions;
    for (const Star& star : STARS) {
        double direction[3] = {};
        double ra = 0.0;
        double dec = 0.0;
        eraS2c(star.ra * ERFA_DD2R, star.dec * ERFA_DD2R, direction);
        eraRxp(rotation, direction, direction);
        eraC2s(direction, &ra, &dec);
        positions.push_back({eraAnp(ra) * ERFA_DR2D, dec * ERFA_DR2D});
    }
    return positions;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 4) return 2;
    constexpr int STEPS = 72;
    constexpr double STEPS_PER_HOUR = 6.0;
    constexpr double STEPS_PER_DAY = 144.0;
    constexpr double MOON_LIMIT = 40.0;  // [deg]
    const MJD_DATE begin = std::strtod(argv[1], nullptr);
    Place place;
    place.latitude = std::strtod(argv[2], nullptr);
    place.westLongitude = std::strtod(argv[3], nullptr);

    std::vector<MJD_DATE> instants;
    for (int step = 0; step <= STEPS; ++step) instants.push_back(begin + step / STEPS_PER_DAY);
    const std::vector<SkyPosition> targets = positionsAt(instants[STEPS / 2]);
    const MoonGrid moon = computeMoonGrid(targets, instants, place);

    std::cout << std::fixed << std::setprecision(1);
    for (std::size_t target = 0; target < targets.size(); ++target) {
        double nearest = moon.separation(0, target);
        int disturbed = 0;
        for (std::size_t i = 0; i < instants.size(); ++i) {
            const double separation = moon.separation(i, target);
            nearest = std::min(nearest, separation);
            if (moon.altitude[i] > 0.0 && separation < MOON_LIMIT) ++disturbed;
        }
        std::cout << std::left << std::setw(10) << STARS[target].name << std::right << std::setw(6)
                  << nearest << std::setw(5) << disturbed / STEPS_PER_HOUR << "\n";
    }
    return 0;
}
