/// The picture of many nights hour by hour, for one target or none.
#ifndef ZARN_MOON_SEASONMAP_H
#define ZARN_MOON_SEASONMAP_H

#include <string>

#include "zarn-moon/forms/Report.h"

namespace zarn::moon {

/// The script for a picture of nights against hours: twilight, rise and set of the moon, and where
/// the limits allow the target, what an hour is worth.
///
/// @param report  on several nights, with one target or none
std::string seasonScript(const Report& report);

}  // namespace zarn::moon

#endif  // ZARN_MOON_SEASONMAP_H
