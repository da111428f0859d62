// The manual shows what a site may have.

#include <gtest/gtest.h>

#include <fstream>
#include <set>

#include "zarn-moon/settings/Sites.h"

namespace zarn::moon {

TEST(SitesTest, ManualHasEveryKey) {
    std::multiset<std::string> keys;
    for (const SettingRow<KnownSite>& row : SITE_ROWS) keys.insert(row.name);
    std::multiset<std::string> described;
    const std::string before = ".It Cm ";
    std::ifstream manual(MANUAL);
    for (std::string line; std::getline(manual, line);) {
        if (line.rfind(before, 0) == 0) described.insert(line.substr(before.size()));
    }
    EXPECT_EQ(described, keys);
}

}  // namespace zarn::moon
