// What both programs read and write: numbers, positions, dates, printable names.

#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>

#include "Angles.h"
#include "Calendar.h"
#include "Precession.h"
#include "Printable.h"

namespace {

/// What a function throws for a text; empty: nothing.
template <typename Parse>
std::string complaint(Parse parse) {
    try {
        parse();
    } catch (const std::invalid_argument& error) {
        return error.what();
    }
    return "";
}

}  // namespace

TEST(AnglesTest, PositionsAreInDegreesOrSexagesimal) {
    const struct {
        const char* text;
        double ra, dec;
    } cases[] = {
        {"83.75 -5.5", 83.75, -5.5},
        {"\t83.75  +5.5 ", 83.75, 5.5},
        {"05:35:00 -05:30:00", 83.75, -5.5},
        {"5:35 -0:30", 83.75, -0.5},  // the sign of a zero counts
        {"0:0:0.6 0:0:0.36", 0.0025, 0.0001},
        {"24:00:00 90:00:00", 0.0, 90.0},
        {"360 -90", 0.0, -90.0},
        {"1e1 5e-1", 10.0, 0.5},
    };
    for (const auto& [text, ra, dec] : cases) {
        const Position place = parsePosition(text);
        EXPECT_NEAR(place.ra, ra, 1e-12) << text;
        EXPECT_NEAR(place.dec, dec, 1e-12) << text;
    }
}

TEST(AnglesTest, WhatIsWrongIsQuotedAsItWasGiven) {
    const struct {
        const char* text;
        const char* reason;
    } cases[] = {
        {"", "\"\" is not a right ascension and a declination"},
        {"1 2 3", "\"1 2 3\" is not a right ascension and a declination"},
        {"361 0", "\"361\" is beyond 360"},
        {"24:00:01 0:0:0", "\"24:00:01\" is beyond 24"},
        {"0 -90.1", "\"-90.1\" is beyond 90"},
        {"-1 0", "\"-1\" must have no sign"},
        {"1 --5", "\"--5\" must have no sign"},
        {"1 5x", "\"5x\" is no number"},
        {"1 0x10", "\"0x10\" is no number"},
        {"1 nan", "\"nan\" is no number"},
        {"1e999 1", "\"1e999\" is no number"},
        {"1:60:00 1:0:0", "\"1:60:00\" has minutes or seconds outside 0 to 60"},
        {"1:00:60 1:0:0", "\"1:00:60\" has minutes or seconds outside 0 to 60"},
        {"1.5:00:00 1:0:0", "\"1.5:00:00\" is no angle of the form 12:34:56.7"},
        {"1:2:3:4 1:0:0", "\"1:2:3:4\" is no angle of the form 12:34:56.7"},
        {"1: 1:0:0", "\"1:\" is no angle of the form 12:34:56.7"},
        {"1:0:0 1", "is neither two numbers in degrees nor two sexagesimal ones"},
    };
    for (const auto& [text, reason] : cases) {
        const std::string found = complaint([&text = text] { parsePosition(text); });
        EXPECT_NE(found.find(reason), std::string::npos) << text << ": " << found;
    }
    EXPECT_EQ(complaint([] { parseNumber("7", 0.0, 6.5); }), "\"7\" is not from 0 to 6.5");
}

TEST(CalendarTest, DatesAndInstantsBecomeDays) {
    EXPECT_EQ(mjdOfDate("1858-11-17"), 0.0);
    EXPECT_EQ(mjdOfDate("2000-01-01"), 51544.0);
    EXPECT_EQ(mjdOfDate("2024-02-29"), 60369.0);
    EXPECT_EQ(mjdOfInstant("2000-01-01T12:00:00"), 51544.5);
    EXPECT_NEAR(mjdOfInstant("2000-01-01T00:00:00.864"), 51544.00001, 1e-11);
    EXPECT_EQ(mjdOfInstant("2016-12-31T23:59:60"), mjdOfInstant("2017-01-01T00:00:00"));
    for (const char* date : {"2023-02-29", "2024-13-01", "2024-00-10", "24-01-01", "2024-1-1",
                             "2024-01-01 ", "2024/01/01", ""})
        EXPECT_NE(complaint([date] { mjdOfDate(date); }), "") << date;
    for (const char* instant : {"2024-01-01", "2024-01-01T24:00:00", "2024-01-01T12:60:00",
                                "2024-01-01T12:00:61", "2024-01-01T12:00", "2024-01-01T12:00:00.",
                                "2024-01-01T12:00:00Z", "2024-01-01T12:00:00.5e1"})
        EXPECT_NE(complaint([instant] { mjdOfInstant(instant); }), "") << instant;
}

TEST(CalendarTest, RoundingComesBeforeSplitting) {
    EXPECT_EQ(secondOf(51544.0 + 86399.4 / 86400.0), "2000-01-01T23:59:59");
    EXPECT_EQ(secondOf(51544.0 + 86399.6 / 86400.0), "2000-01-02T00:00:00");
    EXPECT_EQ(minuteOf(51544.0 + 86370.5 / 86400.0), "2000-01-02T00:00");
    EXPECT_EQ(minuteOf(51544.0 + 86369.5 / 86400.0), "2000-01-01T23:59");
    EXPECT_EQ(minuteOf(-0.25), "1858-11-16T18:00");
    for (int minute = 0; minute < 1440; ++minute) {
        const double mjd = 61000.0 + minute / 1440.0;
        ASSERT_EQ(nearestMinute(mjd), mjd);
        ASSERT_EQ(std::stoi(minuteOf(mjd).substr(14)), minute % 60) << minute;
    }
}

// Lieske 1979's general precession, as the Astronomical Almanac prints it: m = 3.07496 s and
// n = 20.0431 arc seconds a year at J2000.
TEST(PrecessionTest, EquinoxesMoveByTheGeneralPrecession) {
    constexpr double MJD_OF_2050 = 69807.0;
    constexpr double M = 50.0 * 3.07496 * 15.0 / 3600.0;  // [deg in 50 yr]
    constexpr double N = 50.0 * 20.0431 / 3600.0;
    const Position equinox = precessed({0.0, 0.0}, J2000_EPOCH, MJD_OF_2050);
    EXPECT_NEAR(equinox.ra, M, 5e-4);
    EXPECT_NEAR(equinox.dec, N, 5e-4);
    const Position opposite = precessed({180.0, 0.0}, J2000_EPOCH, MJD_OF_2050);
    EXPECT_NEAR(opposite.ra, 180.0 + M, 5e-4);
    EXPECT_NEAR(opposite.dec, -N, 5e-4);
    // There and back, and from one equinox to itself.
    const Position back = precessed(equinox, 2050.0, 51544.5);
    EXPECT_NEAR(std::remainder(back.ra, 360.0), 0.0, 1e-4);
    EXPECT_NEAR(back.dec, 0.0, 1e-4);
    EXPECT_NEAR(precessed({10.0, 20.0}, 2050.0, MJD_OF_2050).ra, 10.0, 1e-4);
}

TEST(PrintableTest, NothingBreaksALineOrATerminal) {
    const struct {
        std::string text, shown;
    } cases[] = {
        {"a b~", "a b~"},
        {"a\nb\t\x7F", "a\\x0Ab\\x09\\x7F"},
        {"back\\slash", "back\\x5Cslash"},
        {"\xCE\xB7 Car \xE2\x98\xBE \xF0\x9F\x8C\x99",
         "\xCE\xB7 Car \xE2\x98\xBE \xF0\x9F\x8C\x99"},
        {"\xC2\x9B", "\\xC2\\x9B"},                    // a control character beyond ASCII
        {"\xC0\xAF", "\\xC0\\xAF"},                    // a slash in two bytes
        {"\xED\xA0\x80", "\\xED\\xA0\\x80"},           // half of a pair
        {"\xF4\x90\x80\x80", "\\xF4\\x90\\x80\\x80"},  // beyond the last character
        {"\xE2\x98", "\\xE2\\x98"},                    // cut
        {std::string("a\0b", 3), "a\\x00b"},
    };
    for (const auto& [text, shown] : cases) EXPECT_EQ(printable(text), shown);
}
