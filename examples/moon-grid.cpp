/// A night's schedule and the moon: example-moon-grid MJD LATITUDE LONGITUDE
///
/// For 20 catalogue positions, how close the moon comes to each in the 12 hours from MJD on, and
/// when. Angles in degrees, the longitude positive to the west.

#include <erfa.h>
#include <erfam.h>
#include <zarnsys/util/MoonGrid.h>

#include <cstdlib>
#include <iomanip>
#include <iostream>

namespace {

constexpr int STEPS = 145;           // every five minutes
constexpr double STEP = 5 / 1440.0;  // [d]

// Of the equinox J2000 [deg].
const struct {
    const char* name;
    double ra, dec;
} CATALOGUE[] = {{"M 1", 83.63, 22.01},   {"M 13", 250.42, 36.46},  {"M 15", 322.49, 12.17},
                 {"M 27", 299.90, 22.72}, {"M 31", 10.68, 41.27},   {"M 33", 23.46, 30.66},
                 {"M 35", 92.27, 24.34},  {"M 42", 83.82, -5.39},   {"M 44", 130.05, 19.62},
                 {"M 45", 56.60, 24.11},  {"M 46", 115.45, -14.81}, {"M 51", 202.47, 47.20},
                 {"M 57", 283.40, 33.03}, {"M 63", 198.96, 42.03},  {"M 65", 169.73, 13.09},
                 {"M 74", 24.17, 15.78},  {"M 77", 40.67, -0.01},   {"M 81", 148.89, 69.07},
                 {"M 97", 168.70, 55.02}, {"M 104", 190.00, -11.62}};

/// A catalogue position in the equinox of date, in which the moon's position is.
MoonTarget precessed(double ra, double dec, MJD_DATE mjd) {
    double bias[3][3];
    double precession[3][3];
    double both[3][3];
    eraBp06(ERFA_DJM0, mjd, bias, precession, both);
    double direction[3];
    eraS2c(ra * ERFA_DD2R, dec * ERFA_DD2R, direction);
    eraRxp(both, direction, direction);
    eraC2s(direction, &ra, &dec);
    return {eraAnp(ra) * ERFA_DR2D, dec * ERFA_DR2D};
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 4) return 2;
    const MJD_DATE begin = std::strtod(argv[1], nullptr);
    const Place place = {std::strtod(argv[2], nullptr), std::strtod(argv[3], nullptr)};
    std::vector<MoonTarget> targets;
    for (const auto& [name, ra, dec] : CATALOGUE) targets.push_back(precessed(ra, dec, begin));
    std::vector<MJD_DATE> instants;
    for (int step = 0; step < STEPS; ++step) instants.push_back(begin + step * STEP);

    const MoonGrid moon = computeMoonGrid(targets, instants, place);
    for (std::size_t target = 0; target < targets.size(); ++target) {
        std::size_t closest = 0;
        for (std::size_t i = 1; i < instants.size(); ++i) {
            if (moon.separation(i, target) < moon.separation(closest, target)) closest = i;
        }
        std::cout << std::left << std::setw(6) << CATALOGUE[target].name << std::right << std::fixed
                  << std::setprecision(1) << std::setw(6) << moon.separation(closest, target)
                  << " degrees after " << std::setw(4) << (instants[closest] - begin) * 24
                  << " h\n";
    }
    return 0;
}
