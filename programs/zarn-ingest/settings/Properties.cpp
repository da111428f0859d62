#include "zarn-ingest/settings/Properties.h"

#include <zarnsys/util/StringUtils.h>
#include <zarnsys/util/WexoProperties.h>

#include <iostream>
#include <stdexcept>

#include "shared/cli/Printable.h"
#include "shared/cli/UsageError.h"
#include "zarn-ingest/settings/PropertiesFile.h"
#include "zarn-ingest/settings/SettingTable.h"

namespace zarn::ingest {

namespace {

/// What is wrong with a property's value.
UsageError wrongProperty(const std::string& fileName, const SettingRow<Settings>& row,
                         const std::invalid_argument& error, const std::string& value) {
    const bool namesForm = dynamic_cast<const WrongValue*>(&error) != nullptr;
    return UsageError(printable(fileName + ": [" + row.section + "] " + row.name + " = " + value) +
                      (namesForm ? ": must be " : ": ") + error.what());
}

/// Reads a property that the file has.
void readProperty(const std::string& fileName, const SettingRow<Settings>& row,
                  Settings& settings) {
    std::string text;
    WexoProperties::instance()->get(row.section, row.name, text);
    std::vector<std::string> values;
    if (takesMany(row)) {
        ZarnSys::split(text, " \t", values);
    } else {
        values = {text};
    }
    readValues(row, values, settings,
               [&](const std::invalid_argument& error, const std::string& value) {
                   throw wrongProperty(fileName, row, error, value);
               });
}

}  // namespace

Settings readProperties(const std::string& fileName) {
    checkPropertiesFile(fileName);
    if (WexoProperties::instance()->load(fileName) != 0)
        throw UsageError(printable(fileName) + ": cannot be read");
    Settings settings;
    settings.properties = fileName;
    PropertyKeys keys = keysIn(fileName);
    for (const SettingRow<Settings>& row : SETTINGS) {
        if (row.section != nullptr && keys.erase({row.section, row.name}) > 0)
            readProperty(fileName, row, settings);
    }
    for (const auto& [section, key] : keys)
        std::cerr << "zarn-ingest: " + printable(fileName) + ": warning: unknown property [" +
                         printable(section) + "] " + printable(key) + "\n";
    return settings;
}

}  // namespace zarn::ingest
