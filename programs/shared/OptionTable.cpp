#include "OptionTable.h"

OptionTable::OptionTable(std::vector<const char*> arguments, const std::vector<OptionRow>& rows)
    : GenConfig(static_cast<int>(arguments.size()), arguments.data()) {
    for (const auto& [name, shortName, argument, help, defaultValue] : rows) {
        const bool takesArgument = *argument != '\0';
        optionMap_[name] = {shortName, argument, false, takesArgument, help, defaultValue};
    }
}

bool OptionTable::given(const std::string& option) const { return !values(option).empty(); }

const GenConfig::ValueVect& OptionTable::values(const std::string& option) const {
    return optionMap_.at(option).availValues_;
}
