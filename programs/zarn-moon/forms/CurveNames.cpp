#include "zarn-moon/forms/CurveNames.h"

#include <algorithm>
#include <cmath>

namespace zarn::moon {

namespace {

constexpr double NAME_HEIGHT = 0.05;  // as a part of the panel's

// Names stay clear of the edges.
constexpr double SIDE = 0.01;
constexpr double BOTTOM = 0.03;
constexpr double TOP = 0.93;

bool fits(const PanelPoint& point, double width) {
    const double side = width / 2.0 + SIDE;
    return point.x > side && point.x < 1.0 - side && point.y > BOTTOM && point.y < TOP;
}

/// How clear of all texts a name would be: below 1 it overlaps one, and 1 is enough.
double clearance(const PanelText& name, const std::vector<PanelText>& texts) {
    double least = 1.0;
    for (const auto& [width, point] : texts) {
        const double across = std::fabs(name.point.x - point.x) / ((name.width + width) / 2.0);
        const double above = std::fabs(name.point.y - point.y) / NAME_HEIGHT;
        least = std::min(least, std::max(across, above));
    }
    return least;
}

/// How clear of the other curves a name would be, likewise. It stands above its point.
double clearance(const PanelText& name, const std::vector<NamedCurve>& curves, std::size_t own) {
    double least = 1.0;
    for (std::size_t other = 0; other < curves.size(); ++other) {
        if (other == own) continue;
        for (const PanelPoint& point : curves[other].points) {
            if (std::fabs(point.x - name.point.x) > name.width / 2.0) continue;
            const double above = std::fabs(point.y - name.point.y - NAME_HEIGHT / 2.0);
            least = std::min(least, above / NAME_HEIGHT);
        }
    }
    return least;
}

/// The point of a curve that is the clearest; of equals the highest.
std::optional<PanelPoint> nameOn(const std::vector<NamedCurve>& curves, std::size_t own,
                                 const std::vector<PanelText>& texts) {
    constexpr double WEIGHT_OF_TEXTS = 2.0;  // beside that of curves
    std::optional<PanelPoint> best;
    double most = 0.0;
    for (const PanelPoint& point : curves[own].points) {
        const PanelText name = {curves[own].width, point};
        if (!fits(point, name.width)) continue;
        const double clear =
            WEIGHT_OF_TEXTS * clearance(name, texts) + clearance(name, curves, own);
        if (best && (clear < most || (clear == most && point.y <= best->y))) continue;
        best = point;
        most = clear;
    }
    return best;
}

}  // namespace

std::vector<std::optional<PanelPoint>> namePlaces(const std::vector<NamedCurve>& curves,
                                                  std::vector<PanelText> texts) {
    std::vector<std::optional<PanelPoint>> places;
    for (std::size_t i = 0; i < curves.size(); ++i) {
        places.push_back(nameOn(curves, i, texts));
        if (places.back()) texts.push_back({curves[i].width, *places.back()});
    }
    return places;
}

}  // namespace zarn::moon
