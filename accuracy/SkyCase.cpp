#include "SkyCase.h"

#include <zarnsys/util/Astronomy.h>
#include <zarnsys/util/ZarnMoonVal.h>

const char* const INPUT_NAMES[INPUTS] = {
    "jd",  "west",     "sid",      "lat",     "dec",   "ha",       "ra1",  "dec1",
    "ra2", "dec2",     "lunation", "nph",     "alpha", "rho",      "kzen", "altmoon",
    "alt", "moondist", "starRa",   "starDec", "mjd",   "longitude"};

Outputs<double> evaluate(const Inputs& in) {
    Outputs<double> out{};
    out[SIDEREAL] = lst(in[JD], in[WEST]);
    out[ALTITUDE] = altit(in[DEC], in[HA], in[LAT], &out[AZIMUTH]);
    out[ANGLE] = subtend(in[RA1], in[DEC1], in[RA2], in[DEC2]);
    lpsun(in[JD], &out[SUN_RA], &out[SUN_DEC]);
    lpmoon(in[JD], in[LAT], in[SID], &out[MOON_RA], &out[MOON_DEC], &out[MOON_DIST]);
    flmoon(static_cast<int>(in[LUNATION]), static_cast<int>(in[QUARTER]), &out[PHASE_TIME]);
    int lunation = 0;
    out[AGE] = static_cast<double>(lun_age(in[JD], &lunation));
    out[AGE_LUNATION] = lunation;
    out[BRIGHTNESS] =
        lunskybright(in[ALPHA], in[RHO], in[KZEN], in[ALTMOON], in[ALT], in[MOONDIST]);
    computeMoonParam(in[STAR_RA], in[STAR_DEC], in[MJD], in[LONGITUDE], in[LAT], &out[P_LST],
                     &out[P_FLI], &out[P_MOONDIST], &out[P_MOONALT], &out[P_MOONAZ], &out[P_PHASE],
                     &out[P_ALPHASUN], &out[P_OBJDIST]);
    return out;
}
