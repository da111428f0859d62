/// Numbers, times, angles, positions, places and time zones as users of zarn-moon write them, one
/// in each line: a value within its range, or an exception that says what is wrong.

#include <cmath>
#include <stdexcept>
#include <string>

#include "fuzz/Harness.h"
#include "shared/cli/Value.h"
#include "shared/sky/Angles.h"
#include "shared/sky/Calendar.h"
#include "zarn-moon/settings/Site.h"
#include "zarn-moon/settings/TimeZone.h"

namespace zarn {

namespace {

template <typename Read>
void read(Read action) {
    tryOrRefuse<std::invalid_argument>(action);
}

void check(const Position& position) {
    requireWithin(position.ra, 0.0, std::nextafter(FULL_CIRCLE, 0.0));
    requireWithin(position.dec, -90.0, 90.0);
}

void readLine(const std::string& text, const std::string& next) {
    constexpr double YEAR_0 = -678941.0;  // MJD
    constexpr double YEAR_10000 = 2973484.0;
    read([&] { requireWithin(parseNumber(text, -5.0, 1e9), -5.0, 1e9); });
    read([&] { requireWithin(parseWhole(text, 3, 1000), 3, 1000); });
    read([&] { requireWithin(parseAngle(text, 180.0, text), 0.0, 180.0); });
    read([&] { requireWithin(parseRightAscension(text), 0.0, std::nextafter(FULL_CIRCLE, 0.0)); });
    read([&] { requireWithin(parseDeclination(text), -90.0, 90.0); });
    read([&] { check(parsePosition(text)); });
    read([&] { check(parsePosition(text, next)); });
    read([&] { requireWithin(mjdOfInstant(text), YEAR_0, YEAR_10000); });
    read([&] { require(dateOf(mjdOfDate(text)) == text, "a date is the date of its MJD"); });
    read([&] {
        const moon::Site site = moon::siteAt(text);
        requireWithin(site.latitude, -90.0, 90.0);
        requireWithin(site.longitude, -180.0, 180.0);
        moon::coordinates(site);
    });
}

}  // namespace

void tryInput(const std::string& input) {
    std::string before;
    for (const std::string& line : linesOf(input)) {
        readLine(line, before);
        before = line;
    }
    // A time zone takes far longer than the rest.
    if (input.size() % 16 == 0) read([&] { moon::checkTimeZone(before); });
}

}  // namespace zarn
