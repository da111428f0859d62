#include "shared/sky/Calendar.h"

#include <erfa.h>
#include <erfam.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "shared/cli/Value.h"
#include "shared/sky/Angles.h"

namespace zarn {

namespace {

/// Whether a text has digits where the pattern has a 0 and else the pattern's own characters.
bool matches(const std::string& text, const std::string& pattern) {
    return std::equal(
        text.begin(), text.end(), pattern.begin(), pattern.end(),
        [](char c, char form) { return form == '0' ? c >= '0' && c <= '9' : c == form; });
}

/// An instant rounded to whole units, of which a day has so many, down to the seconds.
std::string rounded(double mjd, double unitsPerDay) {
    const double units = std::round(mjd * unitsPerDay);
    const double day = std::floor(units / unitsPerDay);
    const auto second =
        static_cast<int>((units - day * unitsPerDay) * (SECONDS_PER_DAY / unitsPerDay));
    std::array<char, 40> time = {};
    std::snprintf(time.data(), time.size(), "T%02d:%02d:%02d", second / 3600, second / 60 % 60,
                  second % 60);
    return dateOf(day) + time.data();
}

}  // namespace

double mjdOfDate(const std::string& text) {
    if (!matches(text, "0000-00-00")) refuseText(text, "is not a date such as 2026-12-24");
    double zero = 0;
    double mjd = 0;
    const int status = eraCal2jd(std::stoi(text), std::stoi(text.substr(5)),
                                 std::stoi(text.substr(8)), &zero, &mjd);
    if (status != 0) refuseText(text, "is not in the calendar");
    return mjd;
}

double mjdOfInstant(const std::string& text) {
    const std::string form = "0000-00-00T00:00:00";
    const std::string fraction = text.substr(std::min(text.size(), form.size()));
    const bool isFraction =
        fraction.empty() ||
        (fraction != "." && matches(fraction, "." + std::string(fraction.size() - 1, '0')));
    if (!matches(text.substr(0, form.size()), form) || !isFraction)
        refuseText(text, "is not a time such as 2026-12-24T18:30:00");
    constexpr double LAST_HOUR = 23.0;
    constexpr double LAST_MINUTE = 59.0;
    constexpr double LEAP_SECOND = 60.0;
    const double hour = parseNumber(text.substr(11, 2), 0.0, LAST_HOUR);
    const double minute = parseNumber(text.substr(14, 2), 0.0, LAST_MINUTE);
    const double whole = parseNumber(text.substr(17, 2), 0.0, LEAP_SECOND);
    const double second = whole + parseNumber("0" + fraction, 0.0, 1.0);
    return mjdOfDate(text.substr(0, 10)) +
           ((hour * 60.0 + minute) * 60.0 + second) / SECONDS_PER_DAY;
}

std::string dateOf(double mjd) {
    int year = 0;
    int month = 0;
    int day = 0;
    double fraction = 0;
    eraJd2cal(ERFA_DJM0, mjd, &year, &month, &day, &fraction);
    std::array<char, 40> text = {};
    std::snprintf(text.data(), text.size(), "%04d-%02d-%02d", year, month, day);
    return text.data();
}

std::string secondOf(double mjd) { return rounded(mjd, SECONDS_PER_DAY); }

double nearestMinute(double mjd) { return std::round(mjd * MINUTES_PER_DAY) / MINUTES_PER_DAY; }

std::string minuteOf(double mjd) {
    const std::string seconds = rounded(mjd, MINUTES_PER_DAY);
    return seconds.substr(0, seconds.size() - std::string(":00").size());
}

}  // namespace zarn
