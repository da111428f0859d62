#include "zarn-moon/night/Crossings.h"

#include <cstddef>

namespace zarn::moon {

std::vector<double> crossings(const std::vector<double>& instants,
                              const std::vector<double>& values, bool upwards) {
    std::vector<double> times;
    for (std::size_t i = 1; i < values.size(); ++i) {
        const double before = values[i - 1];
        const double after = values[i];
        const bool crosses = upwards ? before < 0.0 && after >= 0.0 : before >= 0.0 && after < 0.0;
        if (!crosses) continue;
        const double step = instants[i] - instants[i - 1];
        times.push_back(instants[i - 1] + step * before / (before - after));
    }
    return times;
}

std::vector<double> above(std::vector<double> values, double level) {
    for (double& value : values) value -= level;
    return values;
}

}  // namespace zarn::moon
