// What journals hold, where the runs of whole programs do not show it.

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/LogCapture.h"
#include "tests/support/TempDir.h"
#include "zarn-ingest/run/Journal.h"

namespace zarn::ingest {

namespace {

const char OLD[] = "zarn-ingest-2001-09-09.journal";
const std::string TIMES = "2001-09-09T01:46:40.000000\t1000000000.000000\t";

class JournalTest : public ::testing::Test {
protected:
    TempDir dir_;
    LogCapture log_;

    /// Whether a conversion is told of, in a journal of today, by one who recalls these sources.
    bool isToldBy(const std::vector<std::string>& recalled, const std::string& source) const {
        std::vector<Conversion> conversions;
        conversions.emplace_back(Input{source, ""});
        Outcome& outcome = conversions.front().outcome;
        outcome.status = Outcome::Status::CONVERTED;
        outcome.result = "r";
        const std::size_t before = journalsIn(dir_ / ".").size();
        Journal journal(dir_ / ".");
        journal.recall(recalled);
        journal.add(conversions);
        return journalsIn(dir_ / ".").size() > before;
    }
};

}  // namespace

/// Whatever a disk or a person made of other lines, they are passed over.
TEST_F(JournalTest, EntriesAreLinesWithATime) {
    const std::string rest = "\tin/\\x0Aa\tr\tconverted\t3\t2880\t-\n";
    std::string text = "\n\t\t\t\t\t\t\t\t\n" + TIMES + "a\tr\n" + TIMES.substr(0, 44) + rest;
    for (const char* const time : {"", "x", "nan", "-inf", "1e30", "1e400", "12x", "1 2"})
        text.append("2001-09-09\t").append(time).append(rest);
    dir_.put(OLD, text + TIMES + "torn\tr\tconverted\t3\t2880\t-");
    const std::vector<JournalEntry> entries = entriesIn(dir_ / OLD);
    ASSERT_EQ(entries.size(), 1U);
    EXPECT_EQ(entries[0].source, "in/\na");
    EXPECT_EQ(entries[0].seconds, 1e9);
}

TEST_F(JournalTest, ATornLastLineIsCutOff) {
    dir_.put("zarn-ingest-2000-01-01.journal", TIMES + "a\tr\n");
    for (const std::string& whole : {std::string(), TIMES + "a\tr\n"}) {
        dir_.put(OLD, whole + TIMES + "b\tr");
        const Journal journal(dir_ / ".");
        EXPECT_EQ(dir_.get(OLD), whole);
    }
}

/// Journals of long before a source was changed cannot tell of it, and are not read; of what is not
/// there, all may tell. The latest line counts.
TEST_F(JournalTest, JournalsTellOfTheLatestStateOfAFile) {
    dir_.put("a", "");
    const std::string a = dir_ / "a";
    const std::string converted = TIMES + a + "\tr\tconverted\t0\t0\t" + identityOf(a) + "\n";
    const std::string failed = TIMES + a + "\tr\tfailed\t0\t0\t" + identityOf(a) + "\n";
    dir_.put(OLD, failed + converted);
    EXPECT_TRUE(isToldBy({a}, a));
    std::filesystem::remove(presentJournal(dir_ / "."));
    EXPECT_FALSE(isToldBy({"none", a}, a));
    dir_.put(OLD, converted + failed);
    EXPECT_TRUE(isToldBy({"none", a}, a));
}

}  // namespace zarn::ingest
