#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "MoonCards.h"
#include "tests/support/Matches.h"

namespace {

using Lines = std::vector<std::string>;
using State = MoonCards::State;

const std::string START = "SIMPLE  = T\nBITPIX  = 8\nNAXIS   = 0\n";  // lines 1 to 3
const std::string MJD = "MJD-OBS = 61398.0611\n";  // 2026-12-24 01:28 UT: full moon, by an almanac
const std::string RA = "RA      = 90.0\n";
const std::string DEC = "DEC     = -0.5\n";

MoonCards cardsOf(const std::string& cards, Telescope telescope = VEK1) {
    return moonCards(HeaderText(START + cards), telescope);
}

/// The value in the fixed format's columns, 11 to 30, or not a number where there is no such card.
double valueIn(const MoonCards& moon, const std::string& keyword) {
    for (const std::string& line : moon.lines) {
        if (line.rfind(keyword, 0) == 0) return std::stod(line.substr(10, 20));
    }
    return std::nan("");
}

TEST(MoonCardsTest, PositionAndTimeDecideTheState) {
    const struct {
        std::string cards;
        State state;
    } rows[] = {
        {MJD + RA + DEC, State::GIVEN},
        {"DATE-OBS= '2000-01-01T12:00:00'\n" + RA + DEC, State::GIVEN},
        {RA + DEC, State::WITHOUT},
        {MJD + RA, State::WITHOUT},
        {MJD + DEC, State::WITHOUT},
        {MJD + DEC + "RA      = ' '\n", State::WITHOUT},
        {MJD + DEC + "RA      = / none\n", State::WITHOUT},
        {MJD + DEC + "END\n" + RA, State::WITHOUT},
        {MJD + DEC + "RA      = 'nowhere'\n", State::MALFORMED},
        {MJD + DEC + RA + "RA      = 'nowhere'\n", State::GIVEN},  // the first card counts
    };
    for (const auto& [cards, state] : rows) {
        const MoonCards moon = cardsOf(cards);
        EXPECT_EQ(moon.state, state) << cards;
        EXPECT_EQ(moon.lines.size(), state == State::GIVEN ? 5U : 0U) << cards;
        EXPECT_EQ(moon.remarks.size(), state == State::MALFORMED ? 1U : 0U) << cards;
    }
}

TEST(MoonCardsTest, CardsHaveTheFixedFormat) {
    const Lines forms = {
        R"(MOONALT = {14,16}-?[0-9]{1,2}\.[0-9][0-9] / \[deg\] moon altitude, no refraction \(VEK3\))",
        R"(MOONAZ  = {14,17}[0-9]{1,3}\.[0-9][0-9] / \[deg\] moon azimuth, N through E \(VEK3\))",
        R"(MOONDIST= {14,17}[0-9]{1,3}\.[0-9][0-9] / \[deg\] angle between moon and RA, DEC \(VEK3\))",
        R"(MOONFLI = {16}[01]\.[0-9]{3} / illuminated fraction of the moon, 0 to 1 \(VEK3\))",
        R"(MOONPHAS= {16}[01]\.[0-9]{3} / age of the moon over mean synodic month)"};
    const Lines lines = cardsOf(MJD + RA + DEC, VEK3).lines;
    ASSERT_EQ(lines.size(), forms.size());
    for (std::size_t i = 0; i < forms.size(); ++i) {
        EXPECT_FALSE(matched(lines[i], forms[i]).empty()) << lines[i];
        EXPECT_EQ(lines[i].find(" / "), 30U) << lines[i];
        EXPECT_LE(lines[i].size(), 80U) << lines[i];
    }
}

// The general precession in longitude is 5029 arc seconds a century (Lieske et al. 1977, A&A 58,
// 1): 1.397 degrees. It carries the points at right ascensions 0 and 180 along the ecliptic towards
// the moon and away from it: full three days after the solstice, it stands 92 and 88 degrees off.
// Its latitude takes 0.4 % at most; both distances are rounded to 0.01.
TEST(MoonCardsTest, TheEquinoxIsPrecessed) {
    constexpr double CENTURY = 1.397;
    constexpr double TOLERANCE = 0.017;
    const auto distance = [](const std::string& ra, const std::string& equinox) {
        return valueIn(cardsOf(MJD + "RA      = " + ra + "\nDEC     = 0\n" + equinox), "MOONDIST");
    };
    for (const auto& [ra, sign] : {std::pair("0", 1), std::pair("180", -1)}) {
        const double j2000 = distance(ra, "EQUINOX = 2000.0\n");
        EXPECT_NEAR(j2000 - distance(ra, "EQUINOX = 1900\n"), sign * CENTURY, TOLERANCE) << ra;
        EXPECT_NEAR(distance(ra, "EQUINOX = 2100\n") - j2000, sign * CENTURY, TOLERANCE) << ra;
        EXPECT_EQ(distance(ra, ""), j2000) << ra;
    }
}

TEST(MoonCardsTest, FormsOfOneValueGiveOneResult) {
    const struct {
        std::string degrees, other;
    } rows[] = {
        {"RA      = 187.5", "RA      = '12:30:00.0'"}, {"RA      = 187.5", "RA      = ' 12  30 '"},
        {"RA      = 187.5", "RA      = +1.875D2"},     {"DEC     = -0.5", "DEC     = '-00:30:00'"},
        {"DEC     = -0.5", "DEC     = '-0 30'"},       {"DEC     = 45.51", "DEC     = '+45:30:36'"},
        {"DEC     = 45.51", "DEC     = 45.51/ no 45"},
    };
    for (const auto& [degrees, other] : rows) {
        const std::string rest = "\n" + MJD + (degrees[0] == 'R' ? DEC : RA);
        EXPECT_EQ(cardsOf(other + rest).lines, cardsOf(degrees + rest).lines) << other;
    }
    EXPECT_NE(cardsOf(MJD + RA + "DEC     = '-00:30'").lines,
              cardsOf(MJD + RA + "DEC     = '00:30'").lines);
}

TEST(MoonCardsTest, TheModifiedJulianDateWins) {
    const std::string place = RA + DEC;
    const std::string date = "DATE-OBS= '2000-01-01T12:00:00'\n";
    const Lines j2000 = cardsOf("MJD-OBS = 51544.5\n" + place).lines;  // the instant's definition
    EXPECT_EQ(cardsOf(date + place).lines, j2000);
    EXPECT_EQ(cardsOf(date + "MJD-OBS =\n" + place).lines, j2000);
    EXPECT_NE(cardsOf(MJD + place).lines, j2000);
    EXPECT_EQ(cardsOf(date + MJD + place).lines, cardsOf(MJD + place).lines);
    EXPECT_EQ(cardsOf("DATE-OBS= 'unknown'\n" + MJD + place).state, State::GIVEN);
}

TEST(MoonCardsTest, KeywordsThatAreThereAreKept) {
    const MoonCards all = cardsOf(MJD + RA + DEC);
    const MoonCards moon = cardsOf(MJD + "moonfli = 'dark'\n" + RA + DEC + "\nMOONALT = 12.3\n");
    EXPECT_EQ(moon.state, State::GIVEN);
    EXPECT_EQ(moon.lines, (Lines{all.lines[1], all.lines[2], all.lines[4]}));
    ASSERT_EQ(moon.remarks.size(), 2U);
    EXPECT_EQ(moon.remarks[0].line, 9U);
    EXPECT_EQ(moon.remarks[0].text, "MOONALT is there already and is kept");
    EXPECT_EQ(moon.remarks[1].line, 5U);
    EXPECT_EQ(moon.remarks[1].text, "MOONFLI is there already and is kept");
}

TEST(MoonCardsTest, MalformedValuesAreNamedWithTheirLine) {
    const struct {
        std::string before, card, reason;  ///< the card stands behind `before`, from line 4 on
    } rows[] = {
        {"", "RA      = '05:61:00'", "minutes or seconds outside 0 to 60"},
        {MJD, "RA      = 05 35 17.3", "\"05 35 17.3\" is no number"},
        {MJD + DEC, "RA      = 360.5", "is not from 0 to 360"},
        {MJD + RA, "DEC     = '+90:00:01'", "is beyond 90"},
        {RA + "\n" + MJD, "DEC     = T", "is no number"},
        {RA + DEC, "MJD-OBS = 0.0", "is not from 1 to 124593"},
        {RA + DEC + "\n", "DATE-OBS= '2026-02-30T00:00:00'", "is no date of the calendar"},
        {RA + DEC, "DATE-OBS= '1700-01-01T00:00:00'", "is not from 1858-11-18 to 2200-01-01"},
        {RA + DEC + MJD, "EQUINOX = 'J2000'", "is no number"},
        {RA + DEC + MJD + "\n\n", "TIMESYS = 'LOCAL'", "is no time scale near universal time"},
    };
    const std::string behind = "\n" + RA + DEC;
    for (const auto& [before, card, reason] : rows) {
        const std::string keyword = card.substr(0, card.find_first_of(" ="));
        const std::string time = keyword == "DATE-OBS" ? "" : MJD;
        const MoonCards moon = cardsOf((before + card).append(behind).append(time));
        EXPECT_EQ(moon.state, State::MALFORMED) << card;
        EXPECT_EQ(moon.lines, Lines{}) << card;
        ASSERT_EQ(moon.remarks.size(), 1U) << card;
        const std::string& text = moon.remarks[0].text;
        EXPECT_EQ(moon.remarks[0].line, 4U + std::count(before.begin(), before.end(), '\n'));
        EXPECT_EQ(text.rfind("no moon values: " + keyword + ": \"", 0), 0U) << text;
        EXPECT_NE(text.find(reason), std::string::npos) << text;
    }
}

/// The last instant, to a microday, before `ends` holds within the day from MJD 61398 on.
template <typename Ends>
ZarnMoonVal lastBefore(Ends ends, std::string& instant) {
    const auto moonAt = [&instant](int microdays) {
        instant = std::to_string(61398 + microdays * 1e-6);
        return ZarnMoonVal(90.0, -0.5, std::stod(instant), OLAN);
    };
    constexpr int STEP = 20000;  // half an hour: the moon moves by 7 degrees
    int before = 0;
    while (before < 1040000 && (ends(moonAt(before)) || !ends(moonAt(before + STEP))))
        before += STEP;
    for (int width = STEP; width > 1; width = (width + 1) / 2) {
        if (!ends(moonAt(before + width / 2))) before += width / 2;
    }
    return moonAt(before);
}

// From a northern place the moon goes under the pole by azimuth 360. In a microday, 0.09 s, the
// moon moves by less than 0.001 degrees.
TEST(MoonCardsTest, ZeroHasNoSignAndAFullCircleIsZero) {
    std::string instant;
    const ZarnMoonVal low =
        lastBefore([](const ZarnMoonVal& moon) { return moon.getMoonAlt() >= 0.0; }, instant);
    ASSERT_TRUE(low.getMoonAlt() < 0.0 && low.getMoonAlt() > -0.004) << low.getMoonAlt();
    EXPECT_EQ(cardsOf("MJD-OBS = " + instant + "\n" + RA + DEC, OLAN).lines[0].substr(0, 33),
              "MOONALT =                 0.00 / ");
    const ZarnMoonVal north =
        lastBefore([](const ZarnMoonVal& moon) { return moon.getMoonAz() < 180.0; }, instant);
    ASSERT_GT(north.getMoonAz(), 359.996);
    EXPECT_EQ(cardsOf("MJD-OBS = " + instant + "\n" + RA + DEC, OLAN).lines[1].substr(0, 33),
              "MOONAZ  =                 0.00 / ");
}

}  // namespace
