#include "zarn-moon/night/Ephemeris.h"

#include "zarn-moon/night/LibraryEphemeris.h"

namespace zarn::moon {

Ephemeris::~Ephemeris() = default;

void Ephemeris::addHorizons(SkyPath& path, double latitude) {
    const MoonGrid& moon = path.moon;
    path.horizons.reserve(path.instants.size());
    path.moonDirections.reserve(path.instants.size());
    for (std::size_t i = 0; i < path.instants.size(); ++i) {
        path.horizons.emplace_back(moon.siderealTime[i], latitude);
        path.moonDirections.push_back(directionAt(moon.altitude[i], moon.azimuth[i]));
    }
}

const Ephemeris& ephemerisOf(Theory /*theory*/) {
    static const LibraryEphemeris library;
    return library;
}

}  // namespace zarn::moon
