#include <INIReader.h>
#include <ace/Get_Opt.h>
#include <zarnsys/util/GenConfig.h>
#include <zarnsys/util/WexoProperties.h>

#include <CLI/CLI.hpp>
#include <boost/program_options.hpp>
#include <boost/property_tree/ini_parser.hpp>
#include <boost/property_tree/ptree.hpp>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "Sides.h"

namespace {

/// Properties of its own, besides the process's.
struct Properties : WexoProperties {
    Properties() = default;
};

constexpr char SECTION[] = "section7";
constexpr char KEY[] = "key42";

/// Writes a file of ten sections.
std::string writeProperties(const std::string& directory, int keys) {
    constexpr int SECTIONS = 10;
    std::string name = directory + "/" + std::to_string(keys) + ".ini";
    std::ofstream file(name);
    for (int section = 0; section < SECTIONS; ++section) {
        file << "[section" << section << "]\n";
        for (int key = 0; key < keys / SECTIONS; ++key)
            file << "key" << key << " = value " << key << "\n";
    }
    return name;
}

void addLoad(const std::string& name, const std::string& file) {
    addSide(name, [file] { return Properties().load(file); });
}

boost::property_tree::ptree loadTree(const std::string& file) {
    boost::property_tree::ptree tree;
    boost::property_tree::ini_parser::read_ini(file, tree);
    return tree;
}

void addProperties(const std::string& directory) {
    const std::string file = writeProperties(directory, 1000);
    addLoad("properties-load/ours", file);
    addSide("properties-load/boost", [file] { return loadTree(file); });
    addSide("properties-load/inih", [file] { return INIReader(file); });
    const auto ours = std::make_shared<Properties>();
    ours->load(file);
    addSide("properties-get/ours", [ours] {
        std::string value;
        ours->get(SECTION, KEY, value);
        return value;
    });
    const auto opened = std::make_shared<Properties>();
    opened->load(file);
    opened->open_section(SECTION);
    addSide("properties-get/opened", [opened] {
        std::string value;
        opened->get(KEY, value);
        return value;
    });
    addSide("properties-get/boost",
            [tree = loadTree(file)] { return tree.get_child(SECTION).get<std::string>(KEY); });
    addSide("properties-get/inih",
            [reader = INIReader(file)] { return reader.Get(SECTION, KEY, ""); });
    for (const int keys : {100, 1000, 10000})
        addLoad("growth-keys/" + std::to_string(keys), writeProperties(directory, keys));
}

/// A table of 50 options with letters, every second of which is given, and two arguments.
struct CommandLine {
    static constexpr int OPTIONS = 50;
    static constexpr int EVERY = 2;

    CommandLine() {
        words.emplace_back("program");
        for (int i = 0; i < OPTIONS; ++i) {
            names.push_back("option-" + std::to_string(i));
            letters.push_back(static_cast<char>(i < 26 ? 'a' + i : 'A' + i - 26));
            if (i % EVERY == 0) words.push_back("--" + names.back() + "=value");
        }
        words.insert(words.end(), {"one", "two"});
        for (const std::string& word : words) arguments.push_back(word.c_str());
    }
    int count() const { return static_cast<int>(arguments.size()); }

    std::vector<std::string> names;
    std::string letters;
    std::vector<std::string> words;
    std::vector<const char*> arguments;
};

class Config : public GenConfig {
public:
    explicit Config(CommandLine& line) : GenConfig(line.count(), line.arguments.data()) {
        for (std::size_t i = 0; i < line.names.size(); ++i)
            optionMap_[line.names[i]] = {line.letters[i], "value", false, true, "a value", ""};
    }
};

std::vector<std::string> parseCli11(CommandLine& line) {
    CLI::App app;
    app.set_help_flag();  // its letter is another option here
    std::vector<std::string> values(line.names.size());
    for (std::size_t i = 0; i < values.size(); ++i)
        app.add_option(std::string("-") + line.letters[i] + ",--" + line.names[i], values[i],
                       "a value");
    std::vector<std::string> arguments;
    app.add_option("arguments", arguments);
    app.parse(line.count(), line.arguments.data());
    return values;
}

boost::program_options::variables_map parseBoost(CommandLine& line) {
    namespace options = boost::program_options;
    options::options_description table;
    for (std::size_t i = 0; i < line.names.size(); ++i) {
        const std::string names = line.names[i] + "," + line.letters[i];
        table.add_options()(names.c_str(), options::value<std::string>(), "a value");
    }
    table.add_options()("arguments", options::value<std::vector<std::string>>());
    options::positional_options_description arguments;
    arguments.add("arguments", -1);
    options::variables_map values;
    options::store(options::command_line_parser(line.count(), line.arguments.data())
                       .options(table)
                       .positional(arguments)
                       .run(),
                   values);
    return values;
}

/// ACE's parser alone, each value kept by its letter.
std::vector<std::string> parseAce(CommandLine& line) {
    std::vector<const char*> arguments = line.arguments;  // the parser puts them in order
    std::string shortOptions;
    for (const char letter : line.letters) shortOptions += {letter, ':'};
    ACE_Get_Opt parser(line.count(), const_cast<char**>(arguments.data()), shortOptions.c_str());
    for (std::size_t i = 0; i < line.names.size(); ++i)
        parser.long_option(line.names[i].c_str(), line.letters[i], ACE_Get_Opt::ARG_REQUIRED);
    std::vector<std::string> values(256);
    for (int found = parser(); found != -1; found = parser())
        values[static_cast<std::size_t>(found)] = parser.opt_arg();
    return values;
}

void addCommandLines() {
    const auto line = std::make_shared<CommandLine>();
    addSide("command-line/ours", [line] { return Config(*line).parseCommandLine(false); });
    addSide("command-line/table", [line] { return std::make_unique<Config>(*line); });
    addSide("command-line/ace", [line] { return parseAce(*line); });
    addSide("command-line/cli11", [line] { return parseCli11(*line); });
    addSide("command-line/boost", [line] { return parseBoost(*line); });
}

}  // namespace

void addSetUp(const std::string& directory) {
    addProperties(directory);
    addCommandLines();
}
