// What both programs read and write: numbers, positions, dates, printable names.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <iterator>
#include <stdexcept>
#include <system_error>
#include <vector>

#include "shared/cli/Printable.h"
#include "shared/files/Reading.h"
#include "shared/sky/Angles.h"
#include "shared/sky/Calendar.h"
#include "shared/sky/Precession.h"
#include "tests/support/TempDir.h"

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

struct Wrong {
    const char* reason;
    std::vector<std::string> texts;
};

/// Checks that a function quotes each text before its reason.
template <typename Parse>
void expectComplaints(Parse parse, const std::vector<Wrong>& rows) {
    for (const auto& [reason, texts] : rows) {
        for (const std::string& text : texts)
            EXPECT_EQ(complaint([&] { parse(text); }), ('"' + text).append("\" ").append(reason));
    }
}

}  // namespace

TEST(AnglesTest, PositionsAreInDegreesOrSexagesimal) {
    const struct {
        const char* text;
        double ra, dec;
    } cases[] = {
        {"\t83.75  -5.5 ", 83.75, -5.5},
        {"05:35:00 -05:30:00", 83.75, -5.5},
        {"5:35 -0:30", 83.75, -0.5},  // the sign of a zero counts
        {"0:0:0.6 0:0:0.36", 0.0025, 0.0001},
        {"24:00:00 90:00:00", 0.0, 90.0},
        {"360 -90", 0.0, -90.0},
        {"23:59:59.99 -90:00:00", 359.99995833333333, -90.0},
        {"1e1 +5e-1", 10.0, 0.5},
    };
    for (const auto& [text, ra, dec] : cases) {
        const Position place = parsePosition(text);
        EXPECT_NEAR(place.ra, ra, 1e-12) << text;
        EXPECT_NEAR(place.dec, dec, 1e-12) << text;
    }
}

TEST(AnglesTest, WhatIsWrongIsQuotedAsItWasGiven) {
    expectComplaints(
        parseDeclination,
        {{"is no number", {"", "-", "5x", "0x10", "nan", "inf", "1e999", "1:1.5.1"}},
         {"is beyond 90", {"-90.1", "90:00:01"}},
         {"must have no sign", {"--5", "-+1:0"}},
         {"has minutes or seconds outside 0 to 60", {"1:60:00", "1:00:60", "89:59:61"}},
         {"is no angle of the form 12:34:56.7",
          {"1.5:00:00", "1:2:3:4", "1:-1:0", "1:1:1e0", "1:", "1::0", "-:1", ":"}}});
    expectComplaints(parseRightAscension, {{"is beyond 360", {"360.1"}},
                                           {"is beyond 24", {"24:00:01", "25:0"}},
                                           {"must have no sign", {"-1", "+1", "-0:30"}}});
    expectComplaints(
        [](const std::string& text) { parsePosition(text); },
        {{"is not a right ascension and a declination", {"", "1", "1 2 3"}},
         {"is neither two numbers in degrees nor two sexagesimal ones", {"1:0:0 1", "1 1:0"}}});
    expectComplaints([](const std::string& text) { parseNumber(text, -0.5, 6.5); },
                     {{"is not from -0.5 to 6.5", {"-0.51", "6.51"}}});
    EXPECT_EQ(complaint([] { parseDeclination("\a"); }), "\"\\x07\" is no number");
    EXPECT_EQ(parseNumber("-0.5", -0.5, 6.5), -0.5);
    EXPECT_EQ(parseNumber("6.5", -0.5, 6.5), 6.5);
}

// Day numbers by the Fliegel & Van Flandern 1968 formula, Communications of the ACM 11, 657.
TEST(CalendarTest, DatesAndInstantsBecomeDays) {
    EXPECT_EQ(mjdOfDate("2000-12-31"), 51909.0);
    EXPECT_EQ(mjdOfInstant("2000-01-01T12:00:00"), 51544.5);
    EXPECT_NEAR(mjdOfInstant("2000-01-01T23:59:59"), 51544.0 + 86399.0 / 86400.0, 1e-11);
    EXPECT_NEAR(mjdOfInstant("2000-01-01T00:00:00.864"), 51544.00001, 1e-11);
    EXPECT_EQ(mjdOfInstant("2016-12-31T23:59:60"), mjdOfInstant("2017-01-01T00:00:00"));
    expectComplaints(
        mjdOfDate,
        {{"is no date of the calendar",
          {"2023-02-29", "2024-13-01", "2024-00-10", "2024-04-31", "2024-04-00"}},
         {"is no date of the form YYYY-MM-DD",
          {"", "24-01-01", "2024-1-1", "2024-01-01 ", "2024/01/01", "202:-01-01", "2024-01-0/"}}});
    expectComplaints(mjdOfInstant, {{"is no instant of the form YYYY-MM-DDThh:mm:ss",
                                     {"2024-01-01", "2024-01-01T12:00", "2024-01-01T12:00:00.",
                                      "2024-01-01T12:00:00Z", "2024-01-01T12:00:00.5e1",
                                      "2024-01-01 12:00:00"}}});
    EXPECT_EQ(complaint([] { mjdOfInstant("2024-01-01T24:00:00"); }), "\"24\" is not from 0 to 23");
    EXPECT_EQ(complaint([] { mjdOfInstant("2024-01-01T12:60:00"); }), "\"60\" is not from 0 to 59");
    EXPECT_EQ(complaint([] { mjdOfInstant("2024-01-01T12:00:61"); }), "\"61\" is not from 0 to 60");
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

// By the angles zeta, z and theta of Capitaine, Wallace & Chapront 2003, A&A 412, 567, and the
// frame bias of the IERS Conventions 2003, evaluated apart from ERFA, whose four angles are others.
TEST(PrecessionTest, EquinoxesMoveAsTheIauOf2006Says) {
    const struct {
        Position from;
        double epoch, mjd;
        Position to;
    } cases[] = {
        {{0.0, 0.0}, 2000.0, 69807.0, {0.640683575, 0.278319723}},
        {{187.25, -88.875}, 1950.0, 61398.0, {192.949230956, -89.297279899}},
        {{83.75, -5.5}, 2100.0, 15385.0, {81.307579948, -5.644040504}},
        {{350.5, 60.25}, 1875.0, 124592.0, {354.228731246, 62.042589658}},
        {{359.5, 45.0}, 2050.0, 69807.5, {359.500017477, 45.000007619}},
    };
    for (const auto& [from, epoch, mjd, to] : cases) {
        const Position found = precessed(from, epoch, mjd);
        EXPECT_NEAR(found.ra, to.ra, 2e-8) << epoch;
        EXPECT_NEAR(found.dec, to.dec, 2e-9) << epoch;
    }
}

TEST(PrintableTest, NothingBreaksALineOrATerminal) {
    const struct {
        std::string text, shown;
    } cases[] = {
        {" a b~", " a b~"},
        {"a\nb\t\x7F\x1F", "a\\x0Ab\\x09\\x7F\\x1F"},
        {"back\\slash", "back\\x5Cslash"},
        {"\xC2\xC2\xA0", "\\xC2\xC2\xA0"},
        {std::string("a\0b", 3), "a\\x00b"},
    };
    for (const auto& [text, shown] : cases) EXPECT_EQ(printable(text), shown);
}

// The first and the last of each row of the Unicode Standard's table of well-formed sequences, and
// what stands next to them; of two bytes, those from U+00A0 on.
TEST(PrintableTest, CharactersAreWellFormed) {
    for (const char* good :
         {"\xC2\xA0", "\xC2\xBF", "\xC3\x80", "\xDF\xBF", "\xE0\xA0\x80", "\xE0\xBF\xBF",
          "\xE1\x80\x80", "\xEC\xBF\xBF", "\xED\x80\x80", "\xED\x9F\xBF", "\xEE\x80\x80",
          "\xEF\xBF\xBF", "\xF0\x90\x80\x80", "\xF0\xBF\xBF\xBF", "\xF1\x80\x80\x80",
          "\xF3\xBF\xBF\xBF", "\xF4\x80\x80\x80", "\xF4\x8F\xBF\xBF"})
        EXPECT_EQ(printable(good), good);
    for (const std::string bad : {"\x80",
                                  "\xBF",
                                  "\xC0\x80",
                                  "\xC1\xBF",
                                  "\xC2\x80",
                                  "\xC2\x9F",
                                  "\xC2\xC0",
                                  "\xDF\x7F",
                                  "\xE0\x80\xAF",
                                  "\xE0\x9F\xBF",
                                  "\xE1\x7F\x80",
                                  "\xE1\x80\xC0",
                                  "\xEC\xBF\x7F",
                                  "\xED\xA0\x80",
                                  "\xED\xBF\xBF",
                                  "\xF0\x80\x80\xAF",
                                  "\xF0\x8F\xBF\xBF",
                                  "\xF1\x80\x80\x7F",
                                  "\xF3\xBF\xC0\xBF",
                                  "\xF4\x90\x80\x80",
                                  "\xF5\x80\x80\x80",
                                  "\xFF"}) {
        EXPECT_EQ(printable(bad).size(), 4 * bad.size()) << printable(bad);
    }
}

TEST(ReadingTest, FilesAreReadWholeAndClosed) {
    const TempDir dir;
    const std::string bytes = std::string(200000, 'x') + std::string("\0\n", 2);
    dir.put("file", bytes);
    ASSERT_EQ(::mkfifo((dir / "pipe").c_str(), 0600), 0);
    const auto descriptors = [] {
        return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
    };
    const auto before = descriptors();
    EXPECT_EQ(readFile(dir / "file"), bytes);
    EXPECT_EQ(readFileOrPipe(dir / "file"), bytes);
    EXPECT_EQ(readFile(dir / "pipe"), "") << "which nobody writes to";
    EXPECT_THROW(readFile(dir / "missing"), std::system_error);
    EXPECT_EQ(descriptors(), before);
    const Descriptor reader(openForReading(dir / "pipe"));
    const Descriptor writer(::open((dir / "pipe").c_str(), O_WRONLY | O_CLOEXEC));
    std::string read;
    EXPECT_TRUE(readChunk(reader.get(), read)) << "nothing yet, but not the end";
}
