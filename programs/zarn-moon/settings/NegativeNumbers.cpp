#include "zarn-moon/settings/NegativeNumbers.h"

namespace zarn::moon {

namespace {

/// Whether an argument is the option, or its beginning, as far as no other one begins so.
bool isOption(const std::string& argument, const std::string& option) {
    constexpr std::size_t LEAST = 4;  // "--su"
    return argument.size() >= LEAST && option.rfind(argument, 0) == 0;
}

}  // namespace

NegativeNumbers::NegativeNumbers(const std::vector<const char*>& arguments,
                                 const std::string& option)
    : arguments_(arguments.begin(), arguments.end()) {
    for (std::size_t i = 1; i < arguments_.size(); ++i) {
        std::string& argument = arguments_[i];
        const std::string::size_type equals = argument.find("=-");
        if (equals != std::string::npos && isOption(argument.substr(0, equals), option))
            argument.insert(equals + 1, " ");
        else if (argument.rfind('-', 0) == 0 && isOption(arguments_[i - 1], option))
            argument.insert(0, " ");
    }
}

std::vector<const char*> NegativeNumbers::arguments() const {
    std::vector<const char*> pointers;
    for (const std::string& argument : arguments_) pointers.push_back(argument.c_str());
    return pointers;
}

}  // namespace zarn::moon
