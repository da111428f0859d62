#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <ctime>
#include <sstream>
#include <string>

#include "tests/support/Grouping.h"
#include "tests/support/Transcript.h"
#include "zarnsys/util/WexoTime.h"

namespace {

/// Both forms of "ZONE SECONDS MICROSECONDS", the zone in POSIX form: no zone files are needed.
std::string forms(const std::string& time) {
    std::istringstream words(time);
    words.imbue(std::locale::classic());
    std::string zone;
    time_t seconds = 0;
    long microseconds = 0;
    words >> zone >> seconds >> microseconds;
    ::setenv("TZ", zone.c_str(), 1);
    ::tzset();
    ACE_Time_Value value(seconds);
    value.usec(microseconds);  // as it is: the constructor would carry into the seconds
    std::array<ACE_TCHAR, 40> buffer;
    buffer.fill('x');
    EXPECT_EQ(WexoTime::asISOTimeString(value, buffer.data()), buffer.data());
    EXPECT_EQ(WexoTime::asISOTimeString(value), buffer.data());
    return std::string(buffer.data()) + "\n" + WexoTime::asUnixTimeString(value) + "\n";
}

TEST(WexoTimeTest, FormsAreFilledWithZerosAndTheCalendarsIsLocal) {
    const char* zone = std::getenv("TZ");
    const std::string before = zone == nullptr ? "" : zone;
    const Grouping grouping;
    expectTranscript(TEST_DATA "/times.txt", forms);
    if (sizeof(time_t) > 4) expectTranscript(TEST_DATA "/times-beyond-32-bits.txt", forms);
    ::setenv("TZ", before.c_str(), 1);
    ::tzset();
}

}  // namespace
