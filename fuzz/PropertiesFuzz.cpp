/// Properties files: through the library, and as zarn-ingest reads its own.

#include <string>
#include <vector>

#include "fuzz/Harness.h"
#include "shared/cli/PropertiesFile.h"
#include "tests/support/TempDir.h"
#include "zarn-ingest/settings/Properties.h"
#include "zarnsys/util/WexoProperties.h"

namespace zarn {

namespace {

/// Every getter for a key.
void get(const std::string& section, const std::string& key) {
    WexoProperties& properties = *WexoProperties::instance();
    std::string text;
    u_int number = 0;
    ACE_Time_Value time;
    bool flag = false;
    const bool isThere = properties.get(section, key, text) == 0;
    const bool isNumber = properties.get(section, key, number) == 0;
    const bool isTime = properties.get(section, key, time) == 0;
    const bool isFlag = properties.get(section, key, flag) == 0;
    require(isThere || (!isNumber && !isFlag), "what is not there has no value");
    require(isNumber == isTime, "a time is a number");
    require(!isFlag || text == (flag ? "T" : "F"), "T and F are the flags");
}

/// A text that the check lets through is read to its end.
void readChecked(const std::string& fileName) {
    checkPropertiesFile(fileName);
    const PropertyKeys keys = keysIn(fileName);
    require(keys.count({"the-last", "key"}) > 0, "what is checked is read whole");
}

}  // namespace

void tryInput(const std::string& input) {
    static const TempDir dir;
    const std::string fileName = dir / "p.ini";
    dir.put("p.ini", input);
    renewProperties();
    WexoProperties::instance()->load(fileName);
    for (const std::string& line : linesOf(input)) {
        const std::string key = line.substr(0, line.find('='));
        get("ingest", key);
        get(line, key);
    }
    renewProperties();
    tryOrRefuse([&] { ingest::readProperties(fileName); });
    dir.put("p.ini", input + "\n[the-last]\nkey = value\n");
    tryOrRefuse([&] { readChecked(fileName); });
}

}  // namespace zarn
