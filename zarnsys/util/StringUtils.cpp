#include "zarnsys/util/StringUtils.h"

#include <algorithm>
#include <cctype>
#include <iterator>

namespace {

// The what and ident tools find this text in the built library.
const char rcsId[] = "@(#) $Id: StringUtils.cpp,v " ZARNSYS_VERSION " " ZARNSYS_SOURCE_DATE " $";
// An optimiser drops a text that nothing reads; this pointer must stay, and the text with it.
[[gnu::used]] const char* const use_rcsId = rcsId;

}  // namespace

// NOLINTNEXTLINE(performance-unnecessary-value-param): the published signature takes a value
void ZarnSys::split(const std::string& in, std::string delim, std::vector<std::string>& out) {
    std::vector<std::string> fields;  // apart from `out`, in which `in` may lie
    std::string::size_type begin = in.find_first_not_of(delim);
    while (begin != std::string::npos) {
        const std::string::size_type end = std::min(in.find_first_of(delim, begin), in.size());
        fields.push_back(in.substr(begin, end - begin));
        begin = in.find_first_not_of(delim, end);
    }
    std::move(fields.begin(), fields.end(), std::back_inserter(out));
}

std::string ZarnSys::lower(const std::string& str) {
    std::string lowered = str;
    std::transform(lowered.begin(), lowered.end(), lowered.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return lowered;
}
