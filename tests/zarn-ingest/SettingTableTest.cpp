// The sample properties file and the manual show what the table of settings holds.

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

// The manual has each property once in its section, with its default unless that is a flag's.
TEST(SettingTableTest, ManualDescribesEveryProperty) {
    const std::string opensSection = ".Ss [";
    const std::string opensProperty = ".It Cm ";
    std::map<std::string, std::string> paragraphs;
    std::ifstream manual(MANUAL);
    std::string section;
    std::string property;
    for (std::string line; std::getline(manual, line);) {
        if (line.rfind(opensSection, 0) == 0)
            section = line.substr(opensSection.size(), line.find(']') - opensSection.size());
        if (line.rfind(opensProperty, 0) == 0) {
            property = section + " " + line.substr(opensProperty.size());
            EXPECT_TRUE(paragraphs.emplace(property, "").second) << property;
        }
        if (line == ".El") property.clear();
        if (!property.empty()) paragraphs[property] += " " + line;
    }
    for (const SettingRow<Settings>& row : SETTINGS) {
        if (row.section == nullptr) continue;
        const auto paragraph = paragraphs.find(std::string(row.section) + " " + row.name);
        ASSERT_NE(paragraph, paragraphs.end()) << row.name;
        const std::string value = defaultOf(row) == "F" ? " Flag: " : defaultOf(row);
        EXPECT_NE(paragraph->second.find(value), std::string::npos) << row.name << ": " << value;
        paragraphs.erase(paragraph);
    }
    for (const auto& [unknown, text] : paragraphs) ADD_FAILURE() << "no property " << unknown;
}

}  // namespace zarn::ingest
