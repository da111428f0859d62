#include "zarn-ingest/header/Lines.h"

#include <algorithm>

#include "zarn-ingest/header/Characters.h"
#include "zarn-ingest/header/Columns.h"
#include "zarn-ingest/header/IngestError.h"

namespace zarn::ingest {

namespace {

constexpr std::size_t MAX_LINES = 100000;  // far above any header; keeps memory and time bounded
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

/// Whether a line is a row of cards: the first two and most others stand in columns.
bool isRow(const std::vector<std::string>& pieces) {
    if (pieces.size() < 2 || !standsInColumns(pieces[0]) || !standsInColumns(pieces[1]))
        return false;
    const auto blank = std::count_if(pieces.begin(), pieces.end(), isBlank);
    const auto cards = std::count_if(pieces.begin(), pieces.end(), standsInColumns);
    return 2 * cards >= static_cast<std::ptrdiff_t>(pieces.size()) - blank;
}

void addLine(const std::string& line, std::size_t number, Lines& result) {
    const std::vector<std::string> pieces = piecesOf(line);
    if (!isRow(pieces)) {
        result.lines.push_back(readLine(inAscii(line, number, result.repairs), number));
        return;
    }
    result.repairs[Repair::CUT_LINES].add(number);
    for (const std::string& piece : pieces)
        result.lines.push_back(readLine(inAscii(piece, number, result.repairs), number));
}

}  // namespace

Lines linesOf(const std::string& bytes) {
    Lines result;
    const char lineEnd = bytes.find('\n') == std::string::npos ? '\r' : '\n';
    std::size_t number = 0;
    const bool marked = bytes.rfind(BYTE_ORDER_MARK, 0) == 0;
    if (marked) result.repairs[Repair::BYTE_ORDER_MARK].add(1);
    std::size_t at = marked ? sizeof BYTE_ORDER_MARK - 1 : 0;
    while (at < bytes.size()) {
        const std::size_t end = std::min(bytes.find(lineEnd, at), bytes.size());
        const bool carriage = end > at && bytes[end - 1] == '\r';
        if (carriage || (lineEnd == '\r' && end < bytes.size())) result.carriages.add(number + 1);
        addLine(bytes.substr(at, end - at - (carriage ? 1 : 0)), ++number, result);
        if (result.lines.size() > MAX_LINES)
            throw IngestError("has more than " + std::to_string(MAX_LINES) +
                              " lines, no header text file");
        at = end + 1;
    }
    return result;
}

}  // namespace zarn::ingest
