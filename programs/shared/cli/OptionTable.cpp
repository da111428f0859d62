#include "shared/cli/OptionTable.h"

#include <algorithm>

namespace {

/// The option as a pattern of the shell: "-o | --output".
std::string patternOf(const OptionRow& row) {
    const bool isShort = row.shortName != GenConfig::NO_SHORT_NAME;
    return (isShort ? std::string("-") + row.shortName + " | " : "") + "--" + row.name;
}

/// What bash does behind an option that takes an argument. Returning without a reply leaves it to
/// complete the names of files.
std::string completionOf(std::string argument) {
    const std::string words = R"(mapfile -t COMPREPLY < <(compgen -W ")";
    if (argument == "FILE") return "return";
    if (argument == "DIR") return R"(mapfile -t COMPREPLY < <(compgen -d -- "$word"); return)";
    if (argument.find('|') == std::string::npos) return "compopt +o default; return";
    std::replace(argument.begin(), argument.end(), '|', ' ');
    return words + argument + R"(" -- "$word"); return)";
}

}  // namespace

OptionTable::OptionTable(std::vector<const char*> arguments, const std::vector<OptionRow>& rows)
    : GenConfig(static_cast<int>(arguments.size()), arguments.data()), rows_(rows) {
    for (const auto& [name, shortName, argument, help, defaultValue] : rows) {
        const bool takesArgument = *argument != '\0';
        optionMap_[name] = {shortName, argument, false, takesArgument, help, defaultValue};
    }
}

std::string OptionTable::bashCompletion(const std::string& program) const {
    std::string function = "_" + program;
    std::replace(function.begin(), function.end(), '-', '_');
    std::string options;
    std::string cases;
    for (const OptionRow& row : rows_) {
        options += (options.empty() ? "--" : " --") + std::string(row.name);
        if (*row.argument != '\0')
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
