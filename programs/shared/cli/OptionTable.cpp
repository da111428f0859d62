#include "shared/cli/OptionTable.h"

#include <iostream>
#include <utility>

#include "shared/cli/Completion.h"
#include "shared/cli/Printable.h"
#include "shared/cli/TextStreams.h"
#include "shared/cli/Value.h"

namespace zarn {

namespace {

/// Standard output goes into a buffer until the end of the object. Lack of memory for that throws.
class Redirection {
public:
    explicit Redirection(std::streambuf* buffer)
        : exceptions_(std::cout.exceptions()), output_(std::cout.rdbuf(buffer)) {
        std::cout.exceptions(std::ios::badbit);
    }
    Redirection(const Redirection&) = delete;
    Redirection& operator=(const Redirection&) = delete;
    ~Redirection() {
        std::cout.rdbuf(output_);
        std::cout.exceptions(exceptions_);
    }

private:
    std::ios::iostate exceptions_;
    std::streambuf* output_;
};

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

void OptionTable::displayOptions() const {
    const std::string emptyHeading = "Mandatory Options:\n\n";
    TextWriter help;
    {
        const Redirection redirection(help.rdbuf());
        displayHelp();  // to standard output, and nowhere else
    }
    std::string text = help.str();
    const std::string::size_type at = text.find(emptyHeading);
    if (at != std::string::npos) text.erase(at, emptyHeading.size());
    std::cout << text;
}

std::string OptionTable::completion(const std::string& program) const {
    for (const CompletingShell& shell : COMPLETING_SHELLS) {
        if (given(shell.option)) return shell.script(program, rows_);
    }
    return "";
}

bool OptionTable::given(const std::string& option) const { return !values(option).empty(); }

const GenConfig::ValueVect& OptionTable::values(const std::string& option) const {
    return optionMap_.at(option).availValues_;
}

}  // namespace zarn
