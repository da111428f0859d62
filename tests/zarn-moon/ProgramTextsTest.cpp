// What both programs read and write: numbers, positions, dates, printable names.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <iterator>
#include <stdexcept>
#include <system_error>

#include "shared/cli/Printable.h"
#include "shared/files/Reading.h"
#include "shared/sky/Angles.h"
#include "shared/sky/Calendar.h"
#include "shared/sky/Precession.h"
#include "tests/support/Escapes.h"
#include "tests/support/TempDir.h"
#include "tests/support/Transcript.h"

namespace zarn::moon {

namespace {

constexpr double MILLION = 1e6;  // for as many more digits

/// What a function makes of a text, or its complaint.
std::string answer(const std::string& function, const std::string& text) {
    try {
        if (function == "printable") {
            const std::string shown = printable(text);
            return shown == text ? "as it is" : shown;
        }
        if (function == "position") {
            const auto [ra, dec] = parsePosition(text);
            return std::to_string(ra * MILLION) + " " + std::to_string(dec * MILLION);
        }
        if (function == "date") return std::to_string(mjdOfDate(text));
        if (function == "instant") return std::to_string(mjdOfInstant(text));
        if (function == "declination") return std::to_string(parseDeclination(text));
        if (function == "right-ascension") return std::to_string(parseRightAscension(text));
        return std::to_string(parseNumber(text, -0.5, 6.5));
    } catch (const std::invalid_argument& error) {
        return error.what();
    }
}

}  // namespace

// The well-formed characters are the first and the last of each row of the Unicode Standard's table
// of such sequences, the others stand next to them; of two bytes, those from U+00A0 on.
TEST(ProgramTextsTest, TextsAreReadAndShown) {
    expectTranscript(TEST_DATA "/texts.txt", [](const std::string& command) {
        const std::size_t blank = command.find(' ');
        return answer(command.substr(0, blank), unescaped(command.substr(blank + 1))) + "\n";
    });
}

// Day numbers by the Fliegel & Van Flandern 1968 formula, Communications of the ACM 11, 657.
TEST(CalendarTest, DatesAndInstantsBecomeDays) {
    EXPECT_NEAR(mjdOfInstant("2000-01-01T23:59:59"), 51544.0 + 86399.0 / 86400.0, 1e-11);
    EXPECT_NEAR(mjdOfInstant("2000-01-01T00:00:00.864"), 51544.00001, 1e-11);
    EXPECT_EQ(mjdOfDate("2000-12-31"), 51909.0);
    EXPECT_EQ(mjdOfInstant("2000-01-01T12:00:00"), 51544.5);
    EXPECT_EQ(mjdOfInstant("2016-12-31T23:59:60"), mjdOfInstant("2017-01-01T00:00:00"));
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

}  // namespace zarn::moon
