#include "zarn-ingest/header/HeaderText.h"

#include <fitsio.h>
#include <strings.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstring>
#include <filesystem>
#include <functional>
#include <iterator>
#include <sstream>
#include <system_error>

#include "shared/files/Reading.h"
#include "zarn-ingest/header/Fits.h"
#include "zarn-ingest/header/IngestError.h"

namespace {

constexpr std::size_t CARD_LENGTH = 80;
constexpr std::size_t KEYWORD_LENGTH = 8;
constexpr std::uintmax_t MAX_BYTES = 16U << 20U;  // far above any header, as is the next one;
constexpr std::size_t MAX_CARDS = 100000;         // both keep memory and results bounded
constexpr std::size_t MAX_COUNT_DIGITS = 9;       // of a number that every machine holds

// One character in so many, and a file is no text: control characters; these and non-ASCII ones.
constexpr std::size_t CONTROL_SHARE = 20;
constexpr std::size_t UNPRINTABLE_SHARE = 3;

// The cards that a primary header begins with, in this order, and CFITSIO's status without them.
constexpr struct {
    const char* keyword;
    int status;
} MANDATORY[] = {{"SIMPLE", NO_SIMPLE}, {"BITPIX", NO_BITPIX}, {"NAXIS", NO_NAXIS}};

// Keywords that describe the file; CFITSIO takes HIERARCH cards of these names for them, too.
constexpr const char* STRUCTURE[] = {"SIMPLE", "BITPIX", "NAXIS",    "NAXIS1",  "NAXIS2", "GROUPS",
                                     "PCOUNT", "GCOUNT", "CHECKSUM", "DATASUM", "END"};
constexpr const char* BITPIX_VALUES[] = {"8", "16", "32", "64", "-32", "-64"};

template <typename Words>
bool contains(const Words& words, const std::string& word) {
    return std::find(std::begin(words), std::end(words), word) != std::end(words);
}

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

bool isWholeNumber(const std::string& text) {
    const std::size_t sign = text.find_first_of("+-") == 0 ? 1 : 0;
    return text.size() > sign && text.find_first_not_of("0123456789", sign) == std::string::npos;
}

bool isZero(const std::string& text) {
    return isWholeNumber(text) && text.find_first_of("123456789") == std::string::npos;
}

bool isBitpix(const std::string& text) {
    return contains(BITPIX_VALUES, text.rfind('+', 0) == 0 ? text.substr(1) : text);
}

/// Whether the keyword is an axis that the conversion leaves in the header.
bool isLaterAxis(const std::string& keyword) {
    return keyword.rfind("NAXIS", 0) == 0 && keyword != "NAXIS1" && keyword != "NAXIS2" &&
           isWholeNumber(keyword.substr(std::strlen("NAXIS")));
}

bool isHierarch(const Card& card) {
    return card.text.rfind("HIERARCH ", 0) == 0 &&
           (contains(STRUCTURE, card.keyword) || isLaterAxis(card.keyword));
}

/// Why a card's value would make a file that cannot be opened, or that still describes data; empty:
/// it would not. CFITSIO itself crashes on some of these.
std::string wrongValue(const Card& card) {
    const std::string& keyword = card.keyword;
    const std::string value = valueOf(card.text);
    if (isHierarch(card)) return "CFITSIO takes this card for " + keyword;
    if (isLaterAxis(keyword)) return keyword + " would be left over in a header without data";
    if (keyword == "SIMPLE" && value != "T" && value != "F") return "SIMPLE is neither T nor F";
    if (keyword == "BITPIX" && !isBitpix(value)) return "BITPIX has no legal value";
    if (keyword == "GROUPS" && value != "F") return "GROUPS asks for data";
    const bool counts = keyword == "PCOUNT" || keyword == "GCOUNT" || keyword == "NAXIS" ||
                        keyword == "NAXIS1" || keyword == "NAXIS2";
    if (counts && (!isWholeNumber(value) || value.size() > MAX_COUNT_DIGITS))
        return keyword + " is no whole number of up to 9 digits";
    if (keyword == "PCOUNT" && !isZero(value)) return "PCOUNT asks for data";
    return "";
}

/// What is wrong with a line that begins with no legal keyword.
std::string keywordProblem(const std::string& line) {
    const std::string keyword = line.substr(0, KEYWORD_LENGTH);
    const std::size_t equals = keyword.find('=');
    const std::string name = trimmed(keyword.substr(0, equals));
    if (name.find('\t') != std::string::npos) return "a tab stands in the keyword";
    if (name.find(' ') != std::string::npos) return "a blank stands within the keyword";
    if (equals != std::string::npos) return "the equals sign belongs in column 9";
    return "the keyword holds other characters than letters, digits, - and _";
}

bool isBinary(const std::string& bytes) {
    std::size_t control = 0;
    std::size_t unprintable = 0;
    for (const char c : bytes) {
        if (isPrintable(c) || std::isspace(static_cast<unsigned char>(c)) != 0) continue;
        ++unprintable;
        if (std::iscntrl(static_cast<unsigned char>(c)) != 0) ++control;
    }
    return bytes.find('\0') != std::string::npos || control > bytes.size() / CONTROL_SHARE ||
           unprintable > bytes.size() / UNPRINTABLE_SHARE;
}

void refuseOtherThanText(const std::string& bytes) {
    if (bytes.empty()) throw IngestError("is empty");
    const bool hasLines = bytes.find_first_of("\r\n") < 2 * CARD_LENGTH;
    const bool isFits = bytes.rfind("SIMPLE  =", 0) == 0 || bytes.rfind("XTENSION=", 0) == 0;
    if (isFits && !hasLines && bytes.size() > 2 * CARD_LENGTH)
        throw IngestError("is a FITS file, not a header text file");
    if (isBinary(bytes)) throw IngestError("is a binary file, not a header text file");
    if (bytes.find('\n') == std::string::npos && bytes.find('\r') != std::string::npos)
        throw IngestError("has lines that end in CR alone");
    if (bytes.rfind("\xEF\xBB\xBF", 0) == 0)
        throw IngestError("begins with a byte-order mark before the first card", 1);
    const auto lines = std::count(bytes.begin(), bytes.end(), '\n');
    if (static_cast<std::size_t>(lines) > MAX_CARDS)
        throw IngestError("has more than " + std::to_string(MAX_CARDS) +
                          " lines, no header text file");
}

// Errors of a name that leads to no file; any other may pass.
constexpr std::errc NO_FILE[] = {std::errc::no_such_file_or_directory, std::errc::not_a_directory,
                                 std::errc::filename_too_long,
                                 std::errc::too_many_symbolic_link_levels};

[[noreturn]] void failReading(const std::error_code& error) {
    const std::string problem = "cannot be read: " + error.message();
    const auto matches = [&error](std::errc condition) { return error == condition; };
    if (std::any_of(std::begin(NO_FILE), std::end(NO_FILE), matches)) throw IngestError(problem);
    throw InputWaits(problem);
}

void refuseOtherThanFile(const std::string& fileName) {
    std::error_code error;
    const auto status = std::filesystem::status(fileName, error);
    if (status.type() == std::filesystem::file_type::not_found)
        error = std::make_error_code(std::errc::no_such_file_or_directory);
    if (error) failReading(error);
    if (std::filesystem::is_directory(status)) throw IngestError("is a directory");
    if (!std::filesystem::is_regular_file(status)) throw IngestError("is not a regular file");
    if (std::filesystem::file_size(fileName, error) > MAX_BYTES && !error)
        throw IngestError("is larger than " + std::to_string(MAX_BYTES >> 20U) +
                          " MiB, not a header text file");
}

}  // namespace

bool isChecksum(const std::string& keyword) {
    return keyword == "CHECKSUM" || keyword == "DATASUM";
}

HeaderText HeaderText::read(const std::string& fileName) {
    refuseOtherThanFile(fileName);
    try {
        return HeaderText(readFile(fileName));
    } catch (const std::system_error& error) {
        failReading(error.code());
    }
}

HeaderText::HeaderText(const std::string& bytes) {
    refuseOtherThanText(bytes);
    std::istringstream text(bytes);
    std::size_t number = 0;
    for (std::string line; std::getline(text, line);) addLine(line, ++number);
    // The conversion appends a missing NAXIS, which is in its place after two cards only.
    constexpr std::size_t ENOUGH = 2;
    if (cards_.size() < ENOUGH) checkPlace({"", "(the text ends)", "", number});
}

void HeaderText::append(const std::vector<std::string>& lines) {
    for (const std::string& line : lines) addCard(line, 0);
}

std::string HeaderText::text(bool oldChecksums) const {
    std::string text;
    for (const Card& card : cards_) {
        if (oldChecksums || !isChecksum(card.keyword)) text.append(card.line).append("\n");
    }
    return text;
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
    addCard(columns, number);
}

void HeaderText::addCard(const std::string& line, std::size_t number) {
    const std::string asWritten = fitted(line);
    const std::string full = withUpperKeyword(asWritten);
    if (full != asWritten) losses_.upperCased.add(number);
    const Card card = {trimmed(full), line, keywordOf(full), number};
    checkPlace(card);
    int status = 0;
    if (fits_test_keyword(full.c_str(), &status) != 0)
        throw cardError(keywordProblem(line), line, number, status);
    checkCard(card);
    ended_ = card.keyword == "END";
    if (!ended_) cards_.push_back(card);
    if (ended_ && card.text != "END") losses_.hidden.add(number);
}

/// The first cards have their places.
void HeaderText::checkPlace(const Card& card) const {
    const std::size_t place = cards_.size();
    if (place >= std::size(MANDATORY)) return;
    const auto& [keyword, status] = MANDATORY[place];
    const bool naxisIsAppended = place + 1 == std::size(MANDATORY) && card.keyword == "END";
    if (card.keyword == keyword || naxisIsAppended) return;
    throw cardError("card " + std::to_string(place + 1) + " must be " + keyword, card.line,
                    card.number, status);
}

void HeaderText::checkCard(const Card& card) {
    const std::string problem = wrongValue(card);
    if (!problem.empty()) throw IngestError(problem + ": \"" + card.line + "\"", card.number);
    if (isChecksum(card.keyword)) losses_.oldChecksum.add(card.number);
    const bool structural = contains(STRUCTURE, card.keyword) && !isChecksum(card.keyword);
    if (structural && !structure_.emplace(card.keyword, card.number).second)
        throw IngestError(card.keyword + " stands a second time: \"" + card.text + "\"",
                          card.number);
}
