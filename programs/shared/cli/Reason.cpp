#include "shared/cli/Reason.h"

#include <zarnsys/util/ZarnSysEx.h>

namespace zarn {

std::string reasonOf(const std::exception& error) {
    const auto* library = dynamic_cast<const ZarnSysEx*>(&error);
    return library != nullptr ? ZarnSysEx(*library).what() : std::string(error.what());
}

}  // namespace zarn
