/// Files of sites for zarn-moon.

#include <cmath>
#include <string>

#include "fuzz/Harness.h"
#include "shared/cli/Value.h"
#include "tests/support/TempDir.h"
#include "zarn-moon/settings/Sites.h"

namespace zarn {

namespace {

void check(const moon::KnownSite& known) {
    const moon::Site& site = known.site;
    require(site.name.find_first_of(" \t/'\"$`\\") == std::string::npos, "a name needs no quotes");
    requireWithin(site.latitude, -90.0, 90.0);
    requireWithin(site.longitude, -180.0, 180.0);
    requireWithin(site.elevation, -500.0, 9000.0);
    requireWithin(known.extinction.value_or(0.0), 0.0, HUGE_VAL);
    requireWithin(known.horizon.value_or(0.0), 0.0, HUGE_VAL);
}

}  // namespace

void tryInput(const std::string& input) {
    static const TempDir dir;
    dir.put("sites.ini", input);
    renewProperties();
    tryOrRefuse([] {
        for (const moon::KnownSite& known : moon::sitesIn({dir / "sites.ini"})) check(known);
        tryOrRefuse<WrongValue>([] { moon::siteNamed("hill", {dir / "sites.ini"}); });
    });
}

}  // namespace zarn
