#include "zarn-moon/night/Ephemeris.h"

#include "zarn-moon/night/ErfaEphemeris.h"
#include "zarn-moon/night/LibraryEphemeris.h"

namespace zarn::moon {

Ephemeris::~Ephemeris() = default;

const Ephemeris& ephemerisOf(Theory theory) {
    static const ErfaEphemeris erfa;
    static const LibraryEphemeris library;
    if (theory == Theory::LIBRARY) return library;
    return erfa;
}

}  // namespace zarn::moon
