/// Reads a setting from the properties that were loaded last.
#ifndef ZARN_PROGRAMS_PROPERTYREADER_H
#define ZARN_PROGRAMS_PROPERTYREADER_H

#include <zarnsys/util/StringUtils.h>
#include <zarnsys/util/WexoProperties.h>

#include <string>
#include <vector>

#include "shared/cli/PropertiesFile.h"
#include "shared/cli/SettingTable.h"

namespace zarn {

/// Reads a property that is there.
///
/// @param place  its file, perhaps with a line, for messages
/// @throw UsageError  naming place, section, key and value of a wrong value
template <typename Settings>
void readProperty(const std::string& place, const std::string& section,
                  const SettingRow<Settings>& row, Settings& settings) {
    std::string text;
    WexoProperties::instance()->get(section, row.name, text);
    std::vector<std::string> values;
    if (takesMany(row)) {
        ZarnSys::split(text, " \t", values);
    } else {
        values = {text};
    }
    readValues(row, values, settings,
               [&](const std::invalid_argument& error, const std::string& value) {
                   throw wrongProperty(place, section, row.name, error, value);
               });
}

}  // namespace zarn

#endif  // ZARN_PROGRAMS_PROPERTYREADER_H
