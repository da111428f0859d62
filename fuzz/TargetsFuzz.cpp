/// Files of targets for zarn-moon.

#include <set>
#include <string>

#include "fuzz/Harness.h"
#include "shared/cli/UsageError.h"
#include "tests/support/TempDir.h"
#include "zarn-moon/settings/Targets.h"

namespace zarn {

namespace {

void check(const moon::Target& target) {
    require(!target.name.empty(), "a target has a name");
    require(target.position.ra >= 0.0 && target.position.ra < 360.0, "its right ascension is one");
    require(target.position.dec >= -90.0 && target.position.dec <= 90.0, "so is its declination");
    const double altitude = target.minAltitude.value_or(0.0);
    require(altitude >= 0.0 && altitude <= 90.0, "its altitude is in the sky");
    require(target.weight.value_or(0.0) >= 0.0, "its weight is not negative");
    std::set<std::string> titles;
    for (const auto& [title, text] : target.columns)
        require(!title.empty() && titles.insert(title).second, "no title comes twice");
}

}  // namespace

void tryInput(const std::string& input) {
    static const TempDir dir;
    dir.put("targets", input);
    try {
        for (const moon::Target& target : moon::readTargets(dir / "targets")) check(target);
    } catch (const UsageError& error) {
        require(std::string(error.what()).find('\n') == std::string::npos,
                "messages have one line");
    }
}

}  // namespace zarn
