/// Whether a text begins with another one.
#ifndef ZARN_PROGRAMS_BEGINS_WITH_H
#define ZARN_PROGRAMS_BEGINS_WITH_H

#include <string_view>

namespace zarn {

inline bool beginsWith(std::string_view text, std::string_view beginning) {
    return text.substr(0, beginning.size()) == beginning;
}

}  // namespace zarn

#endif  // ZARN_PROGRAMS_BEGINS_WITH_H
