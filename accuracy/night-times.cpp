/// How far the times of zarn-moon are from another theory's.
///
///     night-times [NIGHTS]
///
/// Random nights from 1901 to 2199 at latitudes up to 55 degrees, for both ephemerides: every time
/// of rise, set, twilight and transit against the same from ERFA's sun and moon, evaluated instant
/// by instant, without lines or cubics between them. Nights in which a body only grazes the
/// altitude, within a degree, are counted apart: there a small error moves the time by much.

#include <algorithm>
#include <cmath>
#include <functional>
#include <iomanip>
#include <iostream>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "Almanac.h"
#include "shared/sky/Units.h"
#include "zarn-moon/night/Night.h"

namespace zarn::moon {

namespace {

constexpr double GRAZING = 1.0;  // [deg]

using Value = std::function<double(double)>;  // of an instant [MJD]

/// When a value crosses 0 in one direction between two instants, to a second, and how near to 0 its
/// extremes come.
struct Crossings {
    std::vector<double> times;
    double nearestExtreme;
};

double root(const Value& value, double begin, double end) {
    constexpr double SECOND = 1.0 / SECONDS_PER_DAY;
    const bool rising = value(begin) < 0.0;
    while (end - begin > SECOND) {
        const double middle = (begin + end) / 2.0;
        ((value(middle) < 0.0) == rising ? begin : end) = middle;
    }
    return (begin + end) / 2.0;
}

Crossings crossings(const Value& value, double begin, bool rising) {
    constexpr double STEP = 10.0 / MINUTES_PER_DAY;
    constexpr int STEPS = 144;
    Crossings result = {{}, HUGE_VAL};
    double highest = -HUGE_VAL;
    double lowest = HUGE_VAL;
    for (int i = 0; i < STEPS; ++i) {
        const double at = begin + i * STEP;
        const double before = value(at);
        const double after = value(at + STEP);
        highest = std::max(highest, before);
        lowest = std::min(lowest, before);
        if ((before < 0.0) != (after < 0.0) && (before < 0.0) == rising)
            result.times.push_back(root(value, at, at + STEP));
    }
    result.nearestExtreme = std::min(std::fabs(highest), std::fabs(lowest));
    return result;
}

Value sunAbove(const Observer& observer, double altitude) {
    return [observer, altitude](double mjd) {
        const TrueSky sky(mjd + JD_OF_MJD_0);
        return sky.altitude(observer, sky.sunFor(observer, Earth::ELLIPSOID)) - altitude;
    };
}

Value moonAbove(const Observer& observer, double altitude) {
    return [observer, altitude](double mjd) {
        const TrueSky sky(mjd + JD_OF_MJD_0);
        return sky.altitude(observer, sky.moonFor(observer, Earth::ELLIPSOID)) - altitude;
    };
}

/// The moon's distance from the meridian, west positive [deg]; of no meaning far from it.
Value moonWest(const Observer& observer) {
    return [observer](double mjd) {
        const TrueSky sky(mjd + JD_OF_MJD_0);
        const SkyPlace moon = placeOf(sky.moonFor(observer, Earth::ELLIPSOID));
        return std::remainder(sky.siderealTime(observer) - moon.ra, HOURS_PER_DAY) * DEG_PER_HOUR;
    };
}

struct Kind {
    const char* name;
    Value (*value)(const Observer&, double altitude);
    double altitude;
    bool rising;
};

const Kind KINDS[] = {
    {"sunset", sunAbove, -0.833, false},
    {"civil dusk", sunAbove, -6.0, false},
    {"nautical dusk", sunAbove, -12.0, false},
    {"astronomical dusk", sunAbove, -18.0, false},
    {"astronomical dawn", sunAbove, -18.0, true},
    {"nautical dawn", sunAbove, -12.0, true},
    {"civil dawn", sunAbove, -6.0, true},
    {"sunrise", sunAbove, -0.833, true},
    {"moonrise", moonAbove, -0.833, true},
    {"moonset", moonAbove, -0.833, false},
    {"moon transit", [](const Observer& observer, double) { return moonWest(observer); }, 0.0,
     true},
};

struct Tally {
    std::vector<double> minutes;  ///< sizes of the differences
    int grazing = 0;
    int unmatched = 0;  ///< one has a time where the other has none
};

/// Counts a night's times of one kind. At the night's ends one theory's time may fall into the next
/// night: only times well within count.
void compare(const Kind& kind, const Crossings& truth, const Night& night,
             const std::vector<Event>& events, Tally& tally) {
    constexpr double MARGIN = 0.02;  // [d]
    const double begin = night.instants.front();
    const double end = night.instants.back();
    const bool isTransit = kind.name == std::string("moon transit");
    if (!isTransit && truth.nearestExtreme < GRAZING) {
        ++tally.grazing;
        return;
    }
    for (const double time : truth.times) {
        if (time < begin + MARGIN || time > end - MARGIN) continue;
        double least = HUGE_VAL;
        for (const double ours : timesOf(events, kind.name))
            least = std::min(least, std::fabs(ours - time) * MINUTES_PER_DAY);
        if (least == HUGE_VAL) {
            ++tally.unmatched;
        } else {
            tally.minutes.push_back(least);
        }
    }
}

void print(const Kind& kind, Tally& tally) {
    std::sort(tally.minutes.begin(), tally.minutes.end());
    const std::size_t count = tally.minutes.size();
    const auto quantile = [&](double share) {
        return tally.minutes[static_cast<std::size_t>(share * static_cast<double>(count - 1))];
    };
    std::cout << std::left << std::setw(19) << kind.name << std::right << std::fixed
              << std::setprecision(2) << std::setw(6) << count << std::setw(9) << quantile(0.5)
              << std::setw(9) << quantile(0.95) << std::setw(9) << quantile(1.0) << std::setw(9)
              << tally.grazing << std::setw(11) << tally.unmatched << "\n";
}

void print(const char* theory, std::map<std::string, Tally>& tallies) {
    std::cout << theory
              << "\nminutes             times   median      95 %    worst  grazing  unmatched\n";
    for (const Kind& kind : KINDS) print(kind, tallies[kind.name]);
}

/// How far a night's moon is from that of instants on their own, at most [deg].
double farthestMoon(const Night& night) {
    constexpr std::size_t MINUTES_APART = 37;
    const Observer observer = {night.site.latitude, night.site.longitude};
    double farthest = 0.0;
    for (std::size_t i = 0; i < night.instants.size(); i += MINUTES_APART) {
        const TrueSky sky(night.instants[i] + JD_OF_MJD_0);
        const ::Vector moon = sky.moonFor(observer, Earth::ELLIPSOID);
        const Vector ours = night.horizons[i].turned({moon.xyz[0], moon.xyz[1], moon.xyz[2]});
        farthest = std::max(farthest, angleBetween(ours, night.moonDirections[i]));
    }
    return farthest;
}

int runProgram(int argc, char** argv) {
    const int nights = argc > 1 ? std::stoi(argv[1]) : 200;
    if (!agreesWithPublishedValues()) return 1;
    std::mt19937_64 random(2026);
    std::uniform_real_distribution<double> latitudes(-55.0, 55.0);
    std::uniform_real_distribution<double> longitudes(-180.0, 180.0);
    std::uniform_int_distribution<int> dates(15385, 124592);  // 1901 to 2199 [MJD]
    std::map<std::string, Tally> erfa;
    std::map<std::string, Tally> library;
    double farthest = 0.0;
    for (int i = 0; i < nights; ++i) {
        const Site site = {"", latitudes(random), longitudes(random)};
        const double date = dates(random);
        const Night exact = makeNight(ephemerisOf(Theory::ERFA), site, date);
        const Night quick = makeNight(ephemerisOf(Theory::LIBRARY), site, date);
        const std::vector<Event> exactEvents = eventsOf(exact);
        const std::vector<Event> quickEvents = eventsOf(quick);
        for (const Kind& kind : KINDS) {
            const Observer observer = {site.latitude, site.longitude};
            const Crossings truth =
                crossings(kind.value(observer, kind.altitude), exact.instants.front(), kind.rising);
            compare(kind, truth, exact, exactEvents, erfa[kind.name]);
            compare(kind, truth, quick, quickEvents, library[kind.name]);
        }
        farthest = std::max(farthest, farthestMoon(exact));
    }
    print("erfa", erfa);
    print("library", library);
    std::cout << "erfa: the moon of a night is within " << std::scientific << farthest
              << " degrees of that computed for the instant\n";
    return 0;
}

}  // namespace

}  // namespace zarn::moon

int main(int argc, char** argv) { return zarn::moon::runProgram(argc, argv); }
