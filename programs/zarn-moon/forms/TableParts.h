/// Parts of the tables for people.
#ifndef ZARN_MOON_TABLEPARTS_H
#define ZARN_MOON_TABLEPARTS_H

#include <string>

#include "zarn-moon/forms/Report.h"

namespace zarn::moon {

/// "2026-11-25 17:06", followed by the local time if that is asked for.
std::string timeText(double mjd, bool local);

/// The time of day alone.
std::string clockText(double mjd);

/// A target's name and position.
std::string targetTitle(const Settings& settings, const Target& target);

/// The next phases, a line each below their title.
std::string phasesText(const Report& report);

/// The limits of a target, each after a comma; none: an empty text.
std::string limitsText(const Settings& settings, const Target& target);

/// Targets' nights, a line each, and their best nights.
///
/// @param report  on several nights, with targets
std::string semesterTable(const Report& report);

}  // namespace zarn::moon

#endif  // ZARN_MOON_TABLEPARTS_H
