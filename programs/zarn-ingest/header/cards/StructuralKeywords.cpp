#include "zarn-ingest/header/cards/StructuralKeywords.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

#include "zarn-ingest/header/lines/Columns.h"

namespace zarn::ingest {

namespace {

constexpr std::string_view BITPIX_VALUES[] = {"8", "16", "32", "64", "-32", "-64"};
constexpr std::string_view BINARY_TABLES[] = {"BINTABLE", "A3DTABLE"};

constexpr std::string_view CHECKSUMS[] = {"CHECKSUM", "DATASUM"};

// CFITSIO takes HIERARCH cards of these names for the keywords themselves.
constexpr std::string_view STRUCTURE[] = {"SIMPLE",  "XTENSION", "BITPIX", "NAXIS",    "EXTEND",
                                          "GROUPS",  "PCOUNT",   "GCOUNT", "CHECKSUM", "DATASUM",
                                          "TFIELDS", "THEAP",    "ZIMAGE", "END"};

}  // namespace

bool isChecksum(std::string_view keyword) { return isOneOf(keyword, CHECKSUMS); }

bool isBinaryTable(std::string_view extension) { return isOneOf(extension, BINARY_TABLES); }

bool isBitpix(std::string_view number) { return isOneOf(number, BITPIX_VALUES); }

int axisOf(const std::string& keyword) {
    constexpr std::size_t NAME = 5;
    const bool hasLength = keyword.size() > NAME && keyword.size() <= KEYWORD_LENGTH;
    if (!hasLength || !begins(keyword, "NAXIS")) return 0;
    if (keyword.find_first_not_of("0123456789", NAME) != std::string::npos) return 0;
    return std::max(1, std::stoi(keyword.substr(NAME)));
}

bool isTakenForStructure(const std::string& name) {
    const bool isOfColumn = name.size() <= KEYWORD_LENGTH && name.front() == 'T' &&
                            name.back() >= '0' && name.back() <= '9';
    return isOneOf(name, STRUCTURE) || axisOf(name) > 0 || isOfColumn;
}

std::string plainNumber(const std::string& number) {
    const bool isSigned = number.find_first_of("+-") == 0;
    const std::size_t digits = number.find_first_not_of('0', isSigned ? 1 : 0);
    if (digits == std::string::npos) return "0";
    return (begins(number, "-") ? "-" : "") + number.substr(digits);
}

}  // namespace zarn::ingest
