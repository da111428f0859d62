#include "zarn-ingest/header/lines/Lines.h"

#include <algorithm>
#include <utility>

#include "shared/cli/BeginsWith.h"
#include "zarn-ingest/header/IngestError.h"
#include "zarn-ingest/header/lines/Characters.h"
#include "zarn-ingest/header/lines/Columns.h"

namespace zarn::ingest {

namespace {

constexpr std::size_t MAX_LINES = 100000;  // far above any header; keeps memory and time bounded
constexpr std::size_t USUAL_LINE = 40;     // [bytes]; few texts have shorter ones
const char BYTE_ORDER_MARK[] = "\xEF\xBB\xBF";

/// Whether a line's columns hold a card that stands as the standard wants it.
bool standsInColumns(const std::string& columns) {
    const HeaderLine line = readLine(columns, 0);
    return line.isSurelyCard() && (line.kind != HeaderLine::Kind::VALUE || line.isInColumns);
}

/// A line in pieces of 80 columns.
std::vector<std::string> piecesOf(const std::string& line) {
    std::vector<std::string> pieces;
    for (std::size_t at = 0; at < line.size(); at += CARD_LENGTH)
        pieces.push_back(line.substr(at, CARD_LENGTH));
    return pieces;
}

/// Whether nothing stands in the keyword's columns, as in commentary and blank cards.
bool hasNoKeyword(std::string_view columns) { return isBlank(columns.substr(0, KEYWORD_LENGTH)); }

/// Whether a line is a row of cards: two at least, and at least half of those with a keyword.
bool isRow(const std::vector<std::string>& pieces) {
    if (pieces.size() < 2) return false;
    const auto cards = std::count_if(pieces.begin(), pieces.end(), standsInColumns);
    const auto without = std::count_if(pieces.begin(), pieces.end(), hasNoKeyword);
    return cards >= 2 && 2 * cards >= static_cast<std::ptrdiff_t>(pieces.size()) - without;
}

HeaderLine lineOf(std::string text, std::size_t number) {
    Repairs repairs;
    HeaderLine line = readLine(inAscii(std::move(text), number, repairs), number);
    line.repairs = std::move(repairs);
    return line;
}

void addLine(std::string text, std::size_t number, std::vector<HeaderLine>& lines) {
    std::vector<std::string> pieces;
    if (text.size() > CARD_LENGTH) pieces = piecesOf(text);
    if (!isRow(pieces)) {
        lines.push_back(lineOf(std::move(text), number));
        return;
    }
    const std::size_t first = lines.size();
    for (std::string& piece : pieces) lines.push_back(lineOf(std::move(piece), number));
    lines[first].repairs[Repair::CUT_LINES].add(number);
}

/// Blanks that every line begins with that is not blank.
std::size_t commonIndent(const std::vector<HeaderLine>& lines) {
    std::size_t indent = std::string::npos;
    for (const HeaderLine& line : lines) {
        if (!line.text.empty()) indent = std::min(indent, line.text.find_first_not_of(' '));
    }
    return indent == std::string::npos ? 0 : indent;
}

/// Takes the blanks away that a whole text is indented by.
void takeIndent(std::vector<HeaderLine>& lines) {
    const std::size_t indent = commonIndent(lines);
    if (indent == 0) return;
    for (HeaderLine& line : lines) {
        if (line.text.empty()) continue;
        Repairs repairs = std::move(line.repairs);
        repairs[Repair::INDENTS].add(line.number);
        line = readLine(line.text.substr(indent), line.number);
        line.repairs = std::move(repairs);
    }
}

}  // namespace

Lines linesOf(const std::string& bytes) {
    Lines result;
    const char lineEnd = bytes.find('\n') == std::string::npos ? '\r' : '\n';
    result.lines.reserve(std::min(bytes.size() / USUAL_LINE + 1, MAX_LINES));
    std::size_t number = 0;
    const bool marked = beginsWith(bytes, BYTE_ORDER_MARK);
    std::size_t at = marked ? sizeof BYTE_ORDER_MARK - 1 : 0;
    while (at < bytes.size()) {
        const std::size_t end = std::min(bytes.find(lineEnd, at), bytes.size());
        const bool carriage = end > at && bytes[end - 1] == '\r';
        if (carriage || (lineEnd == '\r' && end < bytes.size())) result.carriages.add(number + 1);
        addLine(bytes.substr(at, end - at - (carriage ? 1 : 0)), ++number, result.lines);
        if (result.lines.size() > MAX_LINES)
            throw IngestError("has more than " + std::to_string(MAX_LINES) +
                              " lines, no header text file");
        at = end + 1;
    }
    takeIndent(result.lines);
    if (marked && !result.lines.empty())
        result.lines.front().repairs[Repair::BYTE_ORDER_MARK].add(1);
    return result;
}

}  // namespace zarn::ingest
