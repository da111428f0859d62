/// Files of targets for zarn-moon.

#include <cmath>
#include <set>
#include <string>

#include "fuzz/Harness.h"
#include "tests/support/TempDir.h"
#include "zarn-moon/settings/Targets.h"

namespace zarn {

namespace {

void check(const moon::Target& target) {
    require(!target.name.empty(), "a target has a name");
    requireWithin(target.position.ra, 0.0, std::nextafter(360.0, 0.0));
    requireWithin(target.position.dec, -90.0, 90.0);
    requireWithin(target.minAltitude.value_or(0.0), 0.0, 90.0);
    requireWithin(target.weight.value_or(0.0), 0.0, HUGE_VAL);
    std::set<std::string> titles;
    for (const auto& [title, text] : target.columns)
        require(!title.empty() && titles.insert(title).second, "no title comes twice");
}

}  // namespace

void tryInput(const std::string& input) {
    static const TempDir dir;
    dir.put("targets", input);
    tryOrRefuse([] {
        for (const moon::Target& target : moon::readTargets(dir / "targets")) check(target);
    });
}

}  // namespace zarn
