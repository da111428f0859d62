#include "shared/cli/Printable.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string_view>

namespace zarn {

namespace {

constexpr unsigned char DELETE = 0x7F;     // the control character after the printable ones
constexpr unsigned char CONTINUES = 0x80;  // first of the bytes after the first of a sequence

/// The byte at an index; 0 after the end.
unsigned char byteAt(const std::string& text, std::size_t at) {
    return at < text.size() ? static_cast<unsigned char>(text[at]) : 0;
}

// The well-formed sequences of UTF-8 by their first byte: how many bytes follow, and the range of
// the second byte. Control characters, U+0080 to U+009F, are left out.
constexpr struct {
    unsigned char first, last;  // first byte
    unsigned char following;
    unsigned char low, high;  // second byte
} SEQUENCES[] = {
    {0xC2, 0xC2, 1, 0xA0, 0xBF}, {0xC3, 0xDF, 1, 0x80, 0xBF}, {0xE0, 0xE0, 2, 0xA0, 0xBF},
    {0xE1, 0xEC, 2, 0x80, 0xBF}, {0xED, 0xED, 2, 0x80, 0x9F}, {0xEE, 0xEF, 2, 0x80, 0xBF},
    {0xF0, 0xF0, 3, 0x90, 0xBF}, {0xF1, 0xF3, 3, 0x80, 0xBF}, {0xF4, 0xF4, 3, 0x80, 0x8F},
};

/// The number of bytes of the printable character at an index; 0 if none begins there.
std::size_t printableAt(const std::string& text, std::size_t at) {
    const unsigned char first = byteAt(text, at);
    if (first < CONTINUES) return first >= ' ' && first != DELETE && first != '\\' ? 1 : 0;
    for (const auto& [begin, end, following, low, high] : SEQUENCES) {
        if (first < begin || first > end) continue;
        const unsigned char second = byteAt(text, at + 1);
        bool whole = second >= low && second <= high;
        for (std::size_t i = 2; i <= following; ++i)
            whole = whole && (byteAt(text, at + i) & 0xC0U) == CONTINUES;
        return whole ? following + 1U : 0;
    }
    return 0;
}

constexpr std::string_view DIGITS = "0123456789ABCDEF";
constexpr std::size_t ESCAPED = 4;  // characters of \xHH

/// The byte for which \xHH stands at an index; nothing if something else is there.
std::optional<char> escapedAt(const std::string& line, std::size_t at) {
    if (line.compare(at, 2, "\\x") != 0 || line.size() - at < ESCAPED) return std::nullopt;
    const std::size_t high = DIGITS.find(line[at + 2]);
    const std::size_t low = DIGITS.find(line[at + 3]);
    if (high == std::string_view::npos || low == std::string_view::npos) return std::nullopt;
    return static_cast<char>(high * DIGITS.size() + low);
}

}  // namespace

std::string printable(const std::string& text) {
    std::string line;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t length = printableAt(text, at);
        if (length == 0) {
            const unsigned char code = byteAt(text, at);
            line.append("\\x")
                .append(1, DIGITS[code / DIGITS.size()])
                .append(1, DIGITS[code % DIGITS.size()]);
        }
        line.append(text, at, length);
        at += std::max<std::size_t>(1, length);
    }
    return line;
}

std::string unprintable(const std::string& line) {
    std::string text;
    for (std::size_t at = 0; at < line.size();) {
        const std::optional<char> escaped = escapedAt(line, at);
        text += escaped.value_or(line[at]);
        at += escaped ? ESCAPED : 1;
    }
    return text;
}

}  // namespace zarn
