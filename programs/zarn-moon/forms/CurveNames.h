/// Where the curves of a picture get their names.
#ifndef ZARN_MOON_CURVENAMES_H
#define ZARN_MOON_CURVENAMES_H

#include <optional>
#include <vector>

namespace zarn::moon {

/// A point of a panel, 0 to 1 from left to right and from bottom to top.
struct PanelPoint {
    double x;
    double y;
};

/// A curve that gets a name.
struct NamedCurve {
    double width;  ///< of the name, as a part of the panel's
    std::vector<PanelPoint> points;
};

/// A text in a panel, around its point.
struct PanelText {
    double width;  ///< as a part of the panel's
    PanelPoint point;
};

/// A point on each curve at which its name overlaps no text, and rather no other curve either, if
/// there is such a point; of those the highest. Absent for a curve that the panel does not show.
///
/// @param texts  what else is written there
std::vector<std::optional<PanelPoint>> namePlaces(const std::vector<NamedCurve>& curves,
                                                  std::vector<PanelText> texts);

}  // namespace zarn::moon

#endif  // ZARN_MOON_CURVENAMES_H
