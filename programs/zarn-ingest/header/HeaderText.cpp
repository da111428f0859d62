#include "zarn-ingest/header/HeaderText.h"

#include <algorithm>
#include <utility>

#include "zarn-ingest/header/IngestError.h"
#include "zarn-ingest/header/cards/CardLayout.h"
#include "zarn-ingest/header/cards/StructuralKeywords.h"
#include "zarn-ingest/header/cards/Structure.h"
#include "zarn-ingest/header/lines/Columns.h"
#include "zarn-ingest/header/lines/HeaderFile.h"
#include "zarn-ingest/header/lines/Lines.h"
#include "zarn-ingest/header/lines/Sections.h"

namespace zarn::ingest {

namespace {

using Kind = HeaderLine::Kind;

/// Whether the first card says that a header begins, which makes the others likelier.
bool beginsAsHeader(const std::vector<HeaderLine>& lines) {
    const auto isCard = [](const HeaderLine& line) { return line.kind == Kind::VALUE; };
    const auto first = std::find_if(lines.begin(), lines.end(), isCard);
    return first != lines.end() && (first->keyword == "SIMPLE" || first->keyword == "XTENSION");
}

/// Makes sure that at least half of the lines are cards. Blank lines do not count, nor do those
/// that begin with eight blanks: they are commentary, and any indented text.
void refuseOtherText(const std::vector<HeaderLine>& lines) {
    const bool begins = beginsAsHeader(lines);
    const auto isCard = [begins](const HeaderLine& line) {
        return line.isSurelyCard() || (begins && line.kind == Kind::VALUE);
    };
    std::size_t counted = 0;
    std::size_t cards = 0;
    for (const HeaderLine& line : lines) {
        if (line.kind == Kind::BLANK || (line.kind == Kind::COMMENTARY && line.keyword.empty()))
            continue;
        ++counted;
        cards += isCard(line) ? 1 : 0;
    }
    const bool hasCards = std::any_of(
        lines.begin(), lines.end(),
        [&isCard](const HeaderLine& line) { return isCard(line) && line.kind != Kind::END; });
    if (!hasCards) throw IngestError("holds no card, so it is no header text");
    if (2 * cards < counted)
        throw IngestError("only " + std::to_string(cards) + " of " + std::to_string(counted) +
                          " lines are cards, so it is no header text");
}

LogicalCards titlesOf(const Section& section, Repairs& repairs) {
    LogicalCards titles;
    for (const HeaderLine& line : section.titles) {
        repairs[Repair::TITLES].add(line.number);
        titles.push_back(commentOf(line.text, line.number));
    }
    return titles;
}

/// Says that texts go on in CONTINUE cards, where that is new.
void announceLongTexts(LogicalCards& cards) {
    const bool continues = std::any_of(
        cards.begin(), cards.end(), [](const LogicalCard& card) { return card.isContinuedAnew; });
    if (!continues) return;
    const bool announced = std::any_of(cards.begin(), cards.end(), [](const LogicalCard& card) {
        return card.keyword == "LONGSTRN";
    });
    if (announced) return;
    LogicalCard card;
    card.keyword = "LONGSTRN";
    card.cards = {fixedCard(card.keyword, "'OGIP 1.0'", "long texts go on in CONTINUE cards")};
    cards.push_back(card);
}

Header headerOf(LogicalCards cards) {
    Header header;
    header.reserve(cards.size());
    for (LogicalCard& card : cards) {
        for (std::string& text : card.cards)
            header.push_back({std::move(text), card.keyword, card.number});
    }
    while (header.back().text.empty()) header.pop_back();  // the first one is SIMPLE or XTENSION
    return header;
}

bool isExtension(const Section& section) {
    const auto isCard = [](const HeaderLine& line) { return line.kind == Kind::VALUE; };
    const auto first = std::find_if(section.lines.begin(), section.lines.end(), isCard);
    return first != section.lines.end() && first->keyword == "XTENSION" && !first->isHierarch;
}

/// Adds the repairs that were found in a line.
void addRepairs(const std::vector<HeaderLine>& lines, Repairs& repairs) {
    for (const HeaderLine& line : lines) {
        for (const auto& [repair, tally] : line.repairs)
            repairs[repair].add(tally.firstLine, tally.count);
    }
}

/// @throw IngestError  naming the repair that comes first in the text, if there is one
void refuseRepairs(const Repairs& repairs) {
    const auto earlier = [](const auto& one, const auto& other) {
        return one.second.firstLine < other.second.firstLine;
    };
    const auto first = std::min_element(repairs.begin(), repairs.end(), earlier);
    if (first == repairs.end()) return;
    const RepairKind& kind = kindOf(first->first);
    throw IngestError(std::string("needs a repair (") + kind.word +
                          "), which --strict forbids: " + kind.found + ": " +
                          std::to_string(first->second.count) + ", the first in this line",
                      first->second.firstLine);
}

}  // namespace

HeaderText::HeaderText(const std::string& bytes, const ReadingOptions& options) {
    refuseOtherThanText(bytes);
    Lines lines = linesOf(bytes);
    refuseOtherText(lines.lines);
    notes_.carriages = lines.carriages;
    std::vector<Section> sections = sectionsOf(std::move(lines.lines), repairs_);
    if (options.primaryOnly && sections.size() > 1) {
        notes_.left.add(sections[1].lines.front().number, sections.size() - 1);
        sections.resize(1);
    }
    // A file begins with a primary header, if only an empty one.
    if (isExtension(sections.front())) sections.emplace(sections.begin());
    for (Section& section : sections) addHeader(std::move(section), sections.size());
    if (options.strict) refuseRepairs(repairs_);
}

void HeaderText::addHeader(Section section, std::size_t count) {
    const bool isPrimary = headers_.empty();
    const HduPosition position = !isPrimary  ? HduPosition::LATER
                                 : count > 1 ? HduPosition::FIRST
                                             : HduPosition::ALONE;
    if (!isPrimary) repairs_[Repair::MORE_HEADERS].add(section.lines.front().number);
    cardCount_ += section.lines.size();
    addRepairs(section.titles, repairs_);
    addRepairs(section.lines, repairs_);
    LogicalCards cards = structured(cardsOf(std::move(section.lines), repairs_, notes_.upperCased),
                                    titlesOf(section, repairs_), position, repairs_);
    announceLongTexts(cards);
    headers_.push_back(headerOf(std::move(cards)));
    for (const Card& card : headers_.back()) {
        if (isChecksum(card.keyword)) notes_.oldChecksums.add(card.number);
    }
}

void HeaderText::append(const std::vector<std::string>& lines) {
    for (const std::string& line : lines)
        headers_.front().push_back({line, std::string(trimmed(line.substr(0, KEYWORD_LENGTH))), 0});
}

void HeaderText::dropChecksums() {
    const auto isOld = [](const Card& card) { return isChecksum(card.keyword); };
    for (Header& header : headers_)
        header.erase(std::remove_if(header.begin(), header.end(), isOld), header.end());
    notes_.oldChecksums = Tally();
}

std::size_t HeaderText::fileSize() const {
    constexpr std::size_t BLOCK = 2880;      // the unit of a file's size [bytes]
    constexpr std::size_t END_AND_SUMS = 3;  // cards that every header may get
    std::size_t size = 0;
    for (const Header& header : headers_)
        size += ((header.size() + END_AND_SUMS) * CARD_LENGTH / BLOCK + 1) * BLOCK;
    return size;
}

}  // namespace zarn::ingest
