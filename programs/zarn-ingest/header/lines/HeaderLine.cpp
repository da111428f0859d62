#include "zarn-ingest/header/lines/HeaderLine.h"

#include <algorithm>
#include <cctype>

#include "zarn-ingest/header/lines/Columns.h"

namespace zarn::ingest {

namespace {

constexpr std::size_t LONGEST_KEYWORD = 40;  // that still leaves a HIERARCH card room [characters]
constexpr std::size_t MOST_WORDS = 4;        // of a keyword; more are a sentence
const char KEYWORD_CHARACTERS[] =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";
const char HIERARCH[] = "HIERARCH ";
constexpr std::size_t HIERARCH_LENGTH = sizeof HIERARCH - 1;

using Kind = HeaderLine::Kind;

/// Words with one blank between them.
std::string normalized(const std::string& words) {
    std::string result;
    for (const char c : trimmed(words)) {
        if (c != ' ' || result.back() != ' ') result += c;
    }
    return result;
}

/// Keywords that a value cannot have: what follows them is read otherwise.
bool isReserved(const std::string& keyword) {
    return keyword == "COMMENT" || keyword == "HISTORY" || keyword == "CONTINUE" ||
           keyword == "END" || keyword == "HIERARCH";
}

/// Whether words before an equals sign are a keyword rather than the beginning of a sentence.
bool isKeywordOfHierarch(const std::string& name, const CardValue& value) {
    const auto blanks = std::count(name.begin(), name.end(), ' ');
    const bool isShort = name.size() <= LONGEST_KEYWORD &&
                         static_cast<std::size_t>(blanks) < MOST_WORDS && !name.empty() &&
                         std::isalnum(static_cast<unsigned char>(name.front())) != 0;
    const bool hasValue = value.kind != CardValue::Kind::UNKNOWN || blanks == 0;
    return isShort && hasValue && !isReserved(upper(name));
}

void readValue(HeaderLine& line, std::size_t equals) {
    const std::string before = line.text.substr(0, equals);
    line.hasHierarch = upper(before.substr(0, HIERARCH_LENGTH)) == HIERARCH;
    const std::string name = normalized(line.hasHierarch ? before.substr(HIERARCH_LENGTH) : before);
    line.value = valueIn(line.text.substr(equals + 1));
    line.keyword = upper(name);
    line.isUpperCase = line.keyword == name;
    const bool isPlain = !line.hasHierarch && isLegalKeyword(name) && !isReserved(line.keyword);
    const std::string& text = line.text;
    line.isHierarch = !isPlain;
    line.isInColumns = line.hasHierarch || (isPlain && equals == KEYWORD_LENGTH && text[0] != ' ' &&
                                            (text.size() == equals + 1 || text[equals + 1] == ' '));
    const bool isNamed = line.hasHierarch && !name.empty() && !isReserved(line.keyword);
    if (isPlain || isNamed || isKeywordOfHierarch(name, line.value)) line.kind = Kind::VALUE;
}

bool isCommentary(const std::string& keyword) {
    return keyword.empty() || keyword == "COMMENT" || keyword == "HISTORY";
}

}  // namespace

bool isLegalKeyword(const std::string& keyword) {
    return !keyword.empty() && keyword.size() <= KEYWORD_LENGTH &&
           keyword.find_first_not_of(KEYWORD_CHARACTERS) == std::string::npos;
}

bool HeaderLine::isSurelyCard() const {
    if (kind == Kind::COMMENTARY) return !keyword.empty();
    if (kind == Kind::VALUE) return hasHierarch || isInColumns || isUpperCase;
    return kind == Kind::CONTINUE || kind == Kind::END;
}

HeaderLine readLine(const std::string& text, std::size_t number) {
    const std::size_t indent = text.find_first_not_of(' ');
    if (indent > 0 && indent < KEYWORD_LENGTH) {
        HeaderLine moved = readLine(text.substr(indent), number);
        moved.isInColumns = false;
        if (moved.kind != Kind::OTHER) return moved;
    }
    HeaderLine line;
    line.text = withoutTrailing(text);
    line.number = number;
    if (line.text.empty()) return line;
    const std::string columns = line.text.substr(0, KEYWORD_LENGTH);
    line.keyword = upper(withoutTrailing(columns));
    line.kind = Kind::OTHER;
    if (upper(line.text) == "END") {
        line.kind = Kind::END;
    } else if (isCommentary(line.keyword)) {
        line.kind = Kind::COMMENTARY;
        line.isUpperCase = padded(line.keyword, columns.size()) == columns;
        line.commentary = line.text.size() > KEYWORD_LENGTH ? line.text.substr(KEYWORD_LENGTH) : "";
    } else if (line.keyword == "CONTINUE" && line.text.find('\'') != std::string::npos) {
        line.kind = Kind::CONTINUE;
        line.value = valueIn(line.text.substr(line.text.find('\'')));
    } else if (const std::size_t equals = line.text.find('='); equals != std::string::npos) {
        readValue(line, equals);
    }
    return line;
}

}  // namespace zarn::ingest
