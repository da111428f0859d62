/// The telescopes' names, as operators write them.
#ifndef ZARN_PROGRAMS_TELESCOPES_H
#define ZARN_PROGRAMS_TELESCOPES_H

#include <zarnsys/util/ZarnMoonVal.h>

#include <string>

namespace zarn {

/// All names, as a choice, in the order of the library's enumeration.
inline constexpr char TELESCOPES[] = "OLAN|VEK1|VEK2|VEK3|VEK4";

/// The telescope of a name, in upper or lower case.
///
/// @throw WrongValue  listing the names, for any other name
Telescope telescopeOf(const std::string& name);

/// The name of a telescope, in upper case.
std::string telescopeName(Telescope telescope);

}  // namespace zarn

#endif  // ZARN_PROGRAMS_TELESCOPES_H
