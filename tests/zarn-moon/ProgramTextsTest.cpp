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
        if (function == "unprintable") return unprintable(text);
        if (function == "position") {
            const auto [ra, dec] = parsePosition(text);
            return std::to_string(ra * MILLION) + " " + std::to_string(dec * MILLION);
        }
        if (function == "date") return std::to_string(mjdOfDate(text));
        if (function == "instant") return std::to_string(mjdOfInstant(text));
        if (function == "second") return secondOf(std::stod(text));
        if (function == "minute") return minuteOf(std::stod(text));
        if (function == "declination") return std::to_string(parseDeclination(text));
        if (function == "right-ascension") return std::to_string(parseRightAscension(text));
        return std::to_string(parseNumber(text, -0.5, 6.5));
    } catch (const std::invalid_argument& error) {
        return error.what();
    }
}

}  // namespace

// The well-formed characters are the first and the last of each row of the Unicode Standard's table
// of such sequences, the others stand next to them; of two bytes, those from U+00A0 on. Day numbers
// are by the formula of Fliegel & Van Flandern 1968, Communications of the ACM 11, 657.
TEST(ProgramTextsTest, TextsAreReadAndShown) {
    expectTranscript(TEST_DATA "/texts.txt", [](const std::string& command) {
        const std::size_t blank = command.find(' ');
        return answer(command.substr(0, blank), unescaped(command.substr(blank + 1))) + "\n";
    });
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
