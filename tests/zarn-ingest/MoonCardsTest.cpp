#include <gtest/gtest.h>

#include "zarn-ingest/header/MoonCards.h"

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

TEST(MoonCardsTest, PositionAndTimeDecideTheState) {
    const struct {
        std::string cards;
        State state;
    } rows[] = {
        {MJD + RA + DEC, State::GIVEN},
        {"DATE-OBS= '2000-01-01T12:00:00'\n" + RA + DEC, State::GIVEN},
        {RA + DEC, State::WITHOUT},
        {MJD + RA, State::WITHOUT},
        {MJD + DEC + "RA      = ' '\n", State::WITHOUT},
        {MJD + DEC + "RA      = / none\n", State::WITHOUT},
        {MJD + DEC + "END\n" + RA, State::WITHOUT},
        {MJD + DEC + "RA      = 'nowhere'\n", State::MALFORMED},
        {MJD + DEC + RA + "RA      = 'nowhere'\n", State::GIVEN},  // the first card counts
        {"DATE-OBS= 'unknown'\n" + MJD + RA + DEC, State::GIVEN},  // MJD-OBS wins
        {"DATE-OBS= 'unknown'\nMJD-OBS =\n" + RA + DEC, State::MALFORMED},
    };
    for (const auto& [cards, state] : rows) {
        const MoonCards moon = cardsOf(cards);
        EXPECT_EQ(moon.state, state) << cards;
        EXPECT_EQ(moon.lines.size(), state == State::GIVEN ? 5U : 0U) << cards;
        EXPECT_EQ(moon.remarks.size(), state == State::MALFORMED ? 1U : 0U) << cards;
    }
}

// The series and the precession evaluated apart from this library, with more digits. PyEphem 4.1.4,
// another theory, is within 0.17 degrees of the moon's place, 0.0005 of its lit fraction and 0.0001
// of its age. The last three lie at -0.003 degrees of altitude, 359.997 and 359.993 of azimuth.
TEST(MoonCardsTest, ValuesAreThoseOfTheExposure) {
    const std::string place =
        "MJD-OBS = 61364.09314236\nRA      = 83.822083\nDEC     = -5.391111\n";
    const std::string pole = "RA      = 282.5\nDEC     = 89.5/ no 45\nEQUINOX = 1950.0";
    const struct {
        std::string cards;
        Telescope telescope;
        std::string values;
    } rows[] = {
        {"MJD-OBS = +6.13980611D4\n" + RA + DEC, VEK1, "17.37 41.62 28.66 0.998 0.509 (VEK1)"},
        {place + "EQUINOX = 2026.8857", VEK3, "47.83 314.53 87.43 0.750 0.366 (VEK3)"},
        {"DATE-OBS= '2023-02-25T18:00:00'\nRA      = '10:00:00'\nDEC     = '+20 00'", OLAN,
         "59.80 233.73 97.18 0.339 0.185 (OLAN)"},
        {MJD + "RA      = 0.0\nDEC     = 0\nEQUINOX = 1900", VEK2,
         "17.37 41.62 90.95 0.998 0.509 (VEK2)"},
        {MJD + "RA      = '12 00'\nDEC     = '-00:30:00'\nEQUINOX = +2100", VEK4,
         "17.37 41.62 86.50 0.998 0.509 (VEK4)"},
        {"MJD-OBS = +51544.5\n" + pole, OLAN, "12.15 244.29 101.03 0.232 0.832 (OLAN)"},
        {"MJD-OBS = 61398.3081\nRA      = '06:00:00'\n" + DEC, OLAN,
         "0.00 304.56 27.26 0.999 0.517 (OLAN)"},
        {"MJD-OBS = 61398.504283\nRA      = ' 6  00 0.0 '\n" + DEC, OLAN,
         "-25.56 0.00 27.77 0.997 0.524 (OLAN)"},
        {"MJD-OBS = 61398.504271\n" + RA + DEC, OLAN, "-25.56 359.99 27.77 0.997 0.524 (OLAN)"},
    };
    for (const auto& [cards, telescope, values] : rows) {
        const Lines lines = cardsOf(cards, telescope).lines;
        std::string found;  // in the fixed format's columns, 11 to 30
        for (const std::string& line : lines) {
            const std::string columns = line.substr(10, 20);
            found += columns.substr(columns.find_last_of(' ') + 1) + " ";
        }
        EXPECT_EQ(found + lines.at(0).substr(lines.at(0).find('(')), values) << cards;
    }
}

TEST(MoonCardsTest, LimitsThemselvesAreLegal) {
    Lines legal = {"RA      = 0",        "RA      = 360.0",       "RA      = '24:00'",
                   "DEC     = -90",      "DEC     = '+90:00:00'", "MJD-OBS = 1.0",
                   "MJD-OBS = 124593",   "EQUINOX = 1800",        "EQUINOX = 2200.0",
                   "TIMESYS = 'TT(TAI)'"};
    for (const char* scale :
         {"UTC", "UT", "UT1", "GMT", "TAI", "IAT", "TT", "TDT", "ET", "TDB", "TCG", "TCB", "GPS"})
        legal.push_back("TIMESYS = '" + std::string(scale) + " '");
    const std::string place = "\n" + RA + DEC;
    const std::string exposure = place + MJD;
    for (const std::string& card : legal)
        EXPECT_EQ(cardsOf(card + exposure).state, State::GIVEN) << card;
    for (const char* date : {"DATE-OBS= '1858-11-18T00:00:00'", "DATE-OBS= '2200-01-01T00:00:00'"})
        EXPECT_EQ(cardsOf(date + place).state, State::GIVEN) << date;
}

TEST(MoonCardsTest, MalformedValuesAreNamedWithTheirLine) {
    const struct {
        std::string cards;
        std::size_t line;
        std::string text;
    } rows[] = {
        {MJD + RA + "\nDEC     = T", 7, "DEC: \"T\" is no number"},
        {RA + DEC + "MJD-OBS = 0.9", 6, "MJD-OBS: \"0.9\" is not from 1 to 124593"},
        {MJD + RA + DEC + "TIMESYS = 'X'", 7,
         "TIMESYS: \"'X'\" is no time scale near universal time"},
    };
    for (const auto& [cards, line, text] : rows) {
        const MoonCards moon = cardsOf(cards);
        EXPECT_EQ(moon.state, State::MALFORMED) << text;
        EXPECT_EQ(moon.lines, Lines{}) << text;
        ASSERT_EQ(moon.remarks.size(), 1U) << text;
        EXPECT_EQ(moon.remarks[0].line, line) << text;
        EXPECT_EQ(moon.remarks[0].text, "no moon values: " + text);
    }
}

}  // namespace
