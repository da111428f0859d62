#include "HeaderText.h"

#include <fitsio.h>
#include <strings.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstring>
#include <filesystem>
#include <functional>
#include <iterator>
#include <map>
#include <sstream>
#include <system_error>

#include "Fits.h"
#include "IngestError.h"
#include "Reading.h"

namespace {

constexpr std::size_t CARD_LENGTH = 80;
constexpr std::size_t KEYWORD_LENGTH = 8;
constexpr std::uintmax_t MAX_BYTES = 64U << 20U;  // far above any header; keeps memory bounded
constexpr std::size_t BINARY_SHARE = 20;          // one control character in so many: no text

// The cards that a primary header begins with, in this order, and CFITSIO's status without them.
constexpr struct {
    const char* keyword;
    int status;
} MANDATORY[] = {{"SIMPLE", NO_SIMPLE}, {"BITPIX", NO_BITPIX}, {"NAXIS", NO_NAXIS}};
constexpr std::array<const char*, 6> BITPIX_VALUES = {"8", "16", "32", "64", "-32", "-64"};

bool isPrintable(char c) { return c >= ' ' && c <= '~'; }

bool isBlank(const std::string& text) { return text.find_first_not_of(' ') == std::string::npos; }

std::string trimmed(const std::string& text) {
    return text.substr(0, text.find_last_not_of(' ') + 1);  // npos + 1 is 0: nothing
}

/// `problem` with the card concerned and CFITSIO's status.
IngestError cardError(const std::string& problem, const std::string& card, std::size_t line,
                      int status) {
    return IngestError(problem + ": \"" + card + "\" (" + statusText(status) + ")", line);
}

/// What CFITSIO makes of a line before it looks at the keyword: 80 printable characters.
std::string fitted(const std::string& line) {
    std::string card = line.substr(0, CARD_LENGTH);
    std::replace_if(card.begin(), card.end(), std::not_fn(isPrintable), ' ');
    card.resize(CARD_LENGTH, ' ');
    return card;
}

/// How many columns CFITSIO writes in upper case: those before the equals sign, or the keyword's.
std::size_t keywordColumns(const std::string& card) {
    for (const char* commentary : {"COMMENT ", "HISTORY ", "        ", "CONTINUE"}) {
        if (::strncasecmp(card.c_str(), commentary, KEYWORD_LENGTH) == 0) return KEYWORD_LENGTH;
    }
    const std::size_t equals = card.find('=');
    return equals == std::string::npos ? KEYWORD_LENGTH : equals;
}

std::string withUpperKeyword(std::string card) {
    std::transform(card.begin(), card.begin() + static_cast<std::ptrdiff_t>(keywordColumns(card)),
                   card.begin(), [](unsigned char c) { return std::toupper(c); });
    return card;
}

std::string keywordOf(std::string card) {
    std::array<char, FLEN_CARD> name = {};
    int length = 0;
    int status = 0;
    fits_get_keyname(card.data(), name.data(), &length, &status);
    return name.data();
}

/// The value's text; empty where the card has none that CFITSIO can read.
std::string valueOf(std::string card) {
    std::array<char, FLEN_VALUE> value = {};
    int status = 0;
    fits_parse_value(card.data(), value.data(), nullptr, &status);
    return status == 0 ? value.data() : "";
}

bool isWholeNumber(const std::string& text) {
    const std::size_t sign = text.find_first_of("+-") == 0 ? 1 : 0;
    return text.size() > sign && text.find_first_not_of("0123456789", sign) == std::string::npos;
}

bool isZero(const std::string& text) {
    return isWholeNumber(text) && text.find_first_of("123456789") == std::string::npos;
}

/// Whether the keyword is an axis that the conversion leaves in the header.
bool isLaterAxis(const std::string& keyword) {
    return keyword.rfind("NAXIS", 0) == 0 && keyword != "NAXIS1" && keyword != "NAXIS2" &&
           isWholeNumber(keyword.substr(std::strlen("NAXIS")));
}

/// Why a card would still describe data in a header without axes; empty: it would not.
std::string describesData(const Card& card) {
    const std::string value = valueOf(card.text);
    if (isLaterAxis(card.keyword))
        return card.keyword + " would be left over in a header without data";
    if (card.keyword == "GROUPS" && value != "F") return "GROUPS asks for data";
    if (card.keyword == "PCOUNT" && !isZero(value)) return "PCOUNT asks for data";
    if (card.keyword == "GCOUNT" && !isWholeNumber(value)) return "GCOUNT is no whole number";
    return "";
}

void refuseOtherThanText(const std::string& bytes) {
    if (bytes.empty()) throw IngestError("is empty");
    const bool cardsWithoutLines = bytes.compare(0, KEYWORD_LENGTH + 1, "SIMPLE  =") == 0 &&
                                   bytes.size() > CARD_LENGTH + KEYWORD_LENGTH &&
                                   bytes.compare(CARD_LENGTH, KEYWORD_LENGTH, "BITPIX  ") == 0;
    if (cardsWithoutLines) throw IngestError("is a FITS file, not a header text file");
    const auto control = std::count_if(bytes.begin(), bytes.end(), [](unsigned char c) {
        return std::iscntrl(c) != 0 && std::isspace(c) == 0;
    });
    if (bytes.find('\0') != std::string::npos ||
        static_cast<std::size_t>(control) > bytes.size() / BINARY_SHARE)
        throw IngestError("is a binary file, not a header text file");
    if (bytes.rfind("\xEF\xBB\xBF", 0) == 0)
        throw IngestError("begins with a byte-order mark before the first card", 1);
}

void refuseOtherThanFile(const std::string& fileName) {
    std::error_code error;
    const auto status = std::filesystem::status(fileName, error);
    if (error) throw IngestError("cannot be read: " + error.message());
    if (std::filesystem::is_directory(status)) throw IngestError("is a directory");
    if (!std::filesystem::is_regular_file(status)) throw IngestError("is not a regular file");
    if (std::filesystem::file_size(fileName, error) > MAX_BYTES && !error)
        throw IngestError("is larger than " + std::to_string(MAX_BYTES >> 20U) +
                          " MiB, not a header text file");
}

}  // namespace

HeaderText HeaderText::read(const std::string& fileName) {
    refuseOtherThanFile(fileName);
    try {
        return HeaderText(readFile(fileName));
    } catch (const std::system_error& error) {
        throw IngestError(std::string("cannot be read: ") + error.code().message());
    }
}

HeaderText::HeaderText(const std::string& bytes) {
    refuseOtherThanText(bytes);
    std::istringstream text(bytes);
    std::size_t number = 0;
    for (std::string line; std::getline(text, line);) addLine(line, ++number);
    checkStructure();
}

void HeaderText::addLine(const std::string& line, std::size_t number) {
    const bool carriage = !line.empty() && line.back() == '\r';
    const std::string content = carriage ? line.substr(0, line.size() - 1) : line;
    if (carriage) losses_.carriage.add(number);
    if (ended_) {
        if (!isBlank(content)) losses_.hidden.add(number);
        return;
    }
    if (content.size() > CARD_LENGTH && !isBlank(content.substr(CARD_LENGTH)))
        losses_.cut.add(number);
    const std::string columns = content.substr(0, CARD_LENGTH);
    const auto unprintable =
        std::count_if(columns.begin(), columns.end(), std::not_fn(isPrintable));
    losses_.blanked.add(number, static_cast<std::size_t>(unprintable));
    addCard(content, number);
}

void HeaderText::addCard(const std::string& line, std::size_t number) {
    const std::string asWritten = fitted(line);
    const std::string card = withUpperKeyword(asWritten);
    if (card != asWritten) losses_.upperCased.add(number);
    int status = 0;
    if (fits_test_keyword(card.c_str(), &status) != 0)
        throw cardError("illegal keyword", trimmed(line.substr(0, CARD_LENGTH)), number, status);
    const std::string keyword = keywordOf(card);
    if (keyword == "CHECKSUM" || keyword == "DATASUM") losses_.oldChecksum.add(number);
    ended_ = keyword == "END";
    if (ended_) return;
    cards_.push_back({trimmed(card), keyword, number});
    text_ += line + "\n";
}

void HeaderText::checkStructure() const {
    for (std::size_t i = 0; i < std::size(MANDATORY); ++i) {
        const auto& [keyword, status] = MANDATORY[i];
        // The conversion appends a missing NAXIS, which is in its place after two cards only.
        if (i == 2 && cards_.size() == 2 && !ended_) break;
        const Card found = i < cards_.size() ? cards_[i] : Card{"", "", i + 1};
        if (found.keyword != keyword)
            throw cardError(std::string(keyword) + " must stand here", found.text, found.line,
                            status);
    }
    const std::string bitpix = valueOf(cards_[1].text);
    if (std::find(BITPIX_VALUES.begin(), BITPIX_VALUES.end(), bitpix) == BITPIX_VALUES.end())
        throw cardError("BITPIX has no legal value", cards_[1].text, cards_[1].line, BAD_BITPIX);
    std::map<std::string, std::size_t> axes;
    for (const Card& card : cards_) {
        const std::string problem = describesData(card);
        if (!problem.empty()) throw IngestError(problem + ": \"" + card.text + "\"", card.line);
        const bool axis =
            card.keyword == "NAXIS" || card.keyword == "NAXIS1" || card.keyword == "NAXIS2";
        if (axis && !axes.emplace(card.keyword, card.line).second)
            throw IngestError(card.keyword + " stands a second time: \"" + card.text + "\"",
                              card.line);
    }
}
