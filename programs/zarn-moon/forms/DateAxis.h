/// What the pictures of many nights have in common: nights from left to right, the lit moon above.
#ifndef ZARN_MOON_DATEAXIS_H
#define ZARN_MOON_DATEAXIS_H

#include <string>

#include "zarn-moon/forms/Report.h"

namespace zarn::moon {

/// The size of a picture, whose two panels are as wide as each other [pixels].
struct PictureSize {
    int height;
    int left;   ///< of the panels
    int below;  ///< them
};

/// The beginning of a script, up to the moon's panel: terminal, palette, title, dates. The lower
/// panel may follow.
///
/// @param title  without the site
std::string beginningOf(const Report& report, const PictureSize& size, const std::string& title);

/// The end of a script.
std::string endOf();

/// Where a night stands on the axis of dates: seconds since 1970, at 0 h.
std::string dateTic(double date);

}  // namespace zarn::moon

#endif  // ZARN_MOON_DATEAXIS_H
