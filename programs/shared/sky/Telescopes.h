/// The telescopes' names, as operators write them.
#ifndef ZARN_PROGRAMS_TELESCOPES_H
#define ZARN_PROGRAMS_TELESCOPES_H

#include <zarnsys/util/ZarnMoonVal.h>

#include <string>

/// The telescope of a name, in whatever case.
///
/// @throw std::invalid_argument  with a text that holds the names, for any other name
Telescope telescopeOf(const std::string& name);

/// The name of a telescope, in upper case.
std::string telescopeName(Telescope telescope);

/// All names, as a message lists them.
std::string telescopeNames();

#endif  // ZARN_PROGRAMS_TELESCOPES_H
