/// What zarn-moon makes of nights, before rounding: for bench/almanac.py.
///
///     night-values erfa|library <NIGHTS
///
/// Each line of the input is a night, "LATITUDE WEST-LONGITUDE ELEVATION MJD", or "phases MJD MJD"
/// for the phases between two instants. Each line of the output is the number of the input's line,
/// from 0 on, what the values are, and the values.

#include <cstdio>
#include <iostream>
#include <sstream>
#include <string>

#include "zarn-moon/night/Eclipses.h"
#include "zarn-moon/night/Night.h"

namespace zarn::moon {

namespace {

void printNight(int number, const Ephemeris& ephemeris, const Site& site, double date) {
    constexpr std::size_t MINUTES_APART = 180;
    const Night night = makeNight(ephemeris, site, date);
    for (const auto& [name, times] : eventsOf(night)) {
        for (const double time : times) std::printf("%d %s %.9f\n", number, name.c_str(), time);
    }
    if (const std::optional<Eclipse> eclipse = eclipseIn(ephemeris, night)) {
        std::printf("%d magnitude %.5f\n", number, eclipse->magnitude);
        for (const Contact& contact : eclipse->contacts)
            std::printf("%d %s %.9f\n", number, contact.name.c_str(), contact.mjd);
    }
    for (std::size_t i = 0; i < night.instants.size(); i += MINUTES_APART) {
        std::printf("%d sky %.9f %.7f %.7f %.7f %.7f %.7f\n", number, night.instants[i],
                    night.moon.siderealTime[i], night.sunAltitudes[i], night.moon.altitude[i],
                    night.moon.azimuth[i], night.moon.illumination[i]);
    }
}

void printPhases(int number, const Ephemeris& ephemeris, double begin, double end) {
    for (double mjd = begin; mjd < end;) {
        for (const auto& [name, time] : nextPhases(ephemeris, mjd, mjd)) {
            std::printf("%d %s %.9f\n", number, name.c_str(), time);
            mjd = time;
        }
    }
}

int runProgram(int argc, char** argv) {
    const std::string theory = argc == 2 ? argv[1] : "";
    if (theory != "erfa" && theory != "library") {
        std::cerr << "night-values erfa|library <NIGHTS\n";
        return 2;
    }
    const Ephemeris& ephemeris = ephemerisOf(theory == "erfa" ? Theory::ERFA : Theory::LIBRARY);
    std::string line;
    for (int number = 0; std::getline(std::cin, line); ++number) {
        const bool phases = line.rfind("phases", 0) == 0;
        std::istringstream numbers(phases ? line.substr(line.find(' ')) : line);
        double begin = 0;
        double end = 0;
        Site site = {};
        if (phases) {
            numbers >> begin >> end;
            printPhases(number, ephemeris, begin, end);
        } else {
            numbers >> site.latitude >> site.longitude >> site.elevation >> begin;
            printNight(number, ephemeris, site, begin);
        }
    }
    return 0;
}

}  // namespace

}  // namespace zarn::moon

int main(int argc, char** argv) { return zarn::moon::runProgram(argc, argv); }
