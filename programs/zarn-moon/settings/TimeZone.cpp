#include "zarn-moon/settings/TimeZone.h"

#include <array>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <regex>

#include "shared/cli/Printable.h"
#include "shared/cli/UsageError.h"
#include "shared/cli/Value.h"

namespace zarn::moon {

namespace {

const char* const UT_NAMES[] = {"", "UTC", "GMT"};  // known without a database, too

/// Whether a name leads to a file of the tz database, which begins with "TZif" (RFC 8536).
bool isInDatabase(const std::string& name) {
    const char* const directory = std::getenv("TZDIR");
    const std::filesystem::path base = directory != nullptr ? directory : "/usr/share/zoneinfo";
    std::ifstream file(base / name, std::ios::binary);
    std::array<char, 4> magic = {};
    file.read(magic.data(), magic.size());
    return file.good() && std::string(magic.data(), magic.size()) == "TZif";
}

/// Whether a text has the form of POSIX's TZ: a name and its difference from UT, perhaps another
/// name for the summer and when that begins and ends.
bool isPosix(const std::string& text) {
    constexpr std::size_t MOST = 100;  // characters; the search takes stack for each
    const std::string name = "(?:[A-Za-z]{3,}|<[A-Za-z0-9+-]{3,}>)";
    const std::string time = R"([+-]?\d{1,3}(?::\d{1,2}(?::\d{1,2})?)?)";
    const std::string date = R"((?:M\d{1,2}\.\d\.\d|J?\d{1,3}))";
    const std::string change = "," + date + "(?:/" + time + ")?";
    const std::string summer = name + "(?:" + time + ")?(?:" + change + change + ")?";
    const std::regex form(name + time + "(?:" + summer + ")?");
    return text.size() <= MOST && std::regex_match(text, form);
}

/// Checks the environment variable TZ.
void checkEnvironment() {
    const char* const name = std::getenv("TZ");
    if (name == nullptr) return;
    try {
        checkTimeZone(name);
    } catch (const WrongValue& error) {
        throw UsageError("--local: TZ, \"" + printable(name) + "\", is not " + error.what());
    }
}

}  // namespace

void checkTimeZone(const std::string& name) {
    const std::string bare = name.substr(name.rfind(':', 0) == 0 ? 1 : 0);
    for (const std::string known : UT_NAMES) {
        if (bare == known) return;
    }
    if (!isInDatabase(bare) && !isPosix(bare))
        throw WrongValue("a time zone of this system's tz database, or one such as XYZ-2:30");
}

void useTimeZone(const std::string& name) {
    if (name.empty()) return checkEnvironment();
    ::setenv("TZ", name.c_str(), 1);
    ::tzset();
}

}  // namespace zarn::moon
