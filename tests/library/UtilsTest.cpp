#include <gtest/gtest.h>
#include <sys/statvfs.h>

#include <cerrno>
#include <ctime>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/LogCapture.h"
#include "zarnsys/util/StringUtils.h"
#include "zarnsys/util/Utils.h"

namespace {
struct statvfs reported = {};                // what the first stand-in below reports
std::vector<std::pair<time_t, long>> slept;  // what the second was asked for [s, ns]
}  // namespace

// These take the system's place for the library, too.
extern "C" int nanosleep(const timespec* interval, timespec* /*rest*/) {
    slept.emplace_back(interval->tv_sec, interval->tv_nsec);
    errno = EINTR;
    return -1;
}
extern "C" int statvfs(const char* path, struct statvfs* info) noexcept {
    *info = reported;
    errno = *path == '\0' ? ENOENT : errno;
    return *path == '\0' ? -1 : 0;
}

namespace {

using Lines = std::vector<std::string>;

TEST(StringUtilsTest, SplitsAtAnyCharacterOfTheSet) {
    Lines fields = {"kept"};
    for (const char* text : {"a,,b,", "", ",;,", ";1a,2"}) ZarnSys::split(text, ",;", fields);
    EXPECT_EQ(fields, (Lines{"kept", "a", "b", "1a", "2"}));
    ZarnSys::split("a,b", "", fields);
    EXPECT_EQ(fields.back(), "a,b");
    fields.shrink_to_fit();
    ZarnSys::split(fields.back(), ",", fields);
    EXPECT_EQ(fields.back(), "b");
}

TEST(StringUtilsTest, LowersOnlyTheLettersOfTheDefaultLocale) {
    EXPECT_EQ(ZarnSys::lower("FiLe.FITS\xC4 [2]"), "file.fits\xC4 [2]");
}

TEST(UtilsTest, SleepsOnceWhatTheFloatHoldsWhateverComesOfIt) {
    constexpr float INFINITE = std::numeric_limits<float>::infinity();
    LogCapture log;
    for (const float seconds : {0.1F, 1.5F, -2.7F, INFINITE, -INFINITE,
                                std::numeric_limits<float>::quiet_NaN(), 9.223372e18F})
        ZarnSys::sleep(seconds);
    constexpr time_t MOST = std::numeric_limits<time_t>::max();
    const decltype(slept) expected = {{0, 100000001}, {1, 500000000}, {-2, -700000047}, {MOST, 0},
                                      {-MOST - 1, 0}, {0, 0},         {MOST, 0}};
    EXPECT_EQ(slept, expected);
    std::string lines;
    for (const auto& [seconds, nanoseconds] : expected)
        lines += "4 DEBUG [ ] Sleeping: " + std::to_string(seconds) + "s and " +
                 std::to_string(nanoseconds) + "ns\n";
    EXPECT_EQ(log.take(), lines);
}

TEST(UtilsTest, CountsSpaceAsAnOrdinaryUserSeesIt) {
    float total = -1;
    float available = -1;
    EXPECT_EQ(ZarnSys::getFilesystemInfo("", &total, &available), -1);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(total, -1);
    EXPECT_EQ(available, -1);
    errno = EDOM;  // earlier
    reported.f_frsize = 4096;
    reported.f_blocks = 1000;
    reported.f_bfree = 300;
    reported.f_bavail = 250;
    EXPECT_EQ(ZarnSys::getFilesystemInfo(".", &total, &available), 0);
    EXPECT_EQ(errno, 0);
    EXPECT_EQ(total, 3.7109375F);
    EXPECT_EQ(available, 0.9765625F);
    reported.f_frsize = 0;  // 1024 then
    EXPECT_EQ(ZarnSys::getFilesystemInfo(".", &total, &available), 0);
    EXPECT_EQ(available, 0.244140625F);
}

}  // namespace
