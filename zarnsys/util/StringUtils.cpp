#include "zarnsys/util/StringUtils.h"

#include <algorithm>
#include <bitset>
#include <cctype>
#include <climits>
#include <functional>

namespace {

// The what and ident tools find this text in the built library.
const char rcsId[] = "@(#) $Id: StringUtils.cpp,v " ZARNSYS_VERSION " " ZARNSYS_SOURCE_DATE " $";
// An optimiser drops a text that nothing reads; this pointer must stay, and the text with it.
[[gnu::used]] const char* const use_rcsId = rcsId;

/// Whether a string is an element of the vector.
bool liesIn(const std::vector<std::string>& strings, const std::string& string) {
    const std::less<const std::string*> before;
    const std::string* const begin = strings.data();
    return !before(&string, begin) && before(&string, begin + strings.size());
}

}  // namespace

// NOLINTNEXTLINE(performance-unnecessary-value-param): the published signature takes a value
void ZarnSys::split(const std::string& in, std::string delim, std::vector<std::string>& out) {
    std::bitset<UCHAR_MAX + 1> divides;
    for (const char c : delim) divides[static_cast<unsigned char>(c)] = true;
    const auto isDelimiter = [&divides](unsigned char c) { return divides[c]; };
    const bool isElement = liesIn(out, in);
    const std::string copy = isElement ? in : "";  // elements move as `out` grows
    const std::string& text = isElement ? copy : in;
    auto begin = std::find_if_not(text.begin(), text.end(), isDelimiter);
    while (begin != text.end()) {
        const auto end = std::find_if(begin, text.end(), isDelimiter);
        out.emplace_back(begin, end);
        begin = std::find_if_not(end, text.end(), isDelimiter);
    }
}

std::string ZarnSys::lower(const std::string& str) {
    std::string lowered = str;
    std::transform(lowered.begin(), lowered.end(), lowered.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return lowered;
}
