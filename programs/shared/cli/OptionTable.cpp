#include "shared/cli/OptionTable.h"

#include <algorithm>
#include <utility>

#include "shared/cli/Printable.h"
#include "shared/cli/Value.h"

namespace zarn {

namespace {

/// The option as a pattern of the shell: "-o | --output".
std::string patternOf(const OptionRow& row) {
    const bool hasLetter = row.letter != GenConfig::NO_SHORT_NAME;
    return (hasLetter ? std::string("-") + row.letter + " | " : "") + "--" + row.name;
}

/// What bash does after an option that takes an argument. Where the function returns without a
/// reply, bash completes the names of files.
std::string completionOf(std::string argument) {
    const std::string words = R"(mapfile -t COMPREPLY < <(compgen -W ")";
    if (argument == "FILE") return "return";
    if (argument == "DIR") return R"(mapfile -t COMPREPLY < <(compgen -d -- "$word"); return)";
    if (argument.find('|') == std::string::npos) return "compopt +o default; return";
    std::replace(argument.begin(), argument.end(), '|', ' ');
    return words + argument + R"(" -- "$word"); return)";
}

}  // namespace

UsageError wrongOption(const std::string& option, const std::invalid_argument& error,
                       const std::string& value) {
    const bool namesForm = dynamic_cast<const WrongValue*>(&error) != nullptr;
    const std::string problem = namesForm ? "\"" + printable(value) + "\" is not " : "";
    return UsageError("option --" + option + ": " + problem + error.what());
}

OptionTable::OptionTable(std::vector<const char*> arguments, std::vector<OptionRow> rows)
    : GenConfig(static_cast<int>(arguments.size()), arguments.data()), rows_(std::move(rows)) {
    for (const auto& [name, letter, argument, help, defaultText] : rows_)
        optionMap_[name] = {letter, argument, false, !argument.empty(), help, defaultText};
}

std::string OptionTable::bashCompletion(const std::string& program) const {
    std::string function = "_" + program;
    std::replace(function.begin(), function.end(), '-', '_');
    std::string options;
    std::string cases;
    for (const OptionRow& row : rows_) {
        options += (options.empty() ? "--" : " --") + row.name;
        if (!row.argument.empty())
            cases += "        " + patternOf(row) + ") " + completionOf(row.argument) + " ;;\n";
    }
    return "# bash completion for " + program + ", made by " + program + " --bash-completion\n" +
           function + R"(() {
    local word=${COMP_WORDS[COMP_CWORD]} option=${COMP_WORDS[COMP_CWORD - 1]}
    [[ $word != = ]] || { option="$option="; word=; }  # bash takes --option=value apart
    [[ $option != = ]] || option=${COMP_WORDS[COMP_CWORD - 2]}
    case ${option%=} in
)" + cases +
           R"(    esac
    [[ $word != -* ]] || mapfile -t COMPREPLY < <(compgen -W ")" +
           options + R"(" -- "$word")
}
complete -o default -F )" +
           function + " " + program + "\n";
}

bool OptionTable::given(const std::string& option) const { return !values(option).empty(); }

const GenConfig::ValueVect& OptionTable::values(const std::string& option) const {
    return optionMap_.at(option).availValues_;
}

}  // namespace zarn
