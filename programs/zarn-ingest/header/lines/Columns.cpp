#include "zarn-ingest/header/lines/Columns.h"

#include <algorithm>

namespace zarn::ingest {

std::string_view withoutTrailing(std::string_view text) {
    std::size_t length = text.size();
    while (length > 0 && text[length - 1] == ' ') --length;
    return text.substr(0, length);
}

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
    return withoutTrailing(text);
}

std::string upper(std::string_view text) {
    std::string result(text);
    const auto toUpper = [](char c) {
        const bool isLower = c >= 'a' && c <= 'z';
        return isLower ? static_cast<char>(c - 'a' + 'A') : c;
    };
    std::transform(result.begin(), result.end(), result.begin(), toUpper);
    return result;
}

bool isBlank(std::string_view text) { return trimmed(text).empty(); }

std::string padded(std::string text, std::size_t width) {
    if (text.size() < width) text.resize(width, ' ');
    return text;
}

}  // namespace zarn::ingest
