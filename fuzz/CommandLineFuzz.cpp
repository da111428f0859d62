/// Command lines, a word in each line, against tables: those of the programs, and one with what
/// they lack.

#include <unistd.h>

#include <string>
#include <vector>

#include "fuzz/Harness.h"
#include "tests/support/TempDir.h"
#include "zarn-ingest/settings/CommandLine.h"
#include "zarn-moon/settings/CommandLine.h"
#include "zarnsys/util/GenConfig.h"

namespace zarn {

namespace {

constexpr double NOW = 61364.0;  // MJD

class Config : public GenConfig {
public:
    explicit Config(std::vector<const char*> line)
        : GenConfig(static_cast<int>(line.size()), line.data()) {
        optionMap_ = {{"file", {'f', "file", true, true, "Input file", "none"}},
                      {"verbose", {'v', "", false, false, "Verbose output", ""}},
                      {"level", {NO_SHORT_NAME, "n", false, true, "Level", "3"}},
                      {"lever", {NO_SHORT_NAME, "", false, false, "", ""}},
                      {"1st", {'1', "", false, false, "A digit", ""}},
                      {NON_OPTIONAL_ARG, {0, "files", false, false, "Files", ""}}};
    }

    /// All that was given.
    std::vector<std::string> values() const {
        std::vector<std::string> all = argumentVect_;
        for (const auto& [name, option] : optionMap_) {
            for (const std::string& value : option.availValues_) all.push_back(name + "=" + value);
        }
        return all;
    }
};

void parseByTable(const std::vector<const char*>& line) {
    Config silent(line);
    Config config(line);
    const int status = config.parseCommandLine(true);
    require(silent.parseCommandLine(false) == status, "the log changes no result");
    require(silent.values() == config.values(), "the log changes no value");
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
