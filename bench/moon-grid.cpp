/// How much faster the moon grid is than the classic call, evaluation by evaluation.
///
///     moon-grid [ROUNDS]
///
/// Each round runs both over the same targets and instants, one after the other, and fills a grid
/// that is kept. Prints, for each shape, the median of the rounds, the range that holds all of
/// them, and the largest differences between the two results. "Kept" is the time for a grid that
/// the caller keeps; all else is of grids made anew.

#include <zarnsys/util/MoonGrid.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <iomanip>
#include <iostream>
#include <random>
#include <string>
#include <vector>

#include "programs/shared/sky/Units.h"

namespace {

Place somePlace() {
    Place place;
    place.latitude = -29.9;
    place.westLongitude = 67.4;
    return place;
}

struct Shape {
    std::size_t targets;
    std::size_t instants;
};

constexpr Shape SHAPES[] = {{1, 20000}, {30, 1000}, {1000, 100}, {5000, 1000}};
constexpr std::size_t MOST_CLASSIC = 20000;  // evaluations of the classic call in a round

double secondsSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

struct Input {
    std::vector<SkyPosition> targets;
    std::vector<MJD_DATE> instants;
};

Input makeInput(const Shape& shape) {
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> circle(0.0, zarn::FULL_CIRCLE);
    std::uniform_real_distribution<double> sine(-1.0, 1.0);
    constexpr double FIRST = 60000.0;  // MJD
    constexpr double STEP = 0.01;      // [d]
    Input input;
    for (std::size_t i = 0; i < shape.targets; ++i)
        input.targets.push_back({circle(random), std::asin(sine(random)) * zarn::DEG_PER_RAD});
    for (std::size_t i = 0; i < shape.instants; ++i)
        input.instants.push_back(FIRST + STEP * static_cast<double>(i));
    return input;
}

/// Seconds per evaluation of the classic call, over evaluations spread through the grid; `worst`
/// becomes the largest difference of a separation from the grid's [deg].
double timeClassic(const Input& input, const MoonGrid& grid, double& worst) {
    const std::size_t all = input.targets.size() * input.instants.size();
    const std::size_t stride = std::max<std::size_t>(1, all / MOST_CLASSIC);
    const Place place = somePlace();
    std::vector<double> separations;
    const auto start = std::chrono::steady_clock::now();
    for (std::size_t i = 0; i < all; i += stride) {
        const SkyPosition& target = input.targets[i % input.targets.size()];
        double lst = 0, fli = 0, dist = 0, alt = 0, az = 0, phase = 0, sun = 0, range = 0;
        computeMoonParam(target.ra, target.dec, input.instants[i / input.targets.size()],
                         place.westLongitude, place.latitude, &lst, &fli, &dist, &alt, &az, &phase,
                         &sun, &range);
        separations.push_back(dist);
    }
    const double seconds = secondsSince(start);
    const double* const everySeparation = grid.separation.row(0);
    for (std::size_t i = 0; i < separations.size(); ++i)
        worst = std::max(worst, std::fabs(separations[i] - everySeparation[i * stride]));
    return seconds / static_cast<double>(separations.size());
}

double median(std::vector<double>& values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

void measure(const Shape& shape, int rounds) {
    const Input input = makeInput(shape);
    const auto values = static_cast<double>(shape.targets * shape.instants);
    constexpr double NANOSECONDS = 1e9;
    MoonGrid kept;
    std::vector<double> ratios;
    std::vector<double> anew;
    std::vector<double> again;
    double worst = 0;
    for (int round = 0; round < rounds; ++round) {
        auto start = std::chrono::steady_clock::now();
        const MoonGrid grid = computeMoonGrid(input.targets, input.instants, somePlace());
        const double perValue = secondsSince(start) / values;
        ratios.push_back(timeClassic(input, grid, worst) / perValue);
        anew.push_back(perValue * NANOSECONDS);
        start = std::chrono::steady_clock::now();
        computeMoonGrid(input.targets, input.instants, somePlace(), kept);
        again.push_back(secondsSince(start) / values * NANOSECONDS);
    }
    std::cout << std::setw(7) << shape.targets << std::setw(9) << shape.instants << std::fixed
              << std::setprecision(1) << std::setw(10) << median(anew) << std::setw(6)
              << median(again) << std::setw(9) << median(ratios) << "   " << ratios.front()
              << " to " << ratios.back() << std::scientific << "   " << worst << std::defaultfloat
              << "\n";
}

}  // namespace

int main(int argc, char** argv) {
    const int rounds = argc > 1 ? std::max(1, std::stoi(argv[1])) : 15;
    std::cout
        << "targets instants  ns/value  kept   times faster (range)   largest difference [deg]\n";
    for (const Shape& shape : SHAPES) measure(shape, rounds);
}
