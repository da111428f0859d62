#include "zarn-ingest/header/cards/Structure.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "zarn-ingest/header/cards/StructuralKeywords.h"
#include "zarn-ingest/header/cards/TableColumns.h"
#include "zarn-ingest/header/lines/Columns.h"

namespace zarn::ingest {

namespace {

constexpr std::string_view THEAP = "THEAP";
constexpr std::string_view COUNTS[] = {"GROUPS", "PCOUNT", "GCOUNT"};  // of data

/// The cards of one header, from which those that describe the file are taken out.
class Structure {
public:
    Structure(LogicalCards cards, HduPosition position, Repairs& repairs)
        : cards_(std::move(cards)),
          position_(position),
          repairs_(repairs),
          headerLine_(cards_.empty() ? 1 : cards_.front().number),
          isForExtensions_(position == HduPosition::FIRST && cards_.empty()) {}

    LogicalCards structured(const LogicalCards& titles) {
        demoteHierarch();
        findTable();
        if (position_ == HduPosition::LATER) {
            beginExtension();
        } else {
            beginPrimary();
        }
        leaveData();
        begin_.insert(begin_.end(), titles.begin(), titles.end());
        cards_.insert(cards_.begin(), std::make_move_iterator(begin_.begin()),
                      std::make_move_iterator(begin_.end()));
        return std::move(cards_);
    }

private:
    using Cards = LogicalCards;
    using Form = std::string (*)(const std::string&);  ///< the legal value that a text stands for

    /// From here on, no HIERARCH card has the name of a card of the structure.
    void demoteHierarch() {
        for (LogicalCard& card : cards_) {
            if (!card.isHierarch || !isTakenForStructure(card.keyword)) continue;
            repairs_[Repair::NO_CARDS].add(card.number);
            card = asComment(card);
        }
    }

    /// Whether the header is a table's that readers can open.
    void findTable() {
        if (position_ != HduPosition::LATER) return;
        const LogicalCard* const card = find("XTENSION");
        if (card == nullptr) return;
        const std::string name = upper(card->value.text);
        if (name != "TABLE" && !isBinaryTable(name)) return;
        tableName_ = name == "TABLE" ? name : "BINTABLE";
        table_ = columnsOf(cards_, name == "TABLE" ? TableKind::ASCII : TableKind::BINARY);
        if (!table_) repairs_[Repair::BROKEN_TABLES].add(card->number);
    }

    void beginPrimary() {
        require(
            "SIMPLE",
            [](const std::string& text) -> std::string {
                return text == "T" ? text : "T";  // the result does conform
            },
            "file conforms to the FITS standard");
        beginImage();
        arrangeExtend();
        demoteAll("XTENSION");
    }

    /// EXTEND may stand anywhere, once, and must be true where extensions follow.
    void arrangeExtend() {
        const bool follow = position_ == HduPosition::FIRST;
        const auto found = locate("EXTEND");
        if (found == cards_.end()) {
            if (follow) place("EXTEND", "T", "extensions follow", true);
            return;
        }
        const LogicalCard own = *found;
        const bool isRight = own.value.kind == CardValue::Kind::LOGICAL &&
                             (!follow || (own.value.text == "T" && isWellFormed(own)));
        if (!isRight) {
            repairs_[Repair::ARRANGED].add(own.number);
            found->cards = {fixed(own, "T", "")};
            cutComment(*found);
        }
        leaveRepeated("EXTEND", std::next(found));
    }

    void beginImage() {
        require(
            "BITPIX",
            [](const std::string& text) -> std::string {
                const std::string number = plainNumber(text);
                return isBitpix(number) ? number : "8";
            },
            "bits per data value");
        requireAs("NAXIS", "0", "# of axes in frame");
    }

    void beginExtension() {
        takeFormerPrimary();
        if (table_) return beginTable();
        const LogicalCard* const card = find("XTENSION");
        const std::string name = card == nullptr ? "IMAGE" : upper(card->value.text);
        if (card != nullptr && name != "IMAGE") keepAsComment("XTENSION");
        requireAs("XTENSION", quoted("IMAGE"), "image extension");
        beginImage();
        requireAs("PCOUNT", "0", "no heap");
        requireAs("GCOUNT", "1", "one group");
    }

    void beginTable() {
        requireAs("XTENSION", quoted(tableName_), "table extension");
        requireAs("BITPIX", "8", "bytes");
        requireAs("NAXIS", "2", "rows and columns");
        requireAs("NAXIS1", std::to_string(table_->width), "bytes in a row");
        requireAs("NAXIS2", "0", "no rows");
        requireAs("PCOUNT", "0", "no heap");
        requireAs("GCOUNT", "1", "one group");
        requireAs("TFIELDS", std::to_string(table_->number), "columns");
        defuseCompression();
    }

    /// A reader would make an image of the size that ZIMAGE and its like promise.
    void defuseCompression() {
        for (LogicalCard& card : cards_) {
            if (!isKeyword(card, "ZIMAGE")) continue;
            repairs_[Repair::COMPRESSED].add(card.number);
            card.keyword = "WAS ZIMAGE";
            std::string text = "HIERARCH " + card.keyword + " = " + card.value.text;
            if (!card.value.comment.empty()) text += " / " + card.value.comment;
            card.cards = {text};
            cutComment(card);
        }
    }

    /// Puts a card next, in the fixed format and with the value that `form` makes of its own.
    void require(const std::string& keyword, Form form, const std::string& comment) {
        const LogicalCard* const found = find(keyword);
        const std::string own = found == nullptr ? "" : found->value.text;
        place(keyword, form(own), comment, form(own) == own);
    }

    /// Puts a card next that describes no data, whatever it said.
    void requireAs(const std::string& keyword, const std::string& value,
                   const std::string& comment) {
        const LogicalCard* const found = find(keyword);
        const bool same = found == nullptr || found->value.text == valueIn(value).text;
        const bool isCount = keyword == "PCOUNT" || keyword == "GCOUNT";
        if (isCount && !same) repairs_[Repair::AXES].add(found->number);
        const bool isNamed = keyword == "XTENSION" || keyword == "BITPIX";
        place(keyword, value, comment, same || !isNamed);
    }

    /// @param keeps  the card's own value is legal, or no matter
    void place(const std::string& keyword, const std::string& value, const std::string& comment,
               bool keeps) {
        const auto found = locate(keyword);
        LogicalCard card;
        card.keyword = keyword;
        if (found == cards_.end()) {
            if (!isImplied(keyword)) repairs_[Repair::SUPPLIED].add(lineOfMissing());
            card.cards = {fixedCard(keyword, value, comment)};
        } else {
            card.number = found->number;
            card.cards = {fixed(*found, value, comment)};
            cutComment(card);
            const bool arranged = found != cards_.begin() || !keeps || !isWellFormed(*found);
            if (arranged) repairs_[Repair::ARRANGED].add(found->number);
            cards_.erase(found);
            leaveRepeated(keyword, cards_.begin());
        }
        begin_.push_back(std::move(card));
        passAxes();
    }

    /// The card as it stands where it says this already, else in the fixed format with its own
    /// comment. The comment on NAXIS is the conversion's.
    std::string fixed(const LogicalCard& card, const std::string& value,
                      const std::string& comment) const {
        const bool isConversions = card.keyword == "NAXIS" && value == "0";
        if (isConversions) return fixedCard(card.keyword, value, comment);
        const std::string written = fixedCard(card.keyword, value, card.value.comment);
        const std::size_t column = written.find(" /");
        const bool says = card.cards.front().substr(0, column) == written.substr(0, column);
        return says ? card.cards.front() : written;
    }

    /// The cards of the beginning hold no text that could go on.
    void cutComment(LogicalCard& card) {
        std::string& text = card.cards.front();
        if (text.size() <= CARD_LENGTH) return;
        repairs_[Repair::NUMBER_COMMENTS].add(card.number);
        text.resize(CARD_LENGTH);
        text.resize(withoutTrailing(text).size());
    }

    /// Whether a card of the beginning stands in the fixed format.
    static bool isWellFormed(const LogicalCard& card) {
        const CardValue& value = card.value;
        if (card.keyword == "XTENSION") return value.kind == CardValue::Kind::TEXT;
        if (value.kind != CardValue::Kind::NUMBER && value.kind != CardValue::Kind::LOGICAL)
            return false;
        const std::string expected = fixedCard(card.keyword, value.text, "");
        return begins(card.cards.front(), expected);
    }

    /// Leaves out a keyword's cards from a place on.
    void leaveRepeated(const std::string& keyword, const Cards::iterator& begin) {
        leaveWhere(begin, [this, &keyword](const LogicalCard& card) {
            const bool again = isKeyword(card, keyword);
            if (again) repairs_[Repair::REPEATED].add(card.number);
            return again;
        });
    }

    /// Leaves out the cards from a place on for which a condition, asked in their order, is true.
    template <typename Condition>
    void leaveWhere(const Cards::iterator& begin, Condition isLeft) {
        cards_.erase(std::remove_if(begin, cards_.end(), isLeft), cards_.end());
    }

    /// Leaves out the axes that stand next: those beyond the second are told of.
    void passAxes() {
        const auto end = std::find_if_not(cards_.begin(), cards_.end(), [this](const auto& card) {
            return isAxis(card) && !isWanted(card.keyword);
        });
        std::for_each(cards_.begin(), end, [this](const auto& card) { leaveAxis(card); });
        cards_.erase(cards_.begin(), end);
    }

    static bool isAxis(const LogicalCard& card) { return axisOf(card.keyword) > 0; }

    bool isWanted(const std::string& axis) const {
        return table_ && (axis == "NAXIS1" || axis == "NAXIS2");
    }

    void leaveAxis(const LogicalCard& card) {
        constexpr int LAST_OF_CONVERSION = 2;  // these the conversion leaves out in any header
        if (axisOf(card.keyword) > LAST_OF_CONVERSION || !seenAxes_.insert(card.keyword).second)
            repairs_[Repair::AXES].add(card.number);
    }

    /// Leaves out what would describe data.
    void leaveData() {
        leaveWhere(cards_.begin(), [this](const LogicalCard& card) {
            if (isAxis(card)) {
                leaveAxis(card);
                return true;
            }
            const bool isLeft = describesData(card);
            if (isLeft) repairs_[Repair::AXES].add(card.number);
            return isLeft;
        });
    }

    bool describesData(const LogicalCard& card) {
        const std::string& keyword = card.keyword;
        const std::string& text = card.value.text;
        if (keyword == THEAP) return table_.has_value();
        if (!isOneOf(keyword, COUNTS)) return false;
        const bool isNumber = card.value.kind == CardValue::Kind::NUMBER;
        const bool isHarmless = (keyword == "GROUPS" && text == "F") ||
                                (keyword == "PCOUNT" && isNumber && plainNumber(text) == "0") ||
                                (keyword == "GCOUNT" && isNumber && plainNumber(text) == "1");
        return !isHarmless || !seenAxes_.insert(keyword).second;
    }

    /// A further primary header becomes an extension: that is no fault of its cards.
    void takeFormerPrimary() {
        isFormerPrimary_ = find("SIMPLE") != nullptr;
        if (!isFormerPrimary_) return;
        leaveWhere(cards_.begin(), [](const LogicalCard& card) {
            return isKeyword(card, "SIMPLE") || isKeyword(card, "EXTEND");
        });
    }

    /// Cards that come with other repairs, or that a header need not have had.
    bool isImplied(const std::string& keyword) const {
        return isForExtensions_ || keyword == "EXTEND" ||
               (isFormerPrimary_ &&
                (keyword == "XTENSION" || keyword == "PCOUNT" || keyword == "GCOUNT")) ||
               (keyword == "NAXIS1" || keyword == "NAXIS2");
    }

    void keepAsComment(const std::string& keyword) {
        const auto found = locate(keyword);
        cards_.push_back(asComment(*found));
    }

    void demoteAll(const std::string& keyword) {
        for (LogicalCard& card : cards_) {
            if (!isKeyword(card, keyword)) continue;
            repairs_[Repair::ARRANGED].add(card.number);
            card = asComment(card);
        }
    }

    static bool isKeyword(const LogicalCard& card, std::string_view keyword) {
        return card.keyword == keyword;
    }

    Cards::iterator locate(std::string_view keyword) {
        return std::find_if(cards_.begin(), cards_.end(), [keyword](const LogicalCard& card) {
            return isKeyword(card, keyword);
        });
    }

    const LogicalCard* find(std::string_view keyword) {
        const auto found = locate(keyword);
        return found == cards_.end() ? nullptr : &*found;
    }

    /// The line before which a card is missing; if no line is left, that of the header.
    std::size_t lineOfMissing() const {
        return cards_.empty() ? headerLine_ : cards_.front().number;
    }

    Cards cards_;  ///< those not yet placed
    Cards begin_;  ///< those placed
    HduPosition position_;
    Repairs& repairs_;
    std::string tableName_;
    std::optional<TableColumns> table_;
    std::set<std::string> seenAxes_;  ///< and counts of data: a second one is left out
    std::size_t headerLine_;
    bool isForExtensions_;  ///< an empty primary header before a text's extension
    bool isFormerPrimary_ = false;
};

}  // namespace

LogicalCards structured(LogicalCards cards, const LogicalCards& titles, HduPosition position,
                        Repairs& repairs) {
    return Structure(std::move(cards), position, repairs).structured(titles);
}

}  // namespace zarn::ingest
