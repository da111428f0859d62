#include "zarn-ingest/header/lines/HeaderLine.h"

#include <algorithm>
#include <cctype>
#include <utility>

#include "zarn-ingest/header/lines/Columns.h"

namespace zarn::ingest {

namespace {

constexpr std::size_t LONGEST_KEYWORD = 40;  // that still leaves a HIERARCH card room [characters]
constexpr std::size_t MOST_WORDS = 4;        // of a keyword; more are a sentence
constexpr std::string_view HIERARCH = "HIERARCH ";
constexpr std::string_view CONTINUE = "CONTINUE";
constexpr std::string_view END = "END";

// Keywords that no value can have: what follows them is read otherwise.
constexpr std::string_view RESERVED[] = {"COMMENT", "HISTORY", CONTINUE, END, "HIERARCH"};
constexpr std::string_view COMMENTARY[] = {"", "COMMENT", "HISTORY"};

using Kind = HeaderLine::Kind;

bool isOfKeywords(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' ||
           c == '_';
}

/// Words with one blank between them.
std::string normalized(std::string_view words) {
    if (words.find("  ") == std::string_view::npos) return std::string(words);
    std::string result;
    for (const char c : words) {
        if (c != ' ' || result.back() != ' ') result += c;
    }
    return result;
}

/// Whether words before an equals sign are a keyword rather than the beginning of a sentence.
bool isKeywordOfHierarch(const std::string& name, const CardValue& value) {
    const auto blanks = std::count(name.begin(), name.end(), ' ');
    const bool isShort = name.size() <= LONGEST_KEYWORD &&
                         static_cast<std::size_t>(blanks) < MOST_WORDS && !name.empty() &&
                         std::isalnum(static_cast<unsigned char>(name.front())) != 0;
    const bool hasValue = value.kind != CardValue::Kind::UNKNOWN || blanks == 0;
    return isShort && hasValue && !isOneOf(upper(name), RESERVED);
}

void readValue(HeaderLine& line, std::size_t equals) {
    const std::string_view text = line.text;
    const std::string_view before = text.substr(0, equals);
    line.hasHierarch =
        before.size() >= HIERARCH.size() && upper(before.substr(0, HIERARCH.size())) == HIERARCH;
    const std::string name =
        normalized(trimmed(line.hasHierarch ? before.substr(HIERARCH.size()) : before));
    line.value = valueIn(text.substr(equals + 1));
    if (line.keyword != name) line.keyword = upper(name);
    line.isUpperCase = line.keyword == name;
    const bool isPlain =
        !line.hasHierarch && isLegalKeyword(name) && !isOneOf(line.keyword, RESERVED);
    line.isHierarch = !isPlain;
    line.isInColumns = line.hasHierarch || (isPlain && equals == KEYWORD_LENGTH &&
                                            (text.size() == equals + 1 || text[equals + 1] == ' '));
    const bool isNamed = line.hasHierarch && !name.empty() && !isOneOf(line.keyword, RESERVED);
    if (isPlain || isNamed || isKeywordOfHierarch(name, line.value)) line.kind = Kind::VALUE;
}

}  // namespace

bool isLegalKeyword(std::string_view keyword) {
    return !keyword.empty() && keyword.size() <= KEYWORD_LENGTH &&
           std::all_of(keyword.begin(), keyword.end(), isOfKeywords);
}

bool HeaderLine::isSurelyCard() const {
    if (kind == Kind::COMMENTARY) return !keyword.empty();
    if (kind == Kind::VALUE) return hasHierarch || isInColumns || isUpperCase;
    return kind == Kind::CONTINUE || kind == Kind::END;
}

HeaderLine readLine(std::string text, std::size_t number) {
    const std::size_t indent = text.find_first_not_of(' ');
    if (indent > 0 && indent < KEYWORD_LENGTH) {
        HeaderLine moved = readLine(text.substr(indent), number);
        moved.isInColumns = false;
        if (moved.kind != Kind::OTHER) return moved;
    }
    HeaderLine line;
    text.resize(withoutTrailing(text).size());
    line.text = std::move(text);
    line.number = number;
    if (line.text.empty()) return line;
    const std::string_view columns = std::string_view{line.text}.substr(0, KEYWORD_LENGTH);
    line.keyword = upper(withoutTrailing(columns));
    line.kind = Kind::OTHER;
    if (line.text.size() == END.size() && line.keyword == END) {
        line.kind = Kind::END;
    } else if (isOneOf(line.keyword, COMMENTARY)) {
        line.kind = Kind::COMMENTARY;
        line.isUpperCase = padded(line.keyword, columns.size()) == columns;
    } else if (line.keyword == CONTINUE && line.text.find('\'') != std::string::npos) {
        line.kind = Kind::CONTINUE;
        line.value = valueIn(std::string_view{line.text}.substr(line.text.find('\'')));
    } else if (const std::size_t equals = line.text.find('='); equals != std::string::npos) {
        readValue(line, equals);
    }
    return line;
}

}  // namespace zarn::ingest
