/// How much faster the grids are than the classic calls, evaluation by evaluation.
///
///     moon-grid [ROUNDS]
///
/// The moon grid against `computeMoonParam`, the sky grid against `altit` and `lunskybright`
/// together. Each round runs both over the same targets and instants, one after the other, and
/// fills a grid that is kept. Prints, for each shape, the median of the rounds, the range that
/// holds all of them, and the largest differences between the two results. "Kept" is the time for a
/// grid that the caller keeps; all else is of grids made anew.

#include <zarnsys/util/Astronomy.h>
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

/// Values that the classic calls and a grid give for the same places in the grid's table.
struct Comparison {
    double secondsPerValue;  ///< of the classic calls
    double worst;            ///< difference
};

/// Evaluates `classic`, given a target and an instant's index, at places spread through a table.
template <typename Classic>
Comparison compareWith(const Input& input, const TargetTable& table, const Classic& classic) {
    const std::size_t all = input.targets.size() * input.instants.size();
    const std::size_t stride = std::max<std::size_t>(1, all / MOST_CLASSIC);
    std::vector<double> values;
    const auto start = std::chrono::steady_clock::now();
    for (std::size_t i = 0; i < all; i += stride)
        values.push_back(
            classic(input.targets[i % input.targets.size()], i / input.targets.size()));
    const double seconds = secondsSince(start);
    double worst = 0;
    for (std::size_t i = 0; i < values.size(); ++i)
        worst = std::max(worst, std::fabs(values[i] - table.row(0)[i * stride]));
    return {seconds / static_cast<double>(values.size()), worst};
}

/// The moon grid, its separations compared [deg].
struct Moon {
    using Grid = MoonGrid;

    static void fill(const Input& input, MoonGrid& grid) {
        computeMoonGrid(input.targets, input.instants, somePlace(), grid);
    }

    static Comparison compare(const Input& input, const MoonGrid& grid) {
        const Place place = somePlace();
        return compareWith(input, grid.separation, [&](const SkyPosition& target, std::size_t i) {
            double lst = 0, fli = 0, dist = 0, alt = 0, az = 0, phase = 0, sun = 0, range = 0;
            computeMoonParam(target.ra, target.dec, input.instants[i], place.westLongitude,
                             place.latitude, &lst, &fli, &dist, &alt, &az, &phase, &sun, &range);
            return dist;
        });
    }
};

/// The sky grid, its altitudes compared [deg].
struct Sky {
    using Grid = SkyGrid;

    static SkyConditions conditions() {
        SkyConditions some;
        some.extinction = 0.172;
        some.darkSky = 21.8;
        return some;
    }

    static void fill(const Input& input, SkyGrid& grid) {
        computeSkyGrid(input.targets, input.instants, somePlace(), conditions(), grid);
    }

    static Comparison compare(const Input& input, const SkyGrid& grid) {
        const MoonGrid moon = computeMoonGrid({}, input.instants, somePlace());
        const double latitude = somePlace().latitude;
        const double extinction = conditions().extinction;
        double light = 0;
        const Comparison result =
            compareWith(input, grid.altitude, [&](const SkyPosition& target, std::size_t i) {
                constexpr double RHO = 60.0;  // [deg]
                double azimuth = 0;
                const double ha = adj_time(moon.siderealTime[i] - target.ra / zarn::DEG_PER_HOUR);
                const double altitude = altit(target.dec, ha, latitude, &azimuth);
                light += lunskybright(moon.elongation[i], RHO, extinction, moon.altitude[i],
                                      altitude, moon.distance[i]);
                return altitude;
            });
        if (!(light > 0.0)) std::cout << "no light\n";  // it is not left uncomputed
        return result;
    }
};

double median(std::vector<double>& values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

template <typename Kind>
void measure(const Shape& shape, int rounds) {
    const Input input = makeInput(shape);
    const auto values = static_cast<double>(shape.targets * shape.instants);
    constexpr double NANOSECONDS = 1e9;
    typename Kind::Grid kept;
    std::vector<double> ratios;
    std::vector<double> anew;
    std::vector<double> again;
    double worst = 0;
    for (int round = 0; round < rounds; ++round) {
        auto start = std::chrono::steady_clock::now();
        typename Kind::Grid grid;
        Kind::fill(input, grid);
        const double perValue = secondsSince(start) / values;
        const Comparison classic = Kind::compare(input, grid);
        worst = std::max(worst, classic.worst);
        ratios.push_back(classic.secondsPerValue / perValue);
        anew.push_back(perValue * NANOSECONDS);
        start = std::chrono::steady_clock::now();
        Kind::fill(input, kept);
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
    std::cout << "moon grid\n";
    for (const Shape& shape : SHAPES) measure<Moon>(shape, rounds);
    std::cout << "sky grid\n";
    for (const Shape& shape : SHAPES) measure<Sky>(shape, rounds);
}
