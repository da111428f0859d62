// The sample properties file shows what the table of settings holds.

#include <gtest/gtest.h>

#include <fstream>
#include <map>

#include "zarn-ingest/settings/SettingTable.h"

namespace zarn::ingest {

// Each property stands once in its section; one in a comment shows the default, if there is one.
TEST(SettingTableTest, SampleFileShowsEveryProperty) {
    std::map<std::string, std::string> defaults;
    for (const SettingRow<Settings>& row : SETTINGS) {
        if (row.section != nullptr)
            defaults[std::string(row.section) + " " + row.name] = defaultOf(row);
    }
    std::ifstream sample(SAMPLE);
    std::string section;
    for (std::string line; std::getline(sample, line);) {
        if (line[0] == '[') section = line.substr(1, line.find(']') - 1);
        const std::size_t begin = line[0] == '#' ? 1 : 0;
        const std::size_t equals = line.find(" = ");
        if (line[begin] == ' ' || equals == std::string::npos) continue;
        const auto property = defaults.find(section + " " + line.substr(begin, equals - begin));
        ASSERT_NE(property, defaults.end()) << line;
        const std::string shown = line.substr(equals + std::string(" = ").size());
        EXPECT_TRUE(begin == 0 || property->second.empty() || shown == property->second) << line;
        defaults.erase(property);
    }
    for (const auto& [property, value] : defaults) ADD_FAILURE() << "without " << property;
}

}  // namespace zarn::ingest
