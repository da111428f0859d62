#include "shared/sky/Telescopes.h"

#include <zarnsys/util/StringUtils.h>

#include <iterator>
#include <stdexcept>

#include "shared/cli/Printable.h"

namespace {

// In the order of the enumeration.
constexpr const char* NAMES[] = {"OLAN", "VEK1", "VEK2", "VEK3", "VEK4"};

}  // namespace

Telescope telescopeOf(const std::string& name) {
    for (std::size_t i = 0; i < std::size(NAMES); ++i) {
        if (ZarnSys::lower(name) == ZarnSys::lower(NAMES[i])) return static_cast<Telescope>(i);
    }
    throw std::invalid_argument("\"" + printable(name) + "\" is none of " + telescopeNames());
}

std::string telescopeName(Telescope telescope) { return NAMES[telescope]; }

std::string telescopeNames() {
    std::string names;
    for (const char* name : NAMES) names += (names.empty() ? "" : ", ") + std::string(name);
    return names;
}
