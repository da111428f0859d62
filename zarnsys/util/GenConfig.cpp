#include "zarnsys/util/GenConfig.h"

#include <ace/Get_Opt.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <climits>
#include <cstddef>
#include <cstring>
#include <iostream>
#include <memory>
#include <utility>

#include "zarnsys/util/Log.h"

namespace {

using OptionMap = GenConfig::OptionMap;
using OptionStruct = GenConfig::OptionStruct;

const char PROGRAM_PREFIX[] = "lt-";  // before the name of a program that libtool has not installed

// Arguments of ACE's parser.
constexpr int SKIP_PROGRAM_NAME = 1;
constexpr int REPORT_NO_ERRORS = 0;
constexpr int SHORT_OPTIONS_TOO = 0;

/// The program's name within the command that started it.
std::string programName(const std::string& completeProgName) {
    const std::string::size_type prefix = completeProgName.find(PROGRAM_PREFIX);
    if (prefix != std::string::npos)
        return completeProgName.substr(prefix + std::strlen(PROGRAM_PREFIX));
    return completeProgName.substr(completeProgName.rfind('/') + 1);  // npos + 1 is 0: the whole
}

std::vector<std::string> reduceProgramName(int argc, const char** argv) {
    std::vector<std::string> arguments(argv, argv + argc);
    arguments.front() = programName(arguments.front());
    return arguments;
}

/// A heap copy of a command line for `release`.
char** duplicate(const std::vector<std::string>& arguments) {
    std::vector<std::unique_ptr<char[]>> copies;
    copies.reserve(arguments.size());
    for (const std::string& argument : arguments) {
        copies.push_back(std::make_unique<char[]>(argument.size() + 1));
        std::memcpy(copies.back().get(), argument.c_str(), argument.size() + 1);
    }
    auto array = std::make_unique<char*[]>(copies.size());
    std::transform(copies.begin(), copies.end(), array.get(),
                   [](std::unique_ptr<char[]>& copy) { return copy.release(); });
    return array.release();
}

void release(int argc, char** argv) {
    std::for_each(argv, argv + argc, [](const char* argument) { delete[] argument; });
    delete[] argv;
}

bool isNonOption(const OptionMap::value_type& entry) {
    return entry.first == GenConfig::NON_OPTIONAL_ARG;
}

/// The short options in ACE's form. The leading colon makes the parser tell an option without its
/// argument from an unknown one.
std::string shortOptions(const OptionMap& options) {
    std::string listOfOptions = ":";
    for (const auto& [key, option] : options) {
        if (option.shortName_ == GenConfig::NO_SHORT_NAME) continue;
        listOfOptions += option.shortName_;
        if (option.argRequired_) listOfOptions += ':';
    }
    return listOfOptions;
}

/// The rows by the codes that the parser returns for them.
using RowsByCode = std::array<OptionStruct*, UCHAR_MAX + 1>;

unsigned char indexOf(int code) { return static_cast<unsigned char>(code); }

RowsByCode rowsByCode(OptionMap& options) {
    RowsByCode rows = {};
    for (auto& [key, option] : options) {
        OptionStruct*& row = rows[indexOf(option.shortName_)];
        if (row == nullptr) row = &option;
    }
    return rows;
}

/// Makes every row a long option and gives rows without short name their codes.
///
/// @return  false when the parser refused one or more
bool registerOptions(ACE_Get_Opt& parser, OptionMap& options) {
    bool registered = true;
    char nextCode = 1;
    for (auto& [key, option] : options) {
        if (option.shortName_ == GenConfig::NO_SHORT_NAME) option.shortName_ = nextCode++;
        const auto mode = option.argRequired_ ? ACE_Get_Opt::ARG_REQUIRED : ACE_Get_Opt::NO_ARG;
        if (parser.long_option(key.c_str(), option.shortName_, mode) != 0) registered = false;
    }
    return registered;
}

/// Records every option's values in its row, up to the first error.
///
/// @return  0, or -1 after any error
int scanOptions(ACE_Get_Opt& parser, OptionMap& options, bool loggingAllowed) {
    const RowsByCode rows = rowsByCode(options);
    int status = 0;
    for (int found = parser(); found != -1; found = parser()) {
        if (found == '?') {
            if (loggingAllowed) logError()("%s is not a valid option", parser.last_option());
            status = -1;
            continue;
        }
        OptionStruct* const row = rows[indexOf(found)];
        const bool takesArgument = found != ':' && row != nullptr && row->argRequired_;
        const char* argument = takesArgument ? parser.opt_arg() : nullptr;
        const std::string value = argument == nullptr ? "" : argument;
        if (found == ':' || value.rfind('-', 0) == 0) {
            if (loggingAllowed) logError()("-%s requires an argument", parser.last_option());
            status = -1;
        }
        if (status == 0 && row != nullptr) row->availValues_.push_back(value);
    }
    return status;
}

/// 0, or -1 at the first mandatory row that was not given.
int checkMandatory(const OptionMap& options, bool argumentsGiven, bool loggingAllowed) {
    for (const auto& entry : options) {
        const bool given = isNonOption(entry) ? argumentsGiven : !entry.second.availValues_.empty();
        if (!entry.second.mandatory_ || given) continue;
        if (loggingAllowed) {
            logError()("Missing mandatory option or non optional argument (\"%s\").",
                       entry.first.c_str());
        }
        return -1;
    }
    return 0;
}

bool hasLetter(const OptionStruct& option) {
    return std::isalpha(static_cast<unsigned char>(option.shortName_)) != 0;
}

std::string argumentText(const OptionStruct& option) {
    return option.argRequired_ ? " <" + option.argument_ + ">" : "";
}

/// An option as the usage line shows it: its letter, or else its long name.
std::string usageItem(const OptionMap::value_type& entry) {
    const auto& [key, option] = entry;
    const std::string name = hasLetter(option) ? std::string("-") + option.shortName_ : "--" + key;
    return name + argumentText(option);
}

/// An option as the lists show it: long name, letter, argument.
std::string listItem(const OptionMap::value_type& entry) {
    const auto& [key, option] = entry;
    const std::string letter = hasLetter(option) ? std::string(" or -") + option.shortName_ : "";
    return "--" + key + letter + argumentText(option);
}

/// The option rows that are mandatory, or those that are not; never the non-option row.
std::vector<const OptionMap::value_type*> select(const OptionMap& options, bool mandatory) {
    std::vector<const OptionMap::value_type*> rows;
    for (const auto& entry : options) {
        if (!isNonOption(entry) && entry.second.mandatory_ == mandatory) rows.push_back(&entry);
    }
    return rows;
}

void displayUsage(const char* program, const OptionMap& options) {
    std::cout << "Usage : " << program << " ";
    for (const auto* entry : select(options, true)) std::cout << usageItem(*entry) << " ";
    for (const auto* entry : select(options, false)) std::cout << "[" << usageItem(*entry) << "] ";
    const auto nonOption = options.find(GenConfig::NON_OPTIONAL_ARG);
    if (nonOption != options.end()) std::cout << nonOption->second.argument_ << " ";
    std::cout << std::endl << std::endl;
}

void displayOption(const OptionMap::value_type& entry) {
    std::cout << listItem(entry) << std::endl;
    std::cout << "\t" << entry.second.helpText_ << std::endl;
}

}  // namespace

// In a program that holds the library itself, this comes before the program's own tables, which may
// have the constant as a key.
[[gnu::init_priority(101)]] const std::string GenConfig::NON_OPTIONAL_ARG = "NonOptionalArgument";

GenConfig::OptionStruct::OptionStruct()
    : OptionStruct(NO_SHORT_NAME, std::string(), false, false, std::string(), std::string()) {}

GenConfig::OptionStruct::OptionStruct(char shortName, std::string argument, bool mandatory,
                                      bool argRequired, std::string helpText,
                                      std::string defaultValue)
    : shortName_(shortName),
      argument_(std::move(argument)),
      mandatory_(mandatory),
      argRequired_(argRequired),
      helpText_(std::move(helpText)),
      defaultValue_(std::move(defaultValue)) {}

GenConfig::GenConfig(int argc, const char** argv)
    : argc_(argc), argv_(duplicate(reduceProgramName(argc, argv))) {}

GenConfig::GenConfig(const GenConfig& rpackageConfig)
    : argc_(rpackageConfig.argc_),
      argv_(duplicate({rpackageConfig.argv_, rpackageConfig.argv_ + rpackageConfig.argc_})) {}

GenConfig& GenConfig::operator=(const GenConfig& rpackageConfig) {
    GenConfig copy(rpackageConfig);
    std::swap(argc_, copy.argc_);
    std::swap(argv_, copy.argv_);
    return *this;
}

GenConfig::~GenConfig() { release(argc_, argv_); }

int GenConfig::parseCommandLine(bool loggingAllowed) {
    int retStatus = 0;
    ACE_Get_Opt cmd_opts(argc_, argv_, shortOptions(optionMap_).c_str(), SKIP_PROGRAM_NAME,
                         REPORT_NO_ERRORS, ACE_Get_Opt::PERMUTE_ARGS, SHORT_OPTIONS_TOO);
    if (registerOptions(cmd_opts, optionMap_)) {
        retStatus = scanOptions(cmd_opts, optionMap_, loggingAllowed);
        argumentVect_.insert(argumentVect_.end(), argv_ + cmd_opts.opt_ind(), argv_ + argc_);
    } else {
        if (loggingAllowed) logError()("error setting up command line parser");
        retStatus = -1;
    }
    if (checkMandatory(optionMap_, !argumentVect_.empty(), loggingAllowed) != 0) retStatus = -1;
    if (retStatus != 0 && loggingAllowed) logError()("Command line parsing failed");
    return retStatus;
}

int GenConfig::displayHelp() const {
    displayUsage(argv_[0], optionMap_);

    std::cout << "Mandatory Options:" << std::endl;
    for (const auto* entry : select(optionMap_, true)) displayOption(*entry);

    std::cout << std::endl << "Additional Options:" << std::endl;
    for (const auto* entry : select(optionMap_, false)) {
        displayOption(*entry);
        const std::string& defaultValue = entry->second.defaultValue_;
        if (!defaultValue.empty()) std::cout << "\tDefault value: " << defaultValue << std::endl;
    }

    const auto nonOption = optionMap_.find(NON_OPTIONAL_ARG);
    if (nonOption == optionMap_.end()) return 0;
    std::cout << std::endl << "Arguments : " << std::endl;
    std::cout << nonOption->second.argument_ << std::endl;
    std::cout << "\t" << nonOption->second.helpText_ << std::endl;
    return 0;
}

int GenConfig::displayCommandLine() {
    std::string commandLine;
    for (int i = 0; i < argc_; ++i) commandLine.append(argv_[i]).append(" ");
    logInfo()("The program has been launched with %s", commandLine.c_str());
    return 0;
}
