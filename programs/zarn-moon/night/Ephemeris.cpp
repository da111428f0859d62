#include "zarn-moon/night/Ephemeris.h"

#include <zarnsys/util/Astronomy.h>

#include "shared/sky/Units.h"
#include "zarn-moon/night/ErfaEphemeris.h"
#include "zarn-moon/night/LibraryEphemeris.h"

namespace zarn::moon {

Ephemeris::~Ephemeris() = default;

int lunationOf(double mjd) {
    int lunation = 0;
    lun_age(mjd + JD_OF_MJD_0, &lunation);
    return lunation;
}

const Ephemeris& ephemerisOf(Theory theory) {
    static const ErfaEphemeris erfa;
    static const LibraryEphemeris library;
    if (theory == Theory::LIBRARY) return library;
    return erfa;
}

}  // namespace zarn::moon
