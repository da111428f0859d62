#include "zarn-ingest/header/cards/CardLayout.h"

#include <algorithm>
#include <utility>

#include "zarn-ingest/header/lines/Columns.h"

namespace zarn::ingest {

namespace {

using Kind = HeaderLine::Kind;

constexpr std::size_t VALUE_WIDTH = 20;   // of the fixed format: columns 11 to 30
constexpr std::size_t LEAST_COMMENT = 8;  // so short a beginning waits for the next card
constexpr std::string_view CONTINUES = "CONTINUE  ";
const char DIVIDER[] = " / ";

std::string prefixOf(const HeaderLine& line) {
    return line.isHierarch ? "HIERARCH " + line.keyword + " = "
                           : padded(line.keyword, KEYWORD_LENGTH) + "= ";
}

std::string withComment(const std::string& card, const std::string& comment) {
    return comment.empty() ? card : card + DIVIDER + comment;
}

/// How many characters of a text fit from a place on, quotes doubled.
std::size_t fitting(const std::string& text, std::size_t begin, std::size_t room) {
    std::size_t end = begin;
    for (std::size_t used = 0; end < text.size(); ++end) {
        used += text[end] == '\'' ? 2 : 1;
        if (used > room) break;
    }
    return end - begin;
}

/// The words at a text's beginning that fit, or of a longer first word its beginning.
std::string_view wordsOf(std::string_view text, std::size_t room) {
    if (text.size() <= room) return text;
    const std::size_t blank = text.rfind(' ', room);
    return withoutTrailing(text.substr(0, blank == std::string_view::npos ? room : blank));
}

/// A text over several cards: all but the last end in '&'. Its comment goes on behind it.
std::vector<std::string> continuedCards(std::string prefix, const std::string& text,
                                        const std::string& comment) {
    constexpr std::size_t SIGN_AND_QUOTE = 2;
    constexpr std::size_t DIVIDER_LENGTH = sizeof DIVIDER - 1;
    std::vector<std::string> cards;
    std::size_t at = 0;    // in the text
    std::size_t said = 0;  // of the comment
    for (;;) {
        std::string card = prefix + "'";
        const std::size_t length = fitting(text, at, CARD_LENGTH - card.size() - SIGN_AND_QUOTE);
        card += withDoubledQuotes(text.substr(at, length));
        at += length;
        const std::size_t used = card.size() + SIGN_AND_QUOTE + DIVIDER_LENGTH;
        const std::size_t room = used < CARD_LENGTH ? CARD_LENGTH - used : 0;
        const bool ends = at == text.size() && comment.size() - said <= room;
        card += ends ? "'" : "&'";
        if (at == text.size() && (ends || room > LEAST_COMMENT)) {
            const std::string part(wordsOf(std::string_view{comment}.substr(said, room + 1), room));
            card = withComment(card, part);
            said += part.size();
            while (said < comment.size() && comment[said] == ' ') ++said;  // readers put one back
        }
        cards.emplace_back(withoutTrailing(card));
        if (ends) return cards;
        prefix = CONTINUES;
    }
}

std::vector<std::string> textCards(const std::string& prefix, const CardValue& value) {
    const std::string card = prefix + quoted(value.text);
    const std::size_t column = KEYWORD_LENGTH + 2 + VALUE_WIDTH;
    for (const std::string& tried :
         {withComment(padded(card, column), value.comment), withComment(card, value.comment)}) {
        if (tried.size() <= CARD_LENGTH) return {std::string(withoutTrailing(tried))};
    }
    return continuedCards(prefix, value.text, value.comment);
}

/// One card whose comment may be cut; none where not even the value fits.
std::vector<std::string> numberCard(const HeaderLine& line, Repairs& repairs) {
    const std::string prefix = prefixOf(line);
    const CardValue& value = line.value;
    const std::size_t indent =
        line.isHierarch || value.text.size() > VALUE_WIDTH ? 0 : VALUE_WIDTH - value.text.size();
    const std::string card = prefix + std::string(indent, ' ') + value.text;
    if (card.size() > CARD_LENGTH) return {};
    const std::string full = withComment(card, value.comment);
    if (full.size() > CARD_LENGTH) repairs[Repair::NUMBER_COMMENTS].add(line.number);
    return {std::string(withoutTrailing(std::string_view{full}.substr(0, CARD_LENGTH)))};
}

std::vector<std::string> commentaryCards(const std::string& keyword, std::string_view text) {
    constexpr std::size_t ROOM = CARD_LENGTH - KEYWORD_LENGTH;
    std::vector<std::string> cards;
    std::size_t at = 0;
    do {
        std::string card = padded(keyword, KEYWORD_LENGTH).append(text.substr(at, ROOM));
        card.resize(withoutTrailing(card).size());
        cards.push_back(std::move(card));
        at += ROOM;
    } while (at < text.size());
    return cards;
}

LogicalCard logicalCard(HeaderLine&& line, std::vector<std::string> cards) {
    LogicalCard card;
    card.keyword = std::move(line.keyword);
    card.value = std::move(line.value);
    card.cards = std::move(cards);
    card.number = line.number;
    card.isHierarch = line.isHierarch;
    return card;
}

/// A line that is a card of the standard already, with its keyword in upper case.
std::string asWritten(HeaderLine& line) {
    if (line.isUpperCase) return std::move(line.text);
    const std::size_t equals = line.text.find('=');
    return upper(std::string_view{line.text}.substr(0, equals)) + line.text.substr(equals);
}

/// A line, and those behind it that continue its text.
class Parts {
public:
    Parts(const HeaderLine* begin, const HeaderLine* end) : begin_(begin), end_(end) {}

    const HeaderLine* begin() const { return begin_; }
    const HeaderLine* end() const { return end_; }
    std::size_t size() const { return static_cast<std::size_t>(end_ - begin_); }
    const HeaderLine& operator[](std::size_t i) const { return begin_[i]; }

private:
    const HeaderLine* begin_;
    const HeaderLine* end_;
};

/// Goes through the lines of one header.
class Layout {
public:
    Layout(std::vector<HeaderLine> lines, Repairs& repairs, Tally& upperCase)
        : lines_(std::move(lines)), repairs_(repairs), upperCase_(upperCase) {}

    LogicalCards cards() {
        while (at_ < lines_.size()) take(lines_[at_++]);
        return std::move(cards_);
    }

private:
    void take(HeaderLine& line) {
        if (!line.isUpperCase && (line.kind == Kind::VALUE || line.kind == Kind::COMMENTARY))
            upperCase_.add(line.number);
        if (line.kind == Kind::VALUE) {
            takeValue(line);
        } else if (line.kind == Kind::COMMENTARY || line.kind == Kind::BLANK) {
            takeCommentary(line);
        } else {
            takeOther(line);
        }
    }

    void takeValue(HeaderLine& line) {
        const Parts parts = partsOf(line);
        const bool exact = std::all_of(parts.begin(), parts.end(), [](const HeaderLine& part) {
            return part.value.isLegal && part.isInColumns && part.text.size() <= CARD_LENGTH;
        });
        if (exact && chains(parts)) {
            std::vector<std::string> cards;
            cards.push_back(asWritten(line));
            for (std::size_t i = 1; i < parts.size(); ++i)
                cards.push_back("CONTINUE" + parts[i].text.substr(KEYWORD_LENGTH));
            cards_.push_back(logicalCard(std::move(line), std::move(cards)));
        } else {
            writeAnew(line, parts);
        }
    }

    /// The line, and those that continue its text.
    Parts partsOf(const HeaderLine& line) {
        const bool isText = line.value.kind == CardValue::Kind::TEXT;
        while (isText && at_ < lines_.size() && lines_[at_].kind == Kind::CONTINUE) ++at_;
        return {&line, lines_.data() + at_};
    }

    /// Whether each text that goes on says so, and the cards stand as the standard wants them.
    static bool chains(const Parts& parts) {
        for (std::size_t i = 0; i < parts.size(); ++i) {
            const std::string& text = parts[i].value.text;
            if (i + 1 < parts.size() && (text.empty() || text.back() != '&')) return false;
            if (i > 0 &&
                upper(std::string_view{parts[i].text}.substr(0, CONTINUES.size())) != CONTINUES)
                return false;
        }
        return true;
    }

    void writeAnew(HeaderLine line, const Parts& parts) {
        joinParts(line.value, parts);
        const HeaderLine joined = line;
        if (line.value.kind == CardValue::Kind::UNKNOWN) line.value.kind = CardValue::Kind::TEXT;
        const bool fits = prefixOf(line).size() + LEAST_COMMENT < CARD_LENGTH;
        const bool isText = line.value.kind == CardValue::Kind::TEXT;
        std::vector<std::string> cards;
        if (fits && isText) cards = textCards(prefixOf(line), line.value);
        if (fits && !isText) cards = numberCard(line, repairs_);
        if (cards.empty()) return takeOther(line);
        noteValue(joined, parts);
        if (line.isHierarch && !line.hasHierarch) repairs_[Repair::OTHER_KEYWORDS].add(line.number);
        cards_.push_back(logicalCard(std::move(line), std::move(cards)));
        cards_.back().isContinuedAnew = cards_.back().cards.size() > 1;
    }

    static void joinParts(CardValue& value, const Parts& parts) {
        for (std::size_t i = 1; i < parts.size(); ++i) {
            if (!value.text.empty() && value.text.back() == '&') value.text.pop_back();
            const CardValue& more = parts[i].value;
            value.text += more.text;
            value.isClosed = value.isClosed && more.isClosed;
            if (!value.comment.empty() && !more.comment.empty()) value.comment += ' ';
            value.comment += more.comment;
        }
    }

    /// Counts why a value is written anew.
    void noteValue(const HeaderLine& line, const Parts& parts) {
        const CardValue& value = line.value;
        if (!value.isClosed) repairs_[Repair::OPEN_QUOTES].add(line.number);
        if (!value.isLegal && value.isClosed) repairs_[Repair::BARE_VALUES].add(line.number);
        if (!line.isInColumns && !line.isHierarch) repairs_[Repair::EQUALS_SIGNS].add(line.number);
        const bool isLong = line.text.size() > CARD_LENGTH || parts.size() > 1;
        if (isLong) repairs_[Repair::LONG_VALUES].add(line.number);
    }

    void takeCommentary(HeaderLine& line) {
        std::string_view commentary = line.text;
        commentary.remove_prefix(std::min(commentary.size(), KEYWORD_LENGTH));
        std::vector<std::string> cards = commentaryCards(line.keyword, commentary);
        if (cards.size() > 1) repairs_[Repair::LONG_COMMENTARY].add(line.number);
        if (!line.isInColumns) repairs_[Repair::EQUALS_SIGNS].add(line.number);
        cards_.push_back(logicalCard(std::move(line), std::move(cards)));
    }

    void takeOther(const HeaderLine& line) {
        repairs_[Repair::NO_CARDS].add(line.number);
        cards_.push_back(commentOf(line.text, line.number));
    }

    std::vector<HeaderLine> lines_;  ///< emptied one by one
    Repairs& repairs_;
    Tally& upperCase_;
    LogicalCards cards_;
    std::size_t at_ = 0;
};

}  // namespace

LogicalCards cardsOf(std::vector<HeaderLine> lines, Repairs& repairs, Tally& upperCase) {
    return Layout(std::move(lines), repairs, upperCase).cards();
}

LogicalCard commentOf(std::string_view text, std::size_t number) {
    LogicalCard card;
    card.keyword = "COMMENT";
    card.cards = commentaryCards(card.keyword, text);
    card.number = number;
    return card;
}

LogicalCard asComment(const LogicalCard& card) {
    LogicalCard comment = commentOf(card.cards.front(), card.number);
    for (std::size_t i = 1; i < card.cards.size(); ++i) {
        for (const std::string& text : commentaryCards(comment.keyword, card.cards[i]))
            comment.cards.push_back(text);
    }
    return comment;
}

std::string fixedCard(const std::string& keyword, const std::string& value,
                      const std::string& comment) {
    const bool isText = value.front() == '\'';
    const std::size_t indent = value.size() < VALUE_WIDTH ? VALUE_WIDTH - value.size() : 0;
    const std::string blanks(indent, ' ');
    const std::string field = isText ? value + blanks : blanks + value;
    std::string card = withComment(padded(keyword, KEYWORD_LENGTH) + "= " + field, comment);
    card.resize(withoutTrailing(card).size());
    return card;
}

}  // namespace zarn::ingest
