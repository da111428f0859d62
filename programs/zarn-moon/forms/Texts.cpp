#include "zarn-moon/forms/Texts.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <ctime>
#include <iomanip>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "shared/cli/BeginsWith.h"
#include "shared/cli/TextStreams.h"
#include "shared/sky/Calendar.h"

namespace zarn::moon {

std::string utcMinute(double mjd) { return minuteOf(mjd) + "Z"; }

std::string utcSecond(double mjd) { return secondOf(mjd) + "Z"; }

std::string localMinute(double mjd) { return localTime(nearestMinute(mjd), "%Y-%m-%dT%H:%M%z"); }

std::string localSecond(double mjd) { return localTime(mjd, "%Y-%m-%dT%H:%M:%S%z"); }

std::string fixed(double number, int decimals) {
    TextWriter stream;
    stream << std::fixed << std::setprecision(decimals) << number;
    const std::string text = stream.str();
    const bool isZero = text.find_first_not_of("-0.") == std::string::npos;
    return isZero && text[0] == '-' ? text.substr(1) : text;
}

std::string fixedOr(const std::optional<double>& number, int decimals, const std::string& absent) {
    return number ? fixed(*number, decimals) : absent;
}

std::string fixedOnCircle(double number, int decimals, double circle) {
    const std::string text = fixed(number, decimals);
    return text == fixed(circle, decimals) ? fixed(0.0, decimals) : text;
}

std::string percent(double fraction, int decimals) {
    constexpr double HUNDRED = 100.0;
    return fixed(HUNDRED * fraction, decimals);
}

std::string asUtf8(const std::string& text) {
    using Json = nlohmann::json;
    const std::string quoted = Json(text).dump(-1, ' ', false, Json::error_handler_t::replace);
    return Json::parse(quoted).get<std::string>();
}

std::string keyOf(SunCourse course) {
    if (course == SunCourse::SETS) return "sets";
    return course == SunCourse::UP ? "up" : "down";
}

std::string joined(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words) text += (text.empty() ? "" : " ") + word;
    return text;
}

std::string keyOf(std::string name) {
    std::replace(name.begin(), name.end(), ' ', '_');
    return name;
}

std::string localClock(double mjd, const char* format) {
    const std::string date = localTime(mjd, "%Y-%m-%d");
    const bool same = beginsWith(secondOf(mjd), date);
    return (same ? "" : date + " ") + localTime(mjd, format);
}

std::string localTime(double mjd, const char* format) {
    const std::int64_t seconds = std::llround((mjd - MJD_OF_EPOCH) * SECONDS_PER_DAY);
    const auto time = static_cast<std::time_t>(seconds);  // perhaps of 32 bits
    std::tm parts = {};
    std::array<char, 64> text = {};
    if (time != seconds || ::localtime_r(&time, &parts) == nullptr)
        throw std::runtime_error("this system has no local time for " + minuteOf(mjd));
    std::strftime(text.data(), text.size(), format, &parts);
    return text.data();
}

}  // namespace zarn::moon
