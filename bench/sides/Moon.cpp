#include <zarnsys/util/Astronomy.h>
#include <zarnsys/util/MoonGrid.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <random>
#include <vector>

#include "BareGrid.h"
#include "PlainMoon.h"
#include "Sides.h"

namespace {

constexpr double LATITUDE = -29.9;         // [deg]
constexpr double WEST_LONGITUDE = 67.4;    // [deg]
constexpr double FIRST_INSTANT = 60000.0;  // MJD
constexpr double JD_OF_MJD_0 = 2400000.5;

struct Input {
    std::vector<SkyPosition> targets;
    std::vector<MJD_DATE> instants;
};

Input makeInput(std::size_t targets, std::size_t instants) {
    constexpr double STEP = 0.01;  // [d]
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> ra(0.0, 360.0);
    std::uniform_real_distribution<double> dec(-90.0, 90.0);
    Input input;
    for (std::size_t i = 0; i < targets; ++i) input.targets.push_back({ra(random), dec(random)});
    for (std::size_t i = 0; i < instants; ++i)
        input.instants.push_back(FIRST_INSTANT + STEP * static_cast<double>(i));
    return input;
}

Place observer() {
    Place place;
    place.latitude = LATITUDE;
    place.westLongitude = WEST_LONGITUDE;
    return place;
}

double callClassic(const SkyPosition& target, MJD_DATE mjd) {
    double lst = 0, fli = 0, dist = 0, alt = 0, az = 0, phase = 0, sun = 0, range = 0;
    computeMoonParam(target.ra, target.dec, mjd, WEST_LONGITUDE, LATITUDE, &lst, &fli, &dist, &alt,
                     &az, &phase, &sun, &range);
    return lst + fli + dist + alt + az + phase + sun + range;
}

double callPlain(const SkyPosition& target, MJD_DATE mjd) {
    const plain::Moon moon =
        plain::computeMoon(target.ra, target.dec, mjd, WEST_LONGITUDE, LATITUDE);
    return moon.siderealTime + moon.illumination + moon.targetDistance + moon.altitude +
           moon.azimuth + moon.phase + moon.elongation + moon.distance;
}

/// One call per pair of a target and a random instant within 50 years.
void addCalls() {
    constexpr std::size_t CALLS = 16384;
    constexpr double LAST_INSTANT = 70000.0;  // MJD
    Input input = makeInput(CALLS, CALLS);
    std::mt19937_64 random(2);
    std::uniform_real_distribution<double> instant(FIRST_INSTANT - 1e4, LAST_INSTANT);
    for (MJD_DATE& mjd : input.instants) mjd = instant(random);
    const auto each = [input](auto call) {
        double sum = 0;
        for (std::size_t i = 0; i < CALLS; ++i) sum += call(input.targets[i], input.instants[i]);
        return sum;
    };
    int number = 0;
    const auto ourAge = [number](const SkyPosition& /*none*/, MJD_DATE mjd) mutable {
        return static_cast<double>(lun_age(mjd + JD_OF_MJD_0, &number));
    };
    const auto plainAge = [number](const SkyPosition& /*none*/, MJD_DATE mjd) mutable {
        return static_cast<double>(plain::moonAge(mjd + JD_OF_MJD_0, number));
    };
    addSide("moon-call/ours", [each] { return each(callClassic); });
    addSide("moon-call/plain", [each] { return each(callPlain); });
    addSide("moon-age/ours", [each, ourAge] { return each(ourAge); });
    addSide("moon-age/plain", [each, plainAge] { return each(plainAge); });
}

void addGrid(const std::string& name, const Input& input) {
    const auto kept = std::make_shared<MoonGrid>();
    addSide(name, [input, kept] {
        computeMoonGrid(input.targets, input.instants, observer(), *kept);
        return kept->separation.row(0);
    });
}

/// A grid for each target and instant, whose values are kept in one.
void addSingleGrids(const std::string& name, const Input& input) {
    std::vector<Input> singles;
    for (std::size_t i = 0; i < input.targets.size(); ++i)
        singles.push_back({{input.targets[i]}, {input.instants[i]}});
    const auto kept = std::make_shared<MoonGrid>();
    addSide(name, [singles, kept] {
        double sum = 0;
        for (const Input& single : singles) {
            computeMoonGrid(single.targets, single.instants, observer(), *kept);
            sum += kept->separation(0, 0);
        }
        return sum;
    });
}

void addSingleCalls(const std::string& name, const Input& input) {
    addSide(name, [input] {
        double sum = 0;
        for (std::size_t i = 0; i < input.targets.size(); ++i)
            sum += callClassic(input.targets[i], input.instants[i]);
        return sum;
    });
}

void addClassicLoop(const std::string& name, const Input& input) {
    addSide(name, [input] {
        double sum = 0;
        for (const MJD_DATE mjd : input.instants)
            for (const SkyPosition& target : input.targets) sum += callClassic(target, mjd);
        return sum;
    });
}

/// Directions spread over the sphere.
bare::Directions makeDirections(std::size_t count) {
    bare::Directions directions;
    for (const SkyPosition& at : makeInput(count, 0).targets) {
        const double ra = at.ra / 57.3;
        const double dec = at.dec / 57.3;
        directions.x.push_back(std::cos(ra) * std::cos(dec));
        directions.y.push_back(std::sin(ra) * std::cos(dec));
        directions.z.push_back(std::sin(dec));
    }
    return directions;
}

/// The sines of the instants, and with several targets the arcs, too.
void addBareGrid(const std::string& name, std::size_t targets, std::size_t instants) {
    const auto sums = std::make_shared<std::vector<double>>(instants);
    const auto arcs = std::make_shared<std::vector<double>>(targets * instants);
    addSide(name, [=, input = makeInput(targets, instants), stars = makeDirections(targets),
                   moons = makeDirections(instants)] {
        bare::sineGrid(input.instants, *sums);
        if (targets > 1) bare::arcGrid(stars, moons, *arcs);
        return sums->data();
    });
}

SkyConditions night() {
    SkyConditions conditions;
    conditions.extinction = 0.172;
    conditions.darkSky = 21.8;
    return conditions;
}

void addSkyGrid(const std::string& name, const Input& input) {
    const auto kept = std::make_shared<SkyGrid>();
    addSide(name, [input, kept] {
        computeSkyGrid(input.targets, input.instants, observer(), night(), *kept);
        return kept->sky.row(0);
    });
}

/// Altitude and moonlight by the classic calls, at a distance from the moon that costs nothing.
void addClassicSky(const std::string& name, const Input& input) {
    constexpr double DISTANCE = 60.0;  // [deg]
    constexpr double DEG_PER_HOUR = 15.0;
    const MoonGrid moon = computeMoonGrid({}, input.instants, observer());
    addSide(name, [=] {
        double sum = 0;
        for (std::size_t i = 0; i < input.instants.size(); ++i) {
            for (const SkyPosition& target : input.targets) {
                double azimuth = 0;
                const double ha = adj_time(moon.siderealTime[i] - target.ra / DEG_PER_HOUR);
                const double altitude = altit(target.dec, ha, LATITUDE, &azimuth);
                sum += altitude + lunskybright(moon.elongation[i], DISTANCE, night().extinction,
                                               moon.altitude[i], altitude, moon.distance[i]);
            }
        }
        return sum;
    });
}

void addCopy(const std::string& name, std::size_t count) {
    const auto copy = std::make_shared<std::vector<double>>(count);
    addSide(name, [copy, original = std::vector<double>(count, 1.0)] {
        std::copy(original.begin(), original.end(), copy->begin());
        return copy->data();
    });
}

}  // namespace

void addMoon() {
    addCalls();
    // One and the same input would let the processor learn its branches by heart.
    constexpr std::size_t SINGLES = 1000;
    addSingleGrids("grid-1x1/ours", makeInput(SINGLES, SINGLES));
    addSingleCalls("grid-1x1/classic", makeInput(SINGLES, SINGLES));
    addGrid("grid-1x20000/ours", makeInput(1, 20000));
    addBareGrid("grid-1x20000/sines", 1, 20000);
    addGrid("grid-1000x500/ours", makeInput(1000, 500));
    addBareGrid("grid-1000x500/sines", 1000, 500);
    addClassicLoop("grid-1000x500/classic", makeInput(1000, 500));
    addGrid("grid-1000x5000/ours", makeInput(1000, 5000));
    addCopy("grid-1000x5000/copy", std::size_t{1000} * 5000);
    addSide("grid-1000x5000/anew", [input = makeInput(1000, 5000)] {
        return computeMoonGrid(input.targets, input.instants, observer()).phase.front();
    });
    addSkyGrid("sky-100x200/ours", makeInput(100, 200));
    addClassicSky("sky-100x200/classic", makeInput(100, 200));
    for (const std::size_t targets : {std::size_t{10}, std::size_t{100}, std::size_t{1000}})
        addGrid("growth-grid/" + std::to_string(targets * 100), makeInput(targets, 100));
}
