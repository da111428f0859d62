#include "Texts.h"

#include <array>
#include <cmath>
#include <ctime>
#include <iomanip>
#include <limits>
#include <sstream>
#include <stdexcept>

#include "Calendar.h"

std::string fixed(double number, int decimals) {
    std::ostringstream stream;
    stream << std::fixed << std::setprecision(decimals) << number;
    const std::string text = stream.str();
    const bool isZero = text.find_first_not_of("-0.") == std::string::npos;
    return isZero && text[0] == '-' ? text.substr(1) : text;
}

std::string fixedOr(const std::optional<double>& number, int decimals, const std::string& absent) {
    return number ? fixed(*number, decimals) : absent;
}

std::string localTime(double mjd, const char* format) {
    constexpr double MJD_OF_EPOCH = 40587.0;  // 1970-01-01
    constexpr double MINUTES_PER_DAY = 1440.0;
    constexpr double SECONDS_PER_MINUTE = 60.0;
    const double seconds = std::round((mjd - MJD_OF_EPOCH) * MINUTES_PER_DAY) * SECONDS_PER_MINUTE;
    std::tm parts = {};
    std::array<char, 64> text = {};
    const bool fits = seconds < static_cast<double>(std::numeric_limits<std::time_t>::max());
    const auto time = static_cast<std::time_t>(fits ? seconds : 0.0);
    if (!fits || ::localtime_r(&time, &parts) == nullptr)
        throw std::runtime_error("this system has no local time for " + minuteOf(mjd));
    std::strftime(text.data(), text.size(), format, &parts);
    return text.data();
}
