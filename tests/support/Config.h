#ifndef TESTS_SUPPORT_CONFIG_H
#define TESTS_SUPPORT_CONFIG_H

#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "zarnsys/util/GenConfig.h"

/// A program's configuration made of a command line and a table, with its lists in sight.
class Config : public GenConfig {
public:
    Config(std::vector<const char*> line, OptionMap table)
        : GenConfig(static_cast<int>(line.size()), line.data()) {
        optionMap_ = std::move(table);
    }

    /// The rows' letters or codes and values, and the arguments.
    std::string lists() const {
        std::ostringstream text;
        for (const auto& [key, option] : optionMap_) {
            text << key << ' ' << static_cast<int>(option.shortName_);
            for (const std::string& value : option.availValues_) text << " <" << value << '>';
            text << '\n';
        }
        for (const std::string& argument : argumentVect_) text << '<' << argument << ">\n";
        return text.str();
    }
};

#endif  // TESTS_SUPPORT_CONFIG_H
