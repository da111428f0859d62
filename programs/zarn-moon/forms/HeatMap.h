/// The picture of a semester: what each night is worth for each target.
#ifndef ZARN_MOON_HEATMAP_H
#define ZARN_MOON_HEATMAP_H

#include <string>

#include "zarn-moon/forms/Report.h"

namespace zarn::moon {

/// The script for a heat map of dark-equivalent hours, nights against targets. Cells of nights in
/// which the limits leave nothing stay empty.
///
/// @param report  on several nights, with targets
std::string heatMapScript(const Report& report);

}  // namespace zarn::moon

#endif  // ZARN_MOON_HEATMAP_H
