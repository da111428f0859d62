#include "zarn-moon/settings/Site.h"

#include <zarnsys/util/StringUtils.h>
#include <zarnsys/util/ZarnMoonVal.h>

#include <cctype>
#include <cmath>
#include <iomanip>
#include <stdexcept>
#include <vector>

#include "shared/cli/Printable.h"
#include "shared/cli/TextStreams.h"
#include "shared/sky/Angles.h"
#include "shared/sky/Telescopes.h"

namespace zarn::moon {

namespace {

/// An angle followed by the letter of its hemisphere, of which one counts as positive.
double hemisphereAngle(const std::string& text, char positive, char negative, double most) {
    const int letter = text.empty() ? 0 : std::toupper(static_cast<unsigned char>(text.back()));
    if (letter != positive && letter != negative) {
        throw std::invalid_argument("\"" + printable(text) + "\" does not end in " + positive +
                                    " or " + negative);
    }
    if (text.front() == '-' && (letter == 'N' || letter == 'E')) {
        throw std::invalid_argument("\"" + printable(text) + "\" must not have a sign: write " +
                                    printable(text.substr(1, text.size() - 2)) +
                                    (letter == 'N' ? "S" : "W"));
    }
    const double angle = parseAngle(text.substr(0, text.size() - 1), most, text);
    return letter == positive ? angle : -angle;
}

}  // namespace

Site telescopeSite(const std::string& name) {
    const Telescope telescope = telescopeOf(name);
    Site site = {telescopeName(telescope), 0.0, 0.0};
    getTelescopeCoord(site.latitude, site.longitude, telescope);
    return site;
}

Site siteAt(const std::string& text) {
    std::vector<std::string> words;
    ZarnSys::split(text, " \t", words);
    if (words.size() != 2) {
        throw std::invalid_argument("\"" + printable(text) +
                                    "\" is not a latitude and longitude such as 42.5N 12.3E");
    }
    return {"the place", parseLatitude(words[0]), parseLongitude(words[1])};
}

double parseLatitude(const std::string& text) {
    constexpr double POLE = 90.0;
    return hemisphereAngle(text, 'N', 'S', POLE);
}

double parseLongitude(const std::string& text) {
    constexpr double HALF_CIRCLE = FULL_CIRCLE / 2.0;
    return hemisphereAngle(text, 'W', 'E', HALF_CIRCLE);
}

Place placeOf(const Site& site) {
    Place place;
    place.latitude = site.latitude;
    place.westLongitude = site.longitude;
    return place;
}

std::string coordinates(const Site& site) {
    constexpr int DECIMALS = 4;
    TextWriter text;
    text << std::fixed << std::setprecision(DECIMALS) << std::fabs(site.latitude)
         << (site.latitude < 0.0 ? "S " : "N ") << std::fabs(site.longitude)
         << (site.longitude > 0.0 ? "W" : "E");
    if (site.elevation != 0.0) text << ", " << std::setprecision(0) << site.elevation << " m";
    return text.str();
}

double noonOf(const Site& site, double date) { return date + 0.5 + site.longitude / FULL_CIRCLE; }

double nightOf(const Site& site, double mjd) { return std::floor(mjd - noonOf(site, 0.0)); }

}  // namespace zarn::moon
