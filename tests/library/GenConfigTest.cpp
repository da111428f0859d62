#include <gtest/gtest.h>

#include <iostream>
#include <iterator>
#include <map>
#include <sstream>

#include "tests/support/Config.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Transcript.h"

namespace {

using Words = std::vector<std::string>;
using Table = GenConfig::OptionMap;

const std::map<std::string, Table> TABLES = {
    {"file",
     {{"file", {'f', "file", true, true, "Input file", ""}},
      {"verbose", {'v', "", false, false, "Verbose output", ""}}}},
    {"two", {{"beta", {'b', "n", true, true, "", ""}}, {"alpha", {'a', "n", true, true, "", ""}}}},
    {"arguments", {{GenConfig::NON_OPTIONAL_ARG, {0, "files", true, false, "Files", ""}}}},
    {"codes",
     {{"gamma", {0, "", false, false, "", ""}},
      {"alpha", {0, "", false, false, "", ""}},
      {"one", {'s', "", false, false, "", ""}},
      {"two", {'s', "", false, false, "", ""}}}},
    {"clash",
     {{"one", {'s', "", false, false, "", ""}},
      {"two", {'s', "n", true, true, "", ""}},
      {"zero", {'z', "", false, false, "", ""}}}},
    {"all",
     {{"file", {'f', "file", true, true, "Input file", "none"}},
      {"verbose", {'v', "", false, false, "Verbose output", ""}},
      {"level", {GenConfig::NO_SHORT_NAME, "n", false, true, "Level", "3"}},
      {"1st", {'1', "", true, false, "A digit", ""}},
      {GenConfig::NON_OPTIONAL_ARG, {0, "files...", false, false, "Files to process", ""}}}},
    {"none", {}},
};

std::string helpOf(const Config& config) {
    std::ostringstream text;
    std::streambuf* standardOutput = std::cout.rdbuf(text.rdbuf());
    EXPECT_EQ(config.displayHelp(), 0);
    std::cout.rdbuf(standardOutput);
    return text.str();
}

class GenConfigTest : public ::testing::Test {
protected:
    LogCapture log_;

    std::string commandLine(GenConfig& config) {
        EXPECT_EQ(config.displayCommandLine(), 0);
        return log_.take();
    }
    /// Of "TABLE PROGRAM [WORD...]": what parsing logs and returns, and leaves in the lists.
    std::string answer(const std::string& command) {
        std::istringstream text(command);
        const Words words{std::istream_iterator<std::string>(text), {}};
        std::vector<const char*> line;
        for (std::size_t i = 1; i < words.size(); ++i) line.push_back(words[i].c_str());
        Config silent(line, TABLES.at(words[0]));
        const int status = silent.parseCommandLine(false);
        EXPECT_EQ(log_.take(), "");
        Config config(line, TABLES.at(words[0]));
        EXPECT_EQ(config.parseCommandLine(true), status);
        EXPECT_EQ(config.lists(), silent.lists());
        const std::string errors = log_.take();
        return errors + commandLine(config) + std::to_string(status) + "\n" + config.lists();
    }
};

TEST_F(GenConfigTest, EachCommandLineHasItsErrorsAndLists) {
    expectTranscript(TEST_DATA "/command-lines.txt",
                     [this](const std::string& line) { return answer(line); });
}

TEST_F(GenConfigTest, HelpIsMadeFromTheTable) {
    expectTranscript(TEST_DATA "/help.txt", [](const std::string& table) {
        return helpOf(Config({"prog"}, TABLES.at(table)));
    });
}

TEST_F(GenConfigTest, CopiesTakeTheCommandLineAndNotTheTable) {
    Config original({"prog", "-f", "x"}, TABLES.at("file"));
    EXPECT_EQ(original.parseCommandLine(true) + original.parseCommandLine(true), 0);
    EXPECT_EQ(original.lists(), "file 102 <x> <x>\nverbose 118\n") << "a second parse appends";
    GenConfig copy(original);
    Config assigned({"other"}, TABLES.at("file"));
    GenConfig& base = assigned;
    base = original;
    base = *&base;
    EXPECT_EQ(assigned.lists(), "file 102\nverbose 118\n");
    const std::string launched = "8 INFO  [ ] The program has been launched with prog -f x \n";
    for (GenConfig* config : {&copy, &base}) EXPECT_EQ(commandLine(*config), launched);
    EXPECT_EQ(copy.parseCommandLine(false), -1) << "its table is empty";
}

}  // namespace
