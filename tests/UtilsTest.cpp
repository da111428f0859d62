#include <gtest/gtest.h>
#include <sys/statvfs.h>

#include <cerrno>
#include <limits>
#include <string>
#include <vector>

#include "tests/support/Child.h"
#include "tests/support/LogCapture.h"
#include "zarnsys/util/StringUtils.h"
#include "zarnsys/util/Utils.h"

namespace {
struct statvfs reported = {};  // what the stand-in below reports
}

/// Takes the system's place for the library, too.
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

TEST(UtilsTest, SleepsWhatTheFloatHolds) {
    LogCapture log;
    for (const float seconds : {0.1F, -2.7F, -std::numeric_limits<float>::infinity(),
                                std::numeric_limits<float>::quiet_NaN()})
        ZarnSys::sleep(seconds);
    const std::string least = std::to_string(std::numeric_limits<time_t>::min());
    EXPECT_EQ(log.take(), (Lines{"4 DEBUG [ ] Sleeping: 0s and 100000001ns\n",
                                 "4 DEBUG [ ] Sleeping: -2s and -700000047ns\n",
                                 "4 DEBUG [ ] Sleeping: " + least + "s and 0ns\n",
                                 "4 DEBUG [ ] Sleeping: 0s and 0ns\n"}));
}

TEST(UtilsTest, ASignalEndsTheLongestSleep) {
    EXPECT_EQ(inChild([] {
                  LogCapture log;
                  struct sigaction action = {};
                  action.sa_handler = [](int) { ::alarm(1); };  // until one meets the sleep
                  ::sigaction(SIGALRM, &action, nullptr);
                  ::alarm(1);
                  ZarnSys::sleep(std::numeric_limits<float>::infinity());
                  const std::string most = std::to_string(std::numeric_limits<time_t>::max());
                  return log.take() == Lines{"4 DEBUG [ ] Sleeping: " + most + "s and 0ns\n"} ? 0
                                                                                              : 1;
              }),
              0);
}

TEST(UtilsTest, CountsSpaceAsAnOrdinaryUserSeesIt) {
    float total = -1;
    float available = -1;
    EXPECT_EQ(ZarnSys::getFilesystemInfo("", &total, &available), -1);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(total, -1);
    EXPECT_EQ(available, -1);
    reported.f_frsize = 4096;
    reported.f_blocks = 1000;
    reported.f_bfree = 300;
    reported.f_bavail = 250;
    EXPECT_EQ(ZarnSys::getFilesystemInfo(".", &total, &available), 0);
    EXPECT_EQ(total, 3.7109375F);
    EXPECT_EQ(available, 0.9765625F);
    reported.f_frsize = 0;  // 1024 then
    EXPECT_EQ(ZarnSys::getFilesystemInfo(".", &total, &available), 0);
    EXPECT_EQ(available, 0.244140625F);
}

}  // namespace
