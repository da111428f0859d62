#include "zarn-ingest/header/moon/Fields.h"

#include <algorithm>

#include "shared/cli/BeginsWith.h"
#include "shared/cli/Printable.h"
#include "shared/sky/Angles.h"
#include "zarn-ingest/header/Fits.h"

namespace zarn::ingest {

namespace {

/// A keyword's card in the first of a text's headers that has it.
const Card* cardOf(const HeaderText& text, const std::string& keyword) {
    for (const Header& header : text.headers()) {
        if (const Card* const card = cardOf(header, keyword)) return card;
    }
    return nullptr;
}

}  // namespace

const Card* cardOf(const Header& header, const std::string& keyword) {
    const auto found = std::find_if(header.begin(), header.end(), [&keyword](const Card& card) {
        return card.keyword == keyword;
    });
    return found == header.end() ? nullptr : &*found;
}

std::optional<Field> fieldOf(const HeaderText& text, const std::string& keyword) {
    const Card* const card = cardOf(text, keyword);
    if (card == nullptr) return std::nullopt;
    const std::string value = valueOf(card->text);  // HeaderText has put `05 35 17.3` in quotes
    if (value.empty() || (isText(value) && textOf(value).empty())) return std::nullopt;
    return Field{keyword, value, card->number};
}

void refuseValue(const std::string& value, const std::string& problem) {
    throw std::invalid_argument("\"" + printable(value) + "\" " + problem);
}

bool isText(const std::string& value) { return beginsWith(value, "'"); }

std::string textOf(const std::string& value) {
    if (!isText(value)) refuseValue(value, "is no text in quotes");
    const std::size_t end = value.find_last_not_of(" '");
    return end == std::string::npos ? "" : value.substr(1, end);
}

double numberOf(const std::string& value, double least, double most) {
    std::string number = value;
    if (value.find_first_not_of("+-.0123456789D") == std::string::npos)
        std::replace(number.begin(), number.end(), 'D', 'E');
    const bool plus = number.find('+') == 0 && number.find('-') != 1;
    return parseNumber(plus ? number.substr(1) : number, least, most);
}

}  // namespace zarn::ingest
