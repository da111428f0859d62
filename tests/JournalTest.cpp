#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <filesystem>

#include "Journal.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Matches.h"
#include "tests/support/TempDir.h"

namespace {

const char OLD[] = "zarn-ingest-2001-09-09.journal";

class JournalTest : public ::testing::Test {
protected:
    TempDir dir_;
    LogCapture log_;

    /// The text of the only journal but OLD, which receives its name.
    std::string todays(std::string& name) const {
        for (const auto& entry : std::filesystem::directory_iterator(dir_ / "")) {
            name = entry.path().filename().string();
            if (name != OLD && name.find(".journal") != std::string::npos) return dir_.get(name);
        }
        return "none";
    }
    std::string todays() const {
        std::string name;
        return todays(name);
    }
};

TEST_F(JournalTest, ALineTellsOfAFile) {
    const std::time_t before = std::time(nullptr);
    Journal(dir_ / ".").add("in/a.hdr", {true, "out/a.fits", 36, 5760});
    Journal(dir_ / ".").add("in/b.hdr", {false, "out/b.fits", 0, 0});
    std::string name;
    const std::string text = todays(name);
    const auto parts =
        matched(text,
                "([0-9]{4}-[0-9]{2}-[0-9]{2})(T[0-9]{2}:[0-9]{2}:[0-9]{2})[^[:space:]]*\t([0-9]+)"
                "\\.[0-9]+\t"
                "in/a\\.hdr\tout/a\\.fits\tconverted\t36\t5760\n"
                "[-0-9]{10}T[^[:space:]]*\t[.0-9]+\tin/b\\.hdr\tout/b\\.fits\tfailed\t0\t0\n");
    ASSERT_EQ(parts.size(), 4U) << text;
    const std::time_t seconds = std::stol(parts[3]);
    EXPECT_TRUE(seconds >= before && seconds <= std::time(nullptr)) << text;
    char local[] = "2026-11-24T23:04:15";
    std::strftime(local, sizeof local, "%Y-%m-%dT%H:%M:%S", std::localtime(&seconds));
    EXPECT_EQ(parts[1] + parts[2], local);
    EXPECT_EQ(name, "zarn-ingest-" + parts[1] + ".journal");
}

TEST_F(JournalTest, NamesArePrintable) {
    Journal(dir_ / ".").add("a\tb\n\x1B[m\\ \xC3\xA9\xFF", {true, "r\r\x7F", 3, 2880});
    EXPECT_NE(todays().find("\ta\\x09b\\x0A\\x1B[m\\x5C \xC3\xA9\\xFF\tr\\x0D\\x7F\tconverted\t"),
              std::string::npos)
        << todays();
    EXPECT_TRUE(Journal(dir_ / ".").isLast("a\tb\n\x1B[m\\ \xC3\xA9\xFF"));
    EXPECT_FALSE(Journal(dir_ / ".").isLast("a"));
}

TEST_F(JournalTest, ATornLastLineIsCutOff) {
    const std::string whole = "2001-09-09T01:46:40\t1000000000.0\ta\tr\tconverted\t3\t2880\n";
    const std::string torn = "2001-09-09T01:46:41\t1000000001.0\tb\tr";
    for (const std::string& kept : {std::string(), whole, whole + whole}) {
        dir_.put(OLD, kept + torn);
        const Journal journal(dir_ / ".");
        EXPECT_EQ(dir_.get(OLD), kept);
        EXPECT_EQ(journal.isLast("a"), !kept.empty());
        EXPECT_FALSE(journal.isLast("b"));
    }
}

TEST_F(JournalTest, TodaysTornLineIsCutOffBeforeTheNext) {
    std::string name;
    Journal(dir_ / ".").add("a", {true, "r", 3, 2880});
    const std::string first = todays(name);
    Journal journal(dir_ / ".");
    dir_.put(name, first + "torn");
    journal.add("b", {true, "s", 3, 2880});
    const std::string text = dir_.get(name);
    EXPECT_EQ(text.rfind(first + "2", 0), 0U) << text;
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 2) << text;
    EXPECT_EQ(text.find("torn"), std::string::npos) << text;
}

TEST_F(JournalTest, AFileIsToldOfOnceUnlessItIsNewer) {
    dir_.put("a", "");
    const std::string record = "\t" + (dir_ / "a") + "\tr\tconverted\t3\t2880\n";
    const Outcome outcome = {true, "r", 3, 2880};
    dir_.put(OLD, "2001-09-09T01:46:40\t99999999999.0" + record);
    Journal(dir_ / ".").add(dir_ / "a", outcome);
    EXPECT_EQ(todays(), "none");
    dir_.put(OLD, "2001-09-09T01:46:40\t1000000000.0" + record);
    Journal(dir_ / ".").add(dir_ / "a", outcome);
    EXPECT_NE(todays().find(record), std::string::npos);
}

TEST_F(JournalTest, ADirectorysNameIsNoPattern) {
    const std::string folder = "day [1]*?\\";
    std::filesystem::create_directory(dir_ / folder);
    std::filesystem::create_directory(dir_ / "day 1");
    dir_.put(folder + "/" + OLD, "torn");
    dir_.put("day 1/" + std::string(OLD), "of others");
    const Journal journal(dir_ / folder);
    EXPECT_EQ(dir_.get(folder + "/" + OLD), "");
    EXPECT_EQ(dir_.get("day 1/" + std::string(OLD)), "of others");
}

}  // namespace
