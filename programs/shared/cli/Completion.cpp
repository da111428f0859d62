#include "shared/cli/Completion.h"

#include <algorithm>

namespace zarn {

namespace {

/// What an option takes, for a shell to complete.
enum class Takes { NOTHING, A_FILE, A_DIRECTORY, A_SITE, A_WORD, OTHER };

Takes takenBy(const OptionRow& row) {
    if (row.argument.empty()) return Takes::NOTHING;
    if (row.argument == "FILE") return Takes::A_FILE;
    if (row.argument == "DIR") return Takes::A_DIRECTORY;
    if (row.argument == "SITE") return Takes::A_SITE;
    return row.argument.find('|') == std::string::npos ? Takes::OTHER : Takes::A_WORD;
}

/// The words of a choice, with blanks between them.
std::string wordsIn(std::string choice) {
    std::replace(choice.begin(), choice.end(), '|', ' ');
    return choice;
}

/// A command that lists the names of sites, which need no quotes, each before a tab.
std::string listOfSites(const std::string& program) {
    return program + " --list-sites 2>/dev/null";
}

/// A text with a backslash before each of some characters.
std::string escaped(const std::string& text, const std::string& special) {
    std::string result;
    for (const char character : text) {
        if (special.find(character) != std::string::npos) result += '\\';
        result += character;
    }
    return result;
}

/// A text within single quotes, as bash and zsh read it.
std::string quoted(const std::string& text) {
    std::string result = "'";
    for (const char character : text) {
        result += character == '\'' ? std::string(R"('\'')") : std::string(1, character);
    }
    return result + "'";
}

std::string firstLine(const std::string& mark, const std::string& program,
                      const std::string& shell) {
    return mark + " " + program + ", made by " + program + " --" + shell + "-completion\n";
}

/// The option as a pattern of bash: "-o | --output".
std::string bashPattern(const OptionRow& row) {
    return (row.hasLetter() ? std::string("-") + row.letter + " | " : "") + "--" + row.name;
}

/// What bash does after an option that takes an argument. Where the function returns without a
/// reply, bash completes the names of files.
std::string bashValues(const std::string& program, const OptionRow& row) {
    switch (takenBy(row)) {
        case Takes::A_FILE:
            return "return";
        case Takes::A_DIRECTORY:
            return R"(mapfile -t COMPREPLY < <(compgen -d -- "$word"); return)";
        case Takes::A_SITE:
            return R"(mapfile -t COMPREPLY < <(compgen -W "$()" + listOfSites(program) +
                   " | cut -f 1)\" -- \"$word\"); return";
        case Takes::A_WORD:
            return R"(mapfile -t COMPREPLY < <(compgen -W ")" + wordsIn(row.argument) +
                   R"(" -- "$word"); return)";
        default:
            return "compopt +o default; return";
    }
}

/// What zsh's _arguments completes an option's value by.
std::string zshValues(const std::string& program, const OptionRow& row) {
    const std::string message = ":" + escaped(row.argument, ":\\") + ":";
    switch (takenBy(row)) {
        case Takes::NOTHING:
            return "";
        case Takes::A_FILE:
            return message + "_files";
        case Takes::A_DIRECTORY:
            return message + "_files -/";
        case Takes::A_SITE:
            return ":" + row.name + ":($(" + listOfSites(program) + " | cut -f 1))";
        case Takes::A_WORD:
            return ":" + row.name + ":(" + wordsIn(row.argument) + ")";
        default:
            return message + " ";
    }
}

/// One form of an option, as a word for _arguments. One that takes a value may be repeated.
std::string zshForm(const std::string& program, const OptionRow& row, const std::string& form) {
    const std::string both =
        row.hasLetter() ? std::string("-") + row.letter + " --" + row.name : "--" + row.name;
    const std::string before = row.argument.empty() ? "(" + both + ")" : "*";
    const std::string help = "[" + escaped(row.help, "[]\\") + "]";
    return " \\\n    " + quoted(before + form + help + zshValues(program, row));
}

/// What fish completes an option's value by.
std::string fishValues(const std::string& program, const OptionRow& row) {
    switch (takenBy(row)) {
        case Takes::NOTHING:
            return "";
        case Takes::A_FILE:
            return " -r -F";
        case Takes::A_DIRECTORY:
            return " -x -a '(__fish_complete_directories)'";
        case Takes::A_SITE:
            return " -x -a '(" + listOfSites(program) + ")'";
        case Takes::A_WORD:
            return " -x -a '" + wordsIn(row.argument) + "'";
        default:
            return " -x";
    }
}

}  // namespace

std::string bashCompletion(const std::string& program, const std::vector<OptionRow>& rows) {
    std::string function = "_" + program;
    std::replace(function.begin(), function.end(), '-', '_');
    std::string options;
    std::string cases;
    for (const OptionRow& row : rows) {
        options += (options.empty() ? "--" : " --") + row.name;
        if (!row.argument.empty())
            cases += "        " + bashPattern(row) + ") " + bashValues(program, row) + " ;;\n";
    }
    return firstLine("# bash completion for", program, "bash") + function + R"(() {
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

std::string zshCompletion(const std::string& program, const std::vector<OptionRow>& rows) {
    std::string script = "#compdef " + program + "\n" +
                         firstLine("# zsh completion for", program, "zsh") + "_arguments -s";
    for (const OptionRow& row : rows) {
        const bool takesValue = !row.argument.empty();
        if (row.hasLetter()) script += zshForm(program, row, std::string("-") + row.letter);
        script += zshForm(program, row, "--" + row.name + (takesValue ? "=" : ""));
    }
    return script + " \\\n    '*:file:_files'\n";
}

std::string fishCompletion(const std::string& program, const std::vector<OptionRow>& rows) {
    std::string script = firstLine("# fish completion for", program, "fish");
    for (const OptionRow& row : rows) {
        script += "complete -c " + program;
        if (row.hasLetter()) script += std::string(" -s ") + row.letter;
        script += " -l " + row.name + fishValues(program, row) + " -d '" +
                  escaped(row.help, "'\\") + "'\n";
    }
    return script;
}

}  // namespace zarn
