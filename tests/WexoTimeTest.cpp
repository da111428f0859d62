#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <ctime>
#include <locale>
#include <string>

#include "zarnsys/util/WexoTime.h"

namespace {

/// The process's time zone while it lives, in POSIX form: no zone files are needed.
class TimeZone {
public:
    explicit TimeZone(const char* zone) {
        if (const char* before = std::getenv("TZ")) before_ = before;
        set(zone);
    }
    ~TimeZone() { set(before_.c_str()); }

private:
    static void set(const char* zone) {
        ::setenv("TZ", zone, 1);
        ::tzset();
    }
    std::string before_;
};

ACE_Time_Value timeOf(time_t seconds, long microseconds) {
    ACE_Time_Value time(seconds);
    time.usec(microseconds);  // as it is: the constructor would carry into the seconds
    return time;
}

// Calendar dates by the date command.
TEST(WexoTimeTest, IsoFormIsLocalTimeFilledWithZeros) {
    const char newfoundland[] = "NST3:30NDT,M3.2.0,M11.1.0";
    const struct {
        const char* zone;
        long long seconds;
        long microseconds;
        const char* text;
    } cases[] = {
        {"UTC0", 0, 0, "1970-01-01T00:00:00.000000"},
        {"UTC0", 1176985399, 12345, "2007-04-19T12:23:19.012345"},
        {newfoundland, 1176985399, 999999, "2007-04-19T09:53:19.999999"},
        {newfoundland, 1170000000, 0, "2007-01-28T12:30:00.000000"},
        {"UTC0", 0, -5, "1970-01-01T00:00:00.0000-5"},
        {"UTC0", -1, -500000, "1969-12-31T23:59:59.-500000"},
        {"UTC0", 0, 1234567, "1970-01-01T00:00:00.1234567"},
        {"UTC0", 253402300800, 0, "10000-01-01T00:00:00.000000"},
        {"UTC0", -30610224001, 0, "0999-12-31T23:59:59.000000"},
        {"UTC0", -62198755200, 0, "00-1-01-01T00:00:00.000000"},
    };
    for (const auto& [zone, seconds, microseconds, text] : cases) {
        if (seconds != static_cast<time_t>(seconds)) continue;  // no such time on this machine
        const TimeZone timeZone(zone);
        const ACE_Time_Value time = timeOf(static_cast<time_t>(seconds), microseconds);
        EXPECT_EQ(WexoTime::asISOTimeString(time), text);
        std::array<ACE_TCHAR, 40> buffer;
        buffer.fill('x');
        EXPECT_EQ(WexoTime::asISOTimeString(time, buffer.data()), buffer.data());
        EXPECT_STREQ(buffer.data(), text);
    }
}

/// Groups digits, as many countries' locales do.
class Grouping : public std::numpunct<char> {
    char do_thousands_sep() const override { return ','; }
    std::string do_grouping() const override { return "\3"; }
};

TEST(WexoTimeTest, UnixFormDoesNotKnowTimeZonesNorAnyFormLocales) {
    const std::locale before =
        std::locale::global(std::locale(std::locale::classic(), new Grouping));
    EXPECT_EQ(WexoTime::asISOTimeString(timeOf(0, 123456)).substr(20), "123456");
    EXPECT_EQ(WexoTime::asUnixTimeString(timeOf(1176985399, 42)), "1176985399.000042");
    std::locale::global(before);
    const TimeZone timeZone("NST3:30NDT,M3.2.0,M11.1.0");
    EXPECT_EQ(WexoTime::asUnixTimeString(timeOf(1176985399, 42)), "1176985399.000042");
    EXPECT_EQ(WexoTime::asUnixTimeString(timeOf(0, 0)), "0.000000");
    EXPECT_EQ(WexoTime::asUnixTimeString(timeOf(-7, -5)), "-7.0000-5");
    EXPECT_EQ(WexoTime::asUnixTimeString(timeOf(-7, -500000)), "-7.-500000");
    EXPECT_EQ(WexoTime::asUnixTimeString(timeOf(7, 1234567)), "7.1234567");
}

}  // namespace
