/// Command lines, a word in each line, against tables: those of the programs, and one with what
/// they lack.

#include <unistd.h>

#include <string>
#include <vector>

#include "fuzz/Harness.h"
#include "tests/support/Config.h"
#include "tests/support/TempDir.h"
#include "zarn-ingest/settings/CommandLine.h"
#include "zarn-moon/settings/CommandLine.h"

namespace zarn {

namespace {

constexpr double NOW = 61364.0;  // MJD

const GenConfig::OptionMap TABLE = {
    {"file", {'f', "file", true, true, "Input file", "none"}},
    {"verbose", {'v', "", false, false, "Verbose output", ""}},
    {"level", {GenConfig::NO_SHORT_NAME, "n", false, true, "Level", "3"}},
    {"lever", {GenConfig::NO_SHORT_NAME, "", false, false, "", ""}},
    {"1st", {'1', "", false, false, "A digit", ""}},
    {GenConfig::NON_OPTIONAL_ARG, {0, "files", false, false, "Files", ""}}};

void parseByTable(const std::vector<const char*>& line) {
    Config silent(line, TABLE);
    Config config(line, TABLE);
    const int status = config.parseCommandLine(true);
    require(silent.parseCommandLine(false) == status, "the log changes no result");
    require(silent.lists() == config.lists(), "the log changes no value");
    require(status == 0 || status == -1, "parsing succeeds or fails");
    config.displayCommandLine();
    config.displayHelp();
}

}  // namespace

void tryInput(const std::string& input) {
    static const TempDir dir;
    static const bool isThere = ::chdir((dir / "").c_str()) == 0;
    require(isThere, "words name files of an empty directory");
    std::vector<std::string> words = linesOf(input);
    std::vector<const char*> line = {"program"};
    for (std::string& word : words) {
        for (char& c : word) c = c == '/' ? '_' : c;
        line.push_back(word.c_str());
    }
    parseByTable(line);
    tryOrRefuse([&] { ingest::CommandLine(line).parse(); });
    tryOrRefuse([&] { moon::CommandLine(line).parse(NOW); });
}

}  // namespace zarn
