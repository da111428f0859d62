#include "zarn-ingest/settings/Properties.h"

#include <zarnsys/util/WexoProperties.h>

#include <iostream>

#include "shared/cli/Printable.h"
#include "shared/cli/PropertiesFile.h"
#include "shared/cli/PropertyReader.h"
#include "shared/cli/UsageError.h"
#include "zarn-ingest/settings/SettingTable.h"

namespace zarn::ingest {

Settings readProperties(const std::string& fileName) {
    checkPropertiesFile(fileName);
    if (WexoProperties::instance()->load(fileName) != 0)
        throw UsageError(printable(fileName) + ": cannot be read");
    Settings settings;
    settings.properties = fileName;
    PropertyKeys keys = keysIn(fileName);
    for (const SettingRow<Settings>& row : SETTINGS) {
        if (row.section != nullptr && keys.erase({row.section, row.name}) > 0)
            readProperty(fileName, row.section, row, settings);
    }
    for (const auto& [section, key] : keys)
        std::cerr << "zarn-ingest: " + printable(fileName) + ": warning: unknown property [" +
                         printable(section) + "] " + printable(key) + "\n";
    return settings;
}

}  // namespace zarn::ingest
