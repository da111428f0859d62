#include <gtest/gtest.h>

#include <iostream>
#include <sstream>
#include <utility>

#include "tests/support/LogCapture.h"
#include "zarnsys/util/GenConfig.h"

namespace {

using Lines = std::vector<std::string>;
using Table = GenConfig::OptionMap;

/// A program's configuration made of a command line and a table, with its lists in sight.
class Config : public GenConfig {
public:
    explicit Config(std::vector<const char*> line, Table table = {})
        : GenConfig(static_cast<int>(line.size()), line.data()) {
        optionMap_ = std::move(table);
    }

    const Lines& values(const std::string& key) const { return optionMap_.at(key).availValues_; }
    char shortName(const std::string& key) const { return optionMap_.at(key).shortName_; }
    const Lines& arguments() const { return argumentVect_; }
};

const Table FILE_AND_VERBOSE = {{"file", {'f', "file", true, true, "Input file", ""}},
                                {"verbose", {'v', "", false, false, "Verbose output", ""}}};
const char FAILED[] = "128 ERROR [ ] Command line parsing failed\n";

std::string helpOf(const Config& config) {
    std::ostringstream text;
    std::streambuf* standardOutput = std::cout.rdbuf(text.rdbuf());
    config.displayHelp();
    std::cout.rdbuf(standardOutput);
    return text.str();
}

class GenConfigTest : public ::testing::Test {
protected:
    LogCapture log_;

    std::string commandLine(Config& config) {
        config.displayCommandLine();
        return log_.take().back();
    }
};

TEST_F(GenConfigTest, TakesOptionsAndArgumentsInAnyOrder) {
    Config config({"/opt/bin/prog", "b", "-v", "--file", "a.txt", "-v", "--fi=x", "c", "--", "-z"},
                  FILE_AND_VERBOSE);
    EXPECT_EQ(config.parseCommandLine(true), 0);
    EXPECT_EQ(config.values("file"), (Lines{"a.txt", "x"}));
    EXPECT_EQ(config.values("verbose"), (Lines{"", ""}));
    EXPECT_EQ(config.arguments(), (Lines{"b", "c", "-z"}));
    EXPECT_EQ(log_.take(), Lines{});
    EXPECT_EQ(commandLine(config),
              "8 INFO  [ ] The program has been launched with "
              "prog -v --file a.txt -v --fi=x -- b c -z \n");
    EXPECT_EQ(config.parseCommandLine(true), 0) << "a second parse appends";
    EXPECT_EQ(config.values("file").size(), 4U);
    EXPECT_EQ(config.arguments().size(), 6U);
}

TEST_F(GenConfigTest, ReportsEveryErrorButRecordsNothingAfterTheFirst) {
    const struct {
        std::vector<const char*> line;
        Lines errors;
    } cases[] = {
        {{"prog", "-x", "-f", "a"}, {"x is not a valid option"}},
        {{"prog", "-f"}, {"-f requires an argument"}},
        {{"prog", "--file", "-5"}, {"-file requires an argument"}},
        {{"prog", "--file=-5", "--bogus=1", "-v"},
         {"-file requires an argument", "bogus is not a valid option"}},
    };
    for (const auto& [line, errors] : cases) {
        Lines expected;
        for (const auto& error : errors) expected.push_back("128 ERROR [ ] " + error + "\n");
        expected.push_back(
            "128 ERROR [ ] Missing mandatory option or non optional argument (\"file\").\n");
        expected.push_back(FAILED);
        Config config(line, FILE_AND_VERBOSE);
        EXPECT_EQ(config.parseCommandLine(true), -1);
        EXPECT_EQ(log_.take(), expected);
        EXPECT_EQ(config.values("file").size() + config.values("verbose").size(), 0U);
        Config silent(line, FILE_AND_VERBOSE);
        EXPECT_EQ(silent.parseCommandLine(false), -1);
        EXPECT_EQ(log_.take(), Lines{});
    }
}

TEST_F(GenConfigTest, NamesTheFirstMissingRowInKeyOrder) {
    Config options({"prog"}, {{"beta", {'b', "n", true, true, "", ""}},
                              {"alpha", {'a', "n", true, true, "", ""}}});
    EXPECT_EQ(options.parseCommandLine(true), -1);
    EXPECT_EQ(
        log_.take(),
        (Lines{"128 ERROR [ ] Missing mandatory option or non optional argument (\"alpha\").\n",
               FAILED}));
    const Table files = {{GenConfig::NON_OPTIONAL_ARG, {0, "files", true, false, "", ""}}};
    Config arguments({"prog", "--NonOptionalArgument"}, files);
    EXPECT_EQ(arguments.parseCommandLine(true), -1);
    EXPECT_EQ(log_.take().front(),
              "128 ERROR [ ] Missing mandatory option or non optional argument "
              "(\"NonOptionalArgument\").\n");
    EXPECT_EQ(arguments.values(GenConfig::NON_OPTIONAL_ARG), Lines{""});
    EXPECT_EQ(Config({"prog", "x"}, files).parseCommandLine(true), 0);
}

TEST_F(GenConfigTest, CodesFollowKeyOrderAndSharedShortNamesTheFirstRow) {
    Config config({"prog", "-s", "--two"}, {{"gamma", {0, "", false, false, "", ""}},
                                            {"alpha", {0, "", false, false, "", ""}},
                                            {"one", {'s', "", false, false, "", ""}},
                                            {"two", {'s', "", false, false, "", ""}}});
    EXPECT_EQ(config.parseCommandLine(true), 0);
    EXPECT_EQ(config.shortName("alpha"), 1);
    EXPECT_EQ(config.shortName("gamma"), 2);
    EXPECT_EQ(config.values("one"), (Lines{"", ""}));
    EXPECT_EQ(config.values("two"), Lines{});
    Config clash({"prog", "-s", "x"}, {{"one", {'s', "", false, false, "", ""}},
                                       {"two", {'s', "n", true, true, "", ""}}});
    EXPECT_EQ(clash.parseCommandLine(true), -1);
    EXPECT_EQ(log_.take(),
              (Lines{"128 ERROR [ ] error setting up command line parser\n",
                     "128 ERROR [ ] Missing mandatory option or non optional argument (\"two\").\n",
                     FAILED}));
    EXPECT_EQ(clash.arguments(), Lines{});
}

TEST_F(GenConfigTest, ReducesTheProgramNameOnce) {
    const char* cases[][2] = {{"/opt/app/bin/prog", "prog"},
                              {"/build/.libs/lt-prog", "prog"},
                              {"src/lt-x/y", "x/y"},
                              {"tool", "tool"}};
    const std::string launched = "8 INFO  [ ] The program has been launched with ";
    for (const auto& [started, name] : cases) {
        Config original({started, "-a"});
        Config copy(original);
        Config assigned({"other"}, FILE_AND_VERBOSE);
        static_cast<GenConfig&>(assigned) = original;
        static_cast<GenConfig&>(assigned) = static_cast<GenConfig&>(assigned);
        for (Config* config : {&original, &copy, &assigned})
            EXPECT_EQ(commandLine(*config), launched + name + " -a \n");
        EXPECT_NE(helpOf(assigned).find("Input file"), std::string::npos) << "the table stays";
    }
}

TEST_F(GenConfigTest, HelpIsMadeFromTheTable) {
    Table table = FILE_AND_VERBOSE;
    table["level"] = {GenConfig::NO_SHORT_NAME, "n", false, true, "Level", "3"};
    table["1st"] = {'1', "", true, false, "A digit", ""};
    table[GenConfig::NON_OPTIONAL_ARG] = {0, "files...", true, false, "Files to process", ""};
    EXPECT_EQ(helpOf(Config({"prog"}, table)),
              "Usage : prog --1st -f <file> [--level <n>] [-v] files... \n\n"
              "Mandatory Options:\n--1st\n\tA digit\n--file or -f <file>\n\tInput file\n\n"
              "Additional Options:\n--level <n>\n\tLevel\n\tDefault value: 3\n"
              "--verbose or -v\n\tVerbose output\n\n"
              "Arguments : \nfiles...\n\tFiles to process\n");
    EXPECT_EQ(helpOf(Config({"prog"})),
              "Usage : prog \n\nMandatory Options:\n\nAdditional Options:\n");
}

}  // namespace
