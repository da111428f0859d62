// The sample of sites and the manual show what a site may have.

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <set>

#include "zarn-moon/settings/Sites.h"

namespace zarn::moon {

namespace {

/// The words after `before` and up to a blank, in the lines of a file.
std::multiset<std::string> wordsIn(const std::string& fileName, const std::string& before) {
    std::multiset<std::string> words;
    std::ifstream file(fileName);
    for (std::string line; std::getline(file, line);) {
        if (line.rfind(before, 0) == 0)
            words.insert(line.substr(before.size(), line.find(' ', before.size()) - before.size()));
    }
    return words;
}

}  // namespace

TEST(SitesTest, ManualAndSampleHaveEveryKey) {
    std::multiset<std::string> keys;
    for (const SettingRow<KnownSite>& row : SITE_ROWS) keys.insert(row.name);
    EXPECT_EQ(wordsIn(MANUAL, ".It Cm "), keys);
    const std::vector<std::string> sample = {SAMPLE};
    const KnownSite hill = siteNamed("Hill", sample);
    EXPECT_NEAR(hill.site.latitude, 43.21, 1e-12);
    EXPECT_EQ(hill.site.longitude, -8.475);
    EXPECT_EQ(hill.site.elevation, 1240.0);
    EXPECT_EQ(hill.timeZone, "CET-1CEST,M3.5.0,M10.5.0/3");
    EXPECT_EQ(hill.extinction, 0.16);
    EXPECT_EQ(hill.darkSky, 21.6);
    EXPECT_EQ(hill.horizon, 12.0);
    const KnownSite island = siteNamed("island", sample);
    EXPECT_EQ(island.site.latitude, -17.25);
    EXPECT_EQ(island.site.longitude, 31.5);
    EXPECT_EQ(island.timeZone, "");
    EXPECT_FALSE(island.extinction || island.darkSky || island.horizon);
}

}  // namespace zarn::moon
