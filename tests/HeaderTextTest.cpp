#include <gtest/gtest.h>

#include "HeaderText.h"
#include "IngestError.h"

namespace {

const std::string SIMPLE = "SIMPLE  =                    T\n";
const std::string BITPIX = "BITPIX  =                    8\n";
const std::string START = SIMPLE + BITPIX + "NAXIS   =                    0\n";  // lines 1 to 3

/// Why `examine` refuses a text, as "LINE: REASON", or "taken".
template <typename Examine>
std::string refusal(Examine examine) {
    try {
        examine();
    } catch (const IngestError& error) {
        return std::to_string(error.line()) + ": " + error.what();
    }
    return "taken";
}
std::string refusalOf(const std::string& text) {
    return refusal([&text] { HeaderText header(text); });
}

struct Refused {
    std::string text;
    std::string beginning;  ///< of "LINE: REASON"
};

/// Checks that each text is refused for its own reason.
void expectRefused(const std::vector<Refused>& rows, const std::string& before) {
    for (const auto& [text, beginning] : rows)
        EXPECT_EQ(refusalOf(before + text).substr(0, beginning.size()), beginning) << text;
}

void expectLoss(const Loss& loss, std::size_t count, std::size_t firstLine,
                const std::string& name) {
    EXPECT_EQ(loss.count, count) << name;
    EXPECT_EQ(loss.firstLine, firstLine) << name;
}

std::vector<std::string> keywordsOf(const HeaderText& header) {
    std::vector<std::string> keywords;
    for (const Card& card : header.cards()) keywords.push_back(card.keyword);
    return keywords;
}

TEST(HeaderTextTest, TheFirstCardsHaveTheirPlaces) {
    EXPECT_EQ(refusalOf(START), "taken");
    EXPECT_EQ(refusalOf(SIMPLE + BITPIX), "taken") << "NAXIS is appended";
    EXPECT_EQ(refusalOf(SIMPLE + BITPIX + "END\nwhatever @ stands here\n"), "taken");
    expectRefused({{SIMPLE, "1: card 2 must be BITPIX: \"(the text ends)\""},
                   {"\n" + START, "1: card 1 must be SIMPLE"},
                   {"XTENSION= 'IMAGE   '\n" + BITPIX, "1: card 1 must be SIMPLE"},
                   {BITPIX + SIMPLE, "1: card 1 must be SIMPLE"},
                   {SIMPLE + "END\n", "2: card 2 must be BITPIX"},
                   {SIMPLE + BITPIX + "OBJECT  = 'x'\nNAXIS   = 0\n", "3: card 3 must be NAXIS"}},
                  "");
}

TEST(HeaderTextTest, ValuesThatDescribeOtherThanAnEmptyFileAreRefused) {
    expectRefused({{"SIMPLE  = 1\n" + BITPIX, "1: SIMPLE is neither T nor F"},
                   {"SIMPLE  = 'T'\n" + BITPIX, "1: SIMPLE is neither T nor F"},
                   {SIMPLE + "BITPIX  = 12\n", "2: BITPIX has no legal value"},
                   {SIMPLE + "BITPIX  = -8\n", "2: BITPIX has no legal value"},
                   {SIMPLE + BITPIX + "NAXIS   = two\n", "3: NAXIS is no whole number"},
                   {SIMPLE + BITPIX + "NAXIS   = 1234567890\n", "3: NAXIS is no whole number"}},
                  "");
    expectRefused({{"GROUPS  = T", "5: GROUPS asks for data"},
                   {"PCOUNT  = 7", "5: PCOUNT asks for data"},
                   {"PCOUNT  = 0.0", "5: PCOUNT is no whole number"},
                   {"GCOUNT  = '1'", "5: GCOUNT is no whole number"},
                   {"NAXIS2  =", "5: NAXIS2 is no whole number"},
                   {"NAXIS3  = 1", "5: NAXIS3 would be left over"},
                   {"naxis999= 1", "5: NAXIS999 would be left over"},
                   {"NAXIS   = 0", "5: NAXIS stands a second time"},
                   {"simple  = T", "5: SIMPLE stands a second time"}},
                  START + "NAXIS1  = 4\n");
    for (const char* legal : {"GROUPS  = F", "PCOUNT  = +0", "GCOUNT  = 1", "NAXIS2  = 999999999",
                              "NAXISX  = 'x'", "OBJECT  = 'x'\nOBJECT  = 'y'"})
        EXPECT_EQ(refusalOf(START + legal), "taken") << legal;
    for (const char* bits : {"8", "+16", "32", "64", "-32", "-64"})
        EXPECT_EQ(refusalOf(SIMPLE + "BITPIX  = " + bits + "\n"), "taken") << bits;
}

TEST(HeaderTextTest, HierarchCardsOfStructuralNamesAreRefused) {
    const std::string before = START + "\nHIERARCH ";
    for (const char* name : {"SIMPLE", "NAXIS", "NAXIS1", "naxis7", "groups", "CHECKSUM", "END"}) {
        const std::string text = (before + name).append(" = 5");
        EXPECT_EQ(refusalOf(text).rfind("5: CFITSIO takes this card for ", 0), 0) << text;
    }
    const HeaderText header(START + "HIERARCH ESO NAXIS1 = 5\nhierarch eso end = 1\nOBJECT  = 'x'");
    EXPECT_EQ(keywordsOf(header), (std::vector<std::string>{"SIMPLE", "BITPIX", "NAXIS",
                                                            "ESO NAXIS1", "ESO END", "OBJECT"}));
    expectLoss(header.losses().upperCased, 1, 5, "upper-cased");
}

TEST(HeaderTextTest, WrongKeywordsAreExplained) {
    expectRefused({{"OBJECT\t= 'x'", "5: a tab stands in the keyword: \"OBJECT\t= 'x'\""},
                   {"MY KEY  = 1", "5: a blank stands within the keyword"},
                   {"OBJECT= 'x'", "5: the equals sign belongs in column 9"},
                   {"B@D     = 1", "5: the keyword holds other characters"},
                   {"gr\xC3\xB6\xC3\x9Fu = 1", "5: the keyword holds other characters"}},
                  START + "COMMENT = what = ever @\n");
}

TEST(HeaderTextTest, OtherThanTextIsRefusedAsAWhole) {
    const std::string nul("\0", 1);
    expectRefused({{"", "0: is empty"},
                   {START + nul, "0: is a binary file"},
                   {START + std::string(12, '\x01'), "0: is a binary file"},
                   {START + std::string(100, '\xE9'), "0: is a binary file"},
                   {"SIMPLE  = T\rBITPIX  = 8\rNAXIS   = 0\r", "0: has lines that end in CR alone"},
                   {"SIMPLE  = T" + std::string(2869, ' '), "0: is a FITS file"},
                   {"\xEF\xBB\xBF" + START, "1: begins with a byte-order mark"},
                   {START + std::string(100000, '\n'), "0: has more than 100000 lines"}},
                  "");
    EXPECT_EQ(refusalOf(START + std::string(100000 - 3, '\n')), "taken");
}

TEST(HeaderTextTest, EachLossIsCountedWithItsFirstLine) {
    const std::string blank(200, ' ');
    const std::string full = "COMMENT " + std::string(72, 'x');
    const HeaderText header(START + full + blank + "\n" +          // 4: nothing lost
                            full + "\r\n" +                        // 5: CR in column 81
                            full + "y\n" +                         // 6: cut
                            "OBJECT\t\t= 'caf\xC3\xA9'\n" +        // 7: two tabs, two bytes
                            "object  = 'Small'\r\n" +              // 8: upper-cased
                            "comment stays as it is\r\n" +         // 9: upper-cased
                            full + "\xC3\xA9 \n" +                 // 10: cut, not blanked
                            "HISTORY a\rb\n" +                     // 11: CR within
                            "checksum= 'x'\nDATASUM = '0'\n" +     // 12, 13
                            "ENDTIME = 'END'\nEND\n" + blank +     // 14 to 16
                            "\r\n\nOBJECT  = '\xC3\xA9'\nEND\n");  // 18, 19: hidden alone
    const Losses& losses = header.losses();
    expectLoss(losses.cut, 2, 6, "cut");
    expectLoss(losses.blanked, 5, 7, "blanked");
    expectLoss(losses.upperCased, 3, 8, "upper-cased");
    expectLoss(losses.carriage, 4, 5, "carriage returns");
    expectLoss(losses.oldChecksum, 2, 12, "old checksums");
    expectLoss(losses.hidden, 2, 18, "hidden");
    EXPECT_EQ(header.cards().back().keyword, "ENDTIME");
    EXPECT_EQ(header.cards().back().number, 14U);
    EXPECT_EQ(header.cards()[6].text, "OBJECT  = 'caf  '");
}

TEST(HeaderTextTest, TextOnTheEndCardIsHidden) {
    const HeaderText header(START + "end      of it\n");
    expectLoss(header.losses().hidden, 1, 4, "hidden");
    EXPECT_EQ(header.cards().size(), 3U);
    expectLoss(HeaderText(START + "END     \r\n").losses().hidden, 0, 0, "only blanks");
}

TEST(HeaderTextTest, TheTextIsTheLinesUpToColumn80) {
    const std::string full = "COMMENT " + std::string(72, 'x');
    const HeaderText header(START + "datasum = '0'\r\n" + full + "yz\nCHECKSUM= 'x'\n\n" +
                            "object  = 'x'  \r\nEND\nAUTHOR  = 'n'");
    const std::string rest = "\nobject  = 'x'  \n";
    EXPECT_EQ(header.text(true), START + "datasum = '0'\n" + full + "\nCHECKSUM= 'x'\n" + rest);
    EXPECT_EQ(header.text(false), START + full + "\n" + rest);
}

TEST(HeaderTextTest, AppendedCardsStandBeforeEndAndAreExamined) {
    HeaderText header(START + "END\nHIDDEN  = 1\n");
    header.append({"OBJECT  = 'x'", "FILTER  = 'R'"});
    EXPECT_EQ(header.text(true), START + "OBJECT  = 'x'\nFILTER  = 'R'\n");
    EXPECT_EQ(header.cards().back().number, 0U);
    const auto refusalOfCard = [&header](const char* card) {
        return refusal([&] { header.append({card}); }).substr(0, 10);
    };
    EXPECT_EQ(refusalOfCard("OBJECT= 'x'"), "0: the equ");
    EXPECT_EQ(refusalOfCard("NAXIS   = 0"), "0: NAXIS s");
    EXPECT_EQ(refusalOfCard("NAXIS4  = 2"), "0: NAXIS4 ");
}

}  // namespace
