#include "zarn-moon/settings/TimeZone.h"

#include <regex.h>

#include <array>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <new>
#include <string>

#include "shared/cli/BeginsWith.h"
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

/// An extended regular expression for whole texts.
class Form {
public:
    explicit Form(const std::string& expression) {
        const std::string whole = "^" + expression + "$";
        if (::regcomp(&form_, whole.c_str(), REG_EXTENDED | REG_NOSUB) != 0) throw std::bad_alloc();
    }
    Form(const Form&) = delete;
    Form& operator=(const Form&) = delete;
    ~Form() { ::regfree(&form_); }

    bool fits(const std::string& text) const {
        return ::regexec(&form_, text.c_str(), 0, nullptr, 0) == 0;
    }

private:
    regex_t form_ = {};
};

/// Whether a text has the form of POSIX's TZ: a name and its difference from UT, perhaps another
/// name for the summer and when that begins and ends.
bool isPosix(const std::string& text) {
    constexpr std::size_t MOST = 100;  // characters; the search takes memory for each
    const std::string name = "([A-Za-z]{3,}|<[A-Za-z0-9+-]{3,}>)";
    const std::string time = "[+-]?[0-9]{1,3}(:[0-9]{1,2}(:[0-9]{1,2})?)?";
    const std::string date = R"((M[0-9]{1,2}\.[0-9]\.[0-9]|J?[0-9]{1,3}))";
    const std::string change = "," + date + "(/" + time + ")?";
    const std::string summer = name + "(" + time + ")?(" + change + change + ")?";
    return text.size() <= MOST && Form(name + time + "(" + summer + ")?").fits(text);
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
    const std::string bare = name.substr(beginsWith(name, ":") ? 1 : 0);
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
