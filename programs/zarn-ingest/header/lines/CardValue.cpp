#include "zarn-ingest/header/lines/CardValue.h"

#include <algorithm>
#include <cstddef>

#include "zarn-ingest/header/lines/Columns.h"

namespace zarn::ingest {

namespace {

constexpr std::size_t SHORTEST_TEXT = 8;  // of the fixed format, blanks included [characters]
constexpr char QUOTE = '\'';

std::size_t digitsFrom(std::string_view text, std::size_t at) {
    const std::size_t end = text.find_first_not_of("0123456789", at);
    return (end == std::string_view::npos ? text.size() : end) - at;
}

/// Where the number ends that begins at a place; that place itself: there is none.
std::size_t endOfNumber(std::string_view text, std::size_t begin) {
    std::size_t at = begin;
    const auto stands = [&text, &at](std::string_view characters) {
        return at < text.size() && characters.find(text[at]) != std::string_view::npos;
    };
    if (stands("+-")) ++at;
    const std::size_t whole = digitsFrom(text, at);
    at += whole;
    std::size_t fraction = 0;
    if (stands(".")) at += 1 + (fraction = digitsFrom(text, at + 1));
    if (whole + fraction == 0) return begin;
    if (!stands("EDed")) return at;
    const std::size_t mantissa = at++;
    if (stands("+-")) ++at;
    const std::size_t exponent = digitsFrom(text, at);
    return exponent > 0 ? at + exponent : mantissa;
}

bool isNumber(std::string_view text) {
    return !text.empty() && endOfNumber(text, 0) == text.size();
}

bool isComplex(std::string_view text) {
    const std::size_t comma = text.find(',');
    if (comma == std::string_view::npos || text.front() != '(' || text.back() != ')') return false;
    return isNumber(trimmed(text.substr(1, comma - 1))) &&
           isNumber(trimmed(text.substr(comma + 1, text.size() - comma - 2)));
}

/// The text from behind its opening quote, and where the field goes on.
std::size_t readText(std::string_view field, std::size_t at, CardValue& value) {
    for (;;) {
        const std::size_t quote = std::min(field.find(QUOTE, at), field.size());
        value.text += field.substr(at, quote - at);
        if (quote == field.size()) break;
        at = quote + 1;
        if (at == field.size() || field[at] != QUOTE) return at;
        value.text += QUOTE;  // doubled, it stands for itself
        ++at;
    }
    value.isClosed = value.isLegal = false;
    return field.size();
}

/// A comment, and whether a slash divides it from the value.
void readComment(std::string_view rest, CardValue& value) {
    const std::string_view comment = trimmed(rest);
    const bool divided = comment.empty() || comment.front() == '/';
    value.comment = divided ? trimmed(comment.substr(comment.empty() ? 0 : 1)) : comment;
    value.isLegal = value.isLegal && divided;
}

CardValue quotedText(std::string_view field, std::size_t quote) {
    CardValue value;
    value.kind = CardValue::Kind::TEXT;
    const std::size_t end = readText(field, quote + 1, value);
    value.text.resize(withoutTrailing(value.text).size());
    readComment(field.substr(end), value);
    return value;
}

CardValue::Kind kindOf(std::string_view text) {
    if (text.empty()) return CardValue::Kind::NONE;
    if (text == "T" || text == "F") return CardValue::Kind::LOGICAL;
    if (isNumber(text) || isComplex(text)) return CardValue::Kind::NUMBER;
    return CardValue::Kind::UNKNOWN;
}

}  // namespace

CardValue valueIn(std::string_view field) {
    const std::size_t begin = field.find_first_not_of(' ');
    if (begin != std::string_view::npos && field[begin] == QUOTE) return quotedText(field, begin);
    CardValue value;
    const std::size_t slash = field.find('/');
    value.text = trimmed(field.substr(0, slash));
    value.kind = kindOf(value.text);
    if (slash != std::string_view::npos) value.comment = trimmed(field.substr(slash + 1));
    if (value.kind == CardValue::Kind::UNKNOWN) value.isLegal = false;
    // The standard writes exponents in upper case.
    if (value.kind == CardValue::Kind::NUMBER &&
        value.text.find_first_of("de") != std::string::npos) {
        value.text = upper(value.text);
        value.isLegal = false;
    }
    return value;
}

std::string withDoubledQuotes(const std::string& text) {
    std::string result;
    for (const char c : text) result.append(c == QUOTE ? 2 : 1, c);
    return result;
}

std::string quoted(const std::string& text) {
    return QUOTE + padded(withDoubledQuotes(text), SHORTEST_TEXT) + QUOTE;
}

}  // namespace zarn::ingest
