#include "zarnsys/util/StringUtils.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <climits>
#include <iterator>

namespace {

// The what and ident tools find this text in the built library.
const char rcsId[] = "@(#) $Id: StringUtils.cpp,v " ZARNSYS_VERSION " " ZARNSYS_SOURCE_DATE " $";
// An optimiser drops a text that nothing reads; this pointer must stay, and the text with it.
[[gnu::used]] const char* const use_rcsId = rcsId;

}  // namespace

// NOLINTNEXTLINE(performance-unnecessary-value-param): the published signature takes a value
void ZarnSys::split(const std::string& in, std::string delim, std::vector<std::string>& out) {
    std::array<bool, UCHAR_MAX + 1> divides = {};
    for (const char c : delim) divides[static_cast<unsigned char>(c)] = true;
    const auto isDelimiter = [&divides](unsigned char c) { return divides[c]; };
    std::vector<std::string> fields;  // apart from `out`, in which `in` may lie
    auto begin = std::find_if_not(in.begin(), in.end(), isDelimiter);
    while (begin != in.end()) {
        const auto end = std::find_if(begin, in.end(), isDelimiter);
        fields.emplace_back(begin, end);
        begin = std::find_if_not(end, in.end(), isDelimiter);
    }
    std::move(fields.begin(), fields.end(), std::back_inserter(out));
}

std::string ZarnSys::lower(const std::string& str) {
    std::string lowered = str;
    std::transform(lowered.begin(), lowered.end(), lowered.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return lowered;
}
