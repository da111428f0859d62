/// Files of sites for zarn-moon.

#include <string>

#include "fuzz/Harness.h"
#include "fuzz/Properties.h"
#include "shared/cli/UsageError.h"
#include "shared/cli/Value.h"
#include "tests/support/TempDir.h"
#include "zarn-moon/settings/Sites.h"

namespace zarn {

namespace {

void check(const moon::KnownSite& known) {
    const moon::Site& site = known.site;
    require(site.name.find_first_of(" \t/'\"$`\\") == std::string::npos, "a name needs no quotes");
    require(site.latitude >= -90.0 && site.latitude <= 90.0, "a site has its latitude");
    require(site.longitude >= -180.0 && site.longitude <= 180.0, "and its longitude");
    require(site.elevation >= -500.0 && site.elevation <= 9000.0, "it stands on the ground");
    require(known.extinction.value_or(0.0) >= 0.0, "the air adds no light");
    require(known.horizon.value_or(0.0) >= 0.0, "the horizon is not below");
}

}  // namespace

void tryInput(const std::string& input) {
    static const TempDir dir;
    dir.put("sites.ini", input);
    Properties::renew();
    try {
        for (const moon::KnownSite& known : moon::sitesIn({dir / "sites.ini"})) check(known);
        moon::siteNamed("hill", {dir / "sites.ini"});
    } catch (const UsageError& error) {
        require(std::string(error.what()).find('\n') == std::string::npos,
                "messages have one line");
    } catch (const WrongValue&) {
        return;
    }
}

}  // namespace zarn
