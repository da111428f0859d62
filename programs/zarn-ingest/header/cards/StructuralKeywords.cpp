#include "zarn-ingest/header/cards/StructuralKeywords.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

#include "zarn-ingest/header/lines/Columns.h"

namespace zarn::ingest {

namespace {

constexpr const char* BITPIX_VALUES[] = {"8", "16", "32", "64", "-32", "-64"};
constexpr const char* BINARY_TABLES[] = {"BINTABLE", "A3DTABLE"};

// CFITSIO takes HIERARCH cards of these names for the keywords themselves.
constexpr const char* STRUCTURE[] = {"SIMPLE",  "XTENSION", "BITPIX", "NAXIS",    "EXTEND",
                                     "GROUPS",  "PCOUNT",   "GCOUNT", "CHECKSUM", "DATASUM",
                                     "TFIELDS", "THEAP",    "ZIMAGE", "END"};

template <typename Words>
bool contains(const Words& words, const std::string& word) {
    return std::find(std::begin(words), std::end(words), word) != std::end(words);
}

}  // namespace

bool isChecksum(const std::string& keyword) {
    return keyword == "CHECKSUM" || keyword == "DATASUM";
}

bool isBinaryTable(const std::string& extension) { return contains(BINARY_TABLES, extension); }

bool isBitpix(const std::string& number) { return contains(BITPIX_VALUES, number); }

int axisOf(const std::string& keyword) {
    constexpr std::size_t NAME = 5;
    const bool hasLength = keyword.size() > NAME && keyword.size() <= KEYWORD_LENGTH;
    if (keyword.rfind("NAXIS", 0) != 0 || !hasLength) return 0;
    if (keyword.find_first_not_of("0123456789", NAME) != std::string::npos) return 0;
    return std::max(1, std::stoi(keyword.substr(NAME)));
}

bool isTakenForStructure(const std::string& name) {
    const bool isOfColumn = name.size() <= KEYWORD_LENGTH && name.front() == 'T' &&
                            name.back() >= '0' && name.back() <= '9';
    return contains(STRUCTURE, name) || axisOf(name) > 0 || isOfColumn;
}

std::string withoutPlus(const std::string& number) {
    return number.rfind('+', 0) == 0 ? number.substr(1) : number;
}

bool isZero(const std::string& number) {
    return !number.empty() && withoutPlus(number).find_first_not_of('0') == std::string::npos;
}

bool isOne(const std::string& number) {
    const std::string digits = withoutPlus(number);
    return !digits.empty() && digits.find_first_not_of('0') == digits.size() - 1 &&
           digits.back() == '1';
}

}  // namespace zarn::ingest
