/// Scripts by which shells complete a program's options.
///
/// They complete the options and those of their values that are a choice of words
/// ("table|csv|json"), a site ("SITE"), a directory ("DIR") or a file ("FILE"), as are arguments
/// without option.
#ifndef ZARN_PROGRAMS_COMPLETION_H
#define ZARN_PROGRAMS_COMPLETION_H

#include <string>
#include <vector>

#include "shared/cli/OptionRow.h"

namespace zarn {

/// A shell: the option that asks for its script, and what makes it.
struct CompletingShell {
    const char* option;
    std::string (*script)(const std::string& program, const std::vector<OptionRow>& rows);
};

std::string bashCompletion(const std::string& program, const std::vector<OptionRow>& rows);
std::string zshCompletion(const std::string& program, const std::vector<OptionRow>& rows);
std::string fishCompletion(const std::string& program, const std::vector<OptionRow>& rows);

inline constexpr CompletingShell COMPLETING_SHELLS[] = {
    {"bash-completion", bashCompletion},
    {"zsh-completion", zshCompletion},
    {"fish-completion", fishCompletion},
};

}  // namespace zarn

#endif  // ZARN_PROGRAMS_COMPLETION_H
