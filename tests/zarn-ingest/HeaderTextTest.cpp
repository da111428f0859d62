#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdint>
#include <filesystem>

#include "tests/support/TempDir.h"
#include "zarn-ingest/header/HeaderText.h"
#include "zarn-ingest/header/IngestError.h"

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

/// Checks that each text is refused for its own reason, or taken.
void expectRefused(const std::vector<Refused>& rows, const std::string& before) {
    for (const auto& [text, beginning] : rows)
        EXPECT_EQ(refusalOf(before + text).substr(0, beginning.size()), beginning) << text;
}

std::string shown(const Loss& loss) {
    return std::to_string(loss.count) + " from " + std::to_string(loss.firstLine);
}

TEST(HeaderTextTest, TheFirstCardsHaveTheirPlaces) {
    EXPECT_EQ(refusalOf(START), "taken");
    EXPECT_EQ(refusalOf(SIMPLE + BITPIX), "taken") << "NAXIS is appended";
    EXPECT_EQ(refusalOf(SIMPLE + BITPIX + "END\nwhatever @ stands here\n"), "taken");
    expectRefused({{SIMPLE, "1: card 2 must be BITPIX: \"(the text ends)\""},
                   {"\n" + START, "1: card 1 must be SIMPLE: \""},
                   {"XTENSION= 'IMAGE   '\n" + BITPIX, "1: card 1 must be SIMPLE: \""},
                   {BITPIX + SIMPLE, "1: card 1 must be SIMPLE: \""},
                   {SIMPLE + "END\n", "2: card 2 must be BITPIX"},
                   {SIMPLE + BITPIX + "OBJECT  = 'x'\nNAXIS   = 0\n", "3: card 3 must be NAXIS"}},
                  "");
}

TEST(HeaderTextTest, ValuesThatDescribeOtherThanAnEmptyFileAreRefused) {
    expectRefused(
        {{"SIMPLE  = 1\n" + BITPIX, "1: SIMPLE is neither T nor F"},
         {SIMPLE + "BITPIX  = 12\n", "2: BITPIX has no legal value: \"BITPIX  = "},
         {SIMPLE + "BITPIX  = -8\n", "2: BITPIX has no legal value: \"BITPIX  = "},
         {SIMPLE + BITPIX + "NAXIS   = two\n", "3: NAXIS is no whole number of up to 9 digits: \""},
         {SIMPLE + BITPIX + "NAXIS   = 1234567890\n", "3: NAXIS is no whole number of up to 9"}},
        "");
    expectRefused(
        {{"GROUPS  = T", "5: GROUPS asks for data"},
         {"PCOUNT  = 7", "5: PCOUNT asks for data"},
         {"PCOUNT  = 0.0", "5: PCOUNT is no whole number of up to 9 digits: \"PCOUNT  = 0.0\""},
         {"GCOUNT  = '1'", "5: GCOUNT is no whole number of up to 9 digits: \"GCOUNT  = '1'\""},
         {"NAXIS2  =", "5: NAXIS2 is no whole number of up to 9 digits: \"NAXIS2  =\""},
         {"NAXIS3  = 1", "5: NAXIS3 would be left over"},
         {"naxis999= 1", "5: NAXIS999 would be left over in a header without data: \"n"},
         {"NAXIS   = 0", "5: NAXIS stands a second time"},
         {"NAXIS2  = +", "5: NAXIS2 is no whole number"},
         {"simple  = T", "5: SIMPLE stands a second time: \"SIMPLE  = T\""}},
        START + "NAXIS1  = 4\n");
    for (const char* legal :
         {"GROUPS  = F", "PCOUNT  = +0", "GCOUNT  = 1", "NAXIS2  = 999999999", "PCOUNT  = 000",
          "SIMPLE2 = 3", "NAXISX  = 'x'", "OBJECT  = 'x'\nOBJECT  = 'y'"})
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
    EXPECT_EQ(header.cards().at(3).keyword + header.cards().at(4).keyword, "ESO NAXIS1ESO END");
    EXPECT_EQ(shown(header.losses().upperCased), "1 from 5");
}

TEST(HeaderTextTest, WrongKeywordsAreExplained) {
    expectRefused({{"OBJECT\t= 'x'", "5: a tab stands in the keyword: \"OBJECT\t= 'x'\""},
                   {"MY KEY  = 1", "5: a blank stands within the keyword: \"MY"},
                   {"OBJECT= 'x'", "5: the equals sign belongs in column 9: \"O"},
                   {"B@D     = 1",
                    "5: the keyword holds other characters than letters, digits, - and _: \"B"},
                   {"gr\xC3\xB6\xC3\x9Fu = 1", "5: the keyword holds other characters"}},
                  START + "COMMENT = what = ever @\n");
}

/// A header of 400 bytes, some of which are another character.
std::string mixed(std::size_t count, char other) {
    const std::string text = START + "COMMENT " + std::string(count, other);
    return text + std::string(400 - text.size(), 'x');
}

TEST(HeaderTextTest, OtherThanTextIsRefusedAsAWhole) {
    const std::string binary = "0: is a binary file, not a header text file";
    const std::string fits = "0: is a FITS file, not a header text file";
    const std::string manyLines = "0: has more than 100000 lines, no header text file";
    expectRefused(
        {{"", "0: is empty"},
         {START + std::string(1, '\0'), binary},
         {mixed(21, '\x01'), binary},
         {mixed(21, '\x7F'), binary},
         {mixed(134, '\xE9'), binary},
         {"SIMPLE  = T\rBITPIX  = 8\rNAXIS   = 0\r", "0: has lines that end in CR alone"},
         {"SIMPLE  = T" + std::string(150, ' '), fits},
         {"XTENSION=" + std::string(151, ' ') + "\n", fits},
         {"\xEF\xBB\xBF" + START, "1: begins with a byte-order mark before the first card"},
         {START + std::string(100001 - 3, '\n'), manyLines},
         {"SIMPLE  = T" + std::string(149, ' '), "1: card 2"},
         {"SIMPLE  = T" + std::string(148, ' ') + "\nx", "2: card 2"},
         {mixed(20, '\x01'), "taken"},
         {mixed(133, '\xE9'), "taken"},
         {mixed(200, '\v'), "taken"},
         {START + std::string(100000 - 3, '\n'), "taken"}},
        "");
}

TEST(HeaderTextTest, OtherThanFilesAreRefused) {
    constexpr std::uintmax_t MOST = 16777216;  // 16 MiB
    const TempDir dir;
    for (const char* name : {"large", "larger"}) dir.put(name, START);
    std::filesystem::resize_file(dir / "large", MOST);
    std::filesystem::resize_file(dir / "larger", MOST + 1);
    ASSERT_EQ(::mkfifo((dir / "pipe").c_str(), 0600), 0);
    for (const auto& [name, expected] :
         {Refused{"large", "0: is a binary file, not a header text file"},
          Refused{"larger", "0: is larger than 16 MiB, not a header text file"},
          Refused{"pipe", "0: is not a regular file"}, Refused{".", "0: is a directory"},
          Refused{"none", "0: cannot be read: No such file or directory"}})
        EXPECT_EQ(refusal([&path = name, &dir] { HeaderText::read(dir / path); }), expected);
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
    EXPECT_EQ(shown(losses.cut), "2 from 6");
    EXPECT_EQ(shown(losses.blanked), "5 from 7");
    EXPECT_EQ(shown(losses.upperCased), "3 from 8");
    EXPECT_EQ(shown(losses.carriage), "4 from 5");
    EXPECT_EQ(shown(losses.oldChecksum), "2 from 12");
    EXPECT_EQ(shown(losses.hidden), "2 from 18");
    EXPECT_EQ(header.cards().back().keyword, "ENDTIME");
    EXPECT_EQ(header.cards().back().number, 14U);
    EXPECT_EQ(header.cards()[6].text, "OBJECT  = 'caf  '");
    EXPECT_EQ(shown(HeaderText(START + "end      of it\n").losses().hidden), "1 from 4");
    EXPECT_EQ(shown(HeaderText(START + "END     \r\n").losses().hidden), "0 from 0");
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
    for (const auto& [card, beginning] :
         {Refused{"OBJECT= 'x'", "0: the equ"}, Refused{"NAXIS   = 0", "0: NAXIS s"},
          Refused{"NAXIS4  = 2", "0: NAXIS4 "}})
        EXPECT_EQ(refusal([&, &line = card] { header.append({line}); }).substr(0, 10), beginning);
}

}  // namespace
