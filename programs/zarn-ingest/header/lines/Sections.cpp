#include "zarn-ingest/header/lines/Sections.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>

#include "zarn-ingest/header/lines/Columns.h"

namespace zarn::ingest {

namespace {

using Kind = HeaderLine::Kind;

// How the lines begin by which dump programs name a header, behind what they draw around it.
constexpr std::string_view NAMES_OF_HEADERS[] = {"HDU", "EXTENSION", "EXT ", "XTENSION",
                                                 "HEADER OF "};
constexpr char DRAWN[] = "-=*#+<>[]|. ";

/// "--- HDU 1 ---", "# HDU 2 in file.fits:", "=== Extension: SCI ===", "Extension 3:"
bool dividesHeaders(const HeaderLine& line) {
    const std::size_t begin = line.text.find_first_not_of(DRAWN);
    if (begin == std::string::npos) return false;
    const std::string name = upper(std::string_view{line.text}.substr(begin));
    const bool isNumbered = name.find_first_of("0123456789") != std::string::npos;
    return (begin > 0 || isNumbered) &&
           std::any_of(std::begin(NAMES_OF_HEADERS), std::end(NAMES_OF_HEADERS),
                       [&name](std::string_view word) { return begins(name, word); });
}

/// Cards of a header's beginning, before which another one has hardly begun.
bool isOfBeginning(const HeaderLine& line) {
    constexpr std::string_view KEYWORDS[] = {"SIMPLE", "BITPIX", "EXTEND",
                                             "PCOUNT", "GCOUNT", "GROUPS"};
    return begins(line.keyword, "NAXIS") || isOneOf(line.keyword, KEYWORDS);
}

bool isKeyword(const HeaderLine& line, std::string_view keyword) {
    return line.kind == Kind::VALUE && !line.isHierarch && line.keyword == keyword;
}

/// The card behind each line, or none.
std::vector<const HeaderLine*> nextCards(const std::vector<HeaderLine>& lines) {
    std::vector<const HeaderLine*> next(lines.size());
    const HeaderLine* card = nullptr;
    for (std::size_t i = lines.size(); i-- > 0;) {
        next[i] = card;
        if (lines[i].kind != Kind::BLANK && lines[i].kind != Kind::OTHER) card = &lines[i];
    }
    return next;
}

/// Goes through a text and collects its sections.
class Divider {
public:
    Divider(std::vector<HeaderLine> lines, Repairs& repairs)
        : lines_(std::move(lines)), repairs_(repairs), next_(nextCards(lines_)) {}

    std::vector<Section> sections() {
        for (at_ = 0; at_ < lines_.size(); ++at_) take(lines_[at_]);
        close();
        if (!section_.titles.empty()) appendLeftOver();
        return std::move(sections_);
    }

private:
    void take(HeaderLine& line) {
        const bool begins = beginsHeader(line);
        if (begins) close();
        if (line.kind == Kind::END) {
            close();
        } else if (line.kind == Kind::BLANK && section_.lines.empty()) {
            if (sections_.empty()) repairs_[Repair::BLANK_START].add(line.number);
        } else if (line.kind == Kind::OTHER && (begins || isTitle())) {
            section_.titles.push_back(std::move(line));
        } else {
            hasStructure_ = hasStructure_ || isKeyword(line, "SIMPLE") ||
                            isKeyword(line, "XTENSION") || isKeyword(line, "BITPIX");
            hasValue_ = hasValue_ || line.kind == Kind::VALUE;
            hasContent_ = hasContent_ || (line.kind == Kind::VALUE && !isOfBeginning(line));
            section_.lines.push_back(std::move(line));
        }
    }

    /// Whether a line can only stand before a card of another header.
    bool beginsHeader(const HeaderLine& line) const {
        if (isKeyword(line, "XTENSION")) return hasContent_ || (hasValue_ && nextCardIs("BITPIX"));
        if (isKeyword(line, "SIMPLE")) return hasStructure_ && nextCardIs("BITPIX");
        if (line.kind != Kind::OTHER) return false;
        return hasValue_ && (dividesHeaders(line) || nextCardIs("XTENSION") ||
                             (hasStructure_ && nextCardIs("SIMPLE")));
    }

    /// A line that is no card and stands before the first card of its header.
    bool isTitle() const { return section_.lines.empty(); }

    bool nextCardIs(std::string_view keyword) const {
        return next_[at_] != nullptr && isKeyword(*next_[at_], keyword);
    }

    void close() {
        while (!section_.lines.empty() && section_.lines.back().kind == Kind::BLANK)
            section_.lines.pop_back();
        if (section_.lines.empty()) return;  // the titles are the next one's
        if (hasValue_ || sections_.empty()) {
            sections_.push_back(std::move(section_));
        } else {
            appendLeftOver();
        }
        section_ = Section();
        hasStructure_ = false;
        hasValue_ = false;
        hasContent_ = false;
    }

    /// Adds titles that no header follows, and commentary, to the header before.
    void appendLeftOver() {
        std::vector<HeaderLine>& last = sections_.back().lines;
        last.insert(last.end(), section_.titles.begin(), section_.titles.end());
        last.insert(last.end(), section_.lines.begin(), section_.lines.end());
    }

    std::vector<HeaderLine> lines_;  ///< emptied up to the one that is looked at
    Repairs& repairs_;
    std::vector<const HeaderLine*> next_;  ///< the card behind each line
    std::vector<Section> sections_;
    Section section_;
    std::size_t at_ = 0;
    bool hasStructure_ = false;  ///< the section has a card that only a header's beginning has
    bool hasValue_ = false;
    bool hasContent_ = false;  ///< a value that is not of a header's beginning
};

}  // namespace

std::vector<Section> sectionsOf(std::vector<HeaderLine> lines, Repairs& repairs) {
    return Divider(std::move(lines), repairs).sections();
}

}  // namespace zarn::ingest
