#include "zarn-ingest/header/cards/TableColumns.h"

#include <fitsio.h>

#include <algorithm>
#include <charconv>
#include <limits>
#include <string>

namespace zarn::ingest {

namespace {

constexpr std::size_t MOST_COLUMNS = 999;
constexpr std::size_t MOST_BYTES = std::numeric_limits<int>::max();  // of a row, for every machine

/// A keyword's last card, which is the one that CFITSIO takes.
const LogicalCard* find(const LogicalCards& cards, const std::string& keyword) {
    const auto found = std::find_if(cards.rbegin(), cards.rend(), [&keyword](const auto& card) {
        return card.keyword == keyword;
    });
    return found == cards.rend() ? nullptr : &*found;
}

std::optional<std::size_t> wholeNumber(const LogicalCard* card) {
    if (card == nullptr || card->value.kind != CardValue::Kind::NUMBER) return std::nullopt;
    const std::string& text = card->value.text;
    std::size_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

/// The bytes of a binary column in one row, as CFITSIO counts them.
std::optional<std::size_t> binaryWidth(std::string form) {
    int type = 0;
    LONGLONG repeat = 0;
    long width = 0;
    int status = 0;
    if (fits_binary_tformll(form.data(), &type, &repeat, &width, &status) != 0 || repeat < 0)
        return std::nullopt;
    const auto count = static_cast<std::size_t>(repeat);
    constexpr std::size_t DESCRIPTOR = 8;  // of a column of variable length [bytes]
    constexpr std::size_t BITS = 8;
    if (count > MOST_BYTES) return std::nullopt;
    if (type < 0) return count * DESCRIPTOR * (form.find('Q') != std::string::npos ? 2 : 1);
    if (type == TBIT) return (count + BITS - 1) / BITS;
    if (type == TSTRING) return count;
    constexpr int CODE_TO_BYTES = 10;  // CFITSIO's codes of types hold their sizes
    return count * static_cast<std::size_t>(type / CODE_TO_BYTES);
}

std::optional<std::size_t> asciiWidth(std::string form) {
    int type = 0;
    long width = 0;
    int decimals = 0;
    int status = 0;
    if (fits_ascii_tform(form.data(), &type, &width, &decimals, &status) != 0 || width < 0)
        return std::nullopt;
    return static_cast<std::size_t>(width);
}

/// Where a column ends in a row of which earlier columns fill so many bytes.
std::optional<std::size_t> endOfColumn(const LogicalCards& cards, TableKind kind,
                                       const std::string& number, std::size_t filled) {
    const LogicalCard* const form = find(cards, "TFORM" + number);
    if (form == nullptr || form->value.kind != CardValue::Kind::TEXT) return std::nullopt;
    const bool isBinary = kind == TableKind::BINARY;
    const auto width = isBinary ? binaryWidth(form->value.text) : asciiWidth(form->value.text);
    if (!width) return std::nullopt;
    if (isBinary) return filled + *width;
    const auto begin = wholeNumber(find(cards, "TBCOL" + number));
    if (!begin || *begin < 1 || *begin > MOST_BYTES) return std::nullopt;
    return std::max(filled, *begin - 1 + *width);
}

}  // namespace

std::optional<TableColumns> columnsOf(const LogicalCards& cards, TableKind kind) {
    const auto number = wholeNumber(find(cards, "TFIELDS"));
    if (!number || *number > MOST_COLUMNS) return std::nullopt;
    TableColumns columns = {*number, 0};
    for (std::size_t i = 1; i <= *number; ++i) {
        const auto end = endOfColumn(cards, kind, std::to_string(i), columns.width);
        if (!end || *end > MOST_BYTES) return std::nullopt;
        columns.width = *end;
    }
    return columns;
}

}  // namespace zarn::ingest
