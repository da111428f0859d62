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

void within(double number, double least, double most) {
    require(number >= least && number <= most, "a value lies in its range");  // no NaN does
}

template <typename Read>
void read(Read action) {
    try {
        action();
    } catch (const std::invalid_argument& error) {
        require(std::string(error.what()).find('\n') == std::string::npos,
                "messages have one line");
    }
}

void check(const Position& position) {
    within(position.ra, 0.0, std::nextafter(FULL_CIRCLE, 0.0));
    within(position.dec, -90.0, 90.0);
}

void readLine(const std::string& text, const std::string& next) {
    constexpr double YEAR_0 = -678941.0;  // MJD
    constexpr double YEAR_10000 = 2973484.0;
    read([&] { within(parseNumber(text, -5.0, 1e9), -5.0, 1e9); });
    read([&] { within(parseWhole(text, 3, 1000), 3, 1000); });
    read([&] { within(parseAngle(text, 180.0, text), 0.0, 180.0); });
    read([&] { within(parseRightAscension(text), 0.0, std::nextafter(FULL_CIRCLE, 0.0)); });
    read([&] { within(parseDeclination(text), -90.0, 90.0); });
    read([&] { check(parsePosition(text)); });
    read([&] { check(parsePosition(text, next)); });
    read([&] { within(mjdOfInstant(text), YEAR_0, YEAR_10000); });
    read([&] { require(dateOf(mjdOfDate(text)) == text, "a date is the date of its MJD"); });
    read([&] {
        const moon::Site site = moon::siteAt(text);
        within(site.latitude, -90.0, 90.0);
        within(site.longitude, -180.0, 180.0);
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
