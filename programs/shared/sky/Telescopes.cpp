#include "shared/sky/Telescopes.h"

#include <zarnsys/util/StringUtils.h>

#include "shared/cli/Value.h"

namespace zarn {

Telescope telescopeOf(const std::string& name) {
    const std::vector<std::string> names = wordsOf(TELESCOPES);
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (ZarnSys::lower(name) == ZarnSys::lower(names[i])) return static_cast<Telescope>(i);
    }
    throw WrongValue(alternatives(TELESCOPES));
}

std::string telescopeName(Telescope telescope) {
    return wordsOf(TELESCOPES).at(static_cast<std::size_t>(telescope));
}

}  // namespace zarn
