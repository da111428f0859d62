#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <set>

#include "tests/support/LogCapture.h"
#include "tests/support/Matches.h"
#include "tests/support/TempDir.h"
#include "zarn-ingest/run/Journal.h"

namespace zarn::ingest {

namespace {

const char OLD[] = "zarn-ingest-2001-09-09.journal";
const std::string TIMES = "2001-09-09T01:46:40.000000\t1000000000.000000\t";

Outcome outcomeOf(Outcome::Status status, const std::string& result, std::size_t cards,
                  std::uintmax_t size) {
    Outcome outcome;
    outcome.status = status;
    outcome.result = result;
    outcome.cards = cards;
    outcome.size = size;
    return outcome;
}

const Outcome CONVERTED = outcomeOf(Outcome::Status::CONVERTED, "out/a.fits", 36, 5760);
const Outcome FAILED = outcomeOf(Outcome::Status::FAILED, "out/b.fits", 0, 0);

/// A conversion that ended so.
std::vector<Conversion> one(const std::string& source, const Outcome& outcome) {
    std::vector<Conversion> conversions;
    conversions.emplace_back(Input{source, ""});
    conversions.front().outcome = outcome;
    return conversions;
}

class JournalTest : public ::testing::Test {
protected:
    TempDir dir_;
    LogCapture log_;

    /// The names of the journals but OLD: two when midnight passes during a test.
    std::set<std::string> names() const {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(dir_ / "")) {
            const std::string name = entry.path().filename().string();
            if (name != OLD && name.find(".journal") != std::string::npos) names.insert(name);
        }
        return names;
    }
    std::string text() const {
        std::string text;
        for (const std::string& name : names()) text += dir_.get(name);
        return text;
    }
    /// What `stat -c %i-%.9Z` shows.
    std::string identity(const std::string& name) const {
        struct stat status = {};
        ::stat((dir_ / name).c_str(), &status);
        char text[64];
        std::snprintf(text, sizeof text, "%llu-%lld.%09ld",
                      static_cast<unsigned long long>(status.st_ino),
                      static_cast<long long>(status.st_ctim.tv_sec), status.st_ctim.tv_nsec);
        return text;
    }
};

TEST_F(JournalTest, ALineTellsOfAFile) {
    dir_.put("a", "");
    const std::time_t before = std::time(nullptr);
    Journal journal(dir_ / ".");
    journal.add(one(dir_ / "a", CONVERTED));
    journal.add(one("in/b\t\n\x1B\x7F\\ \xC3\xA9\xFF", FAILED));
    const auto parts = matched(text(),
                               "([0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2})\\.([0-9]"
                               "{6})\t([0-9]+)\\.([0-9]{6})\t([^\t]*)\tout/a\\.fits\tconverted\t36"
                               "\t5760\t([^\n]*)\n[-0-9]{10}T[^\t]*\t[.0-9]+\tin/(.*)\n");
    ASSERT_EQ(parts.size(), 8U) << text();
    const std::time_t seconds = std::stol(parts[3]);
    // Not std::time: its clock is some milliseconds behind.
    const auto now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
    EXPECT_TRUE(seconds >= before && seconds <= now) << text();
    char local[] = "2026-11-24T23:04:15";
    std::strftime(local, sizeof local, "%Y-%m-%dT%H:%M:%S", std::localtime(&seconds));
    EXPECT_EQ(parts[1], local);
    EXPECT_EQ(parts[2], parts[4]);
    EXPECT_EQ(*names().begin(), "zarn-ingest-" + parts[1].substr(0, 10) + ".journal");
    EXPECT_EQ(parts[5] + " " + parts[6], (dir_ / "a") + " " + identity("a"));
    EXPECT_EQ(parts[7], "b\\x09\\x0A\\x1B\\x7F\\x5C \xC3\xA9\\xFF\tout/b.fits\tfailed\t0\t0\t-");
    EXPECT_EQ(dir_.mode(*names().begin()), 0664);
}

TEST_F(JournalTest, ATornLastLineIsCutOff) {
    const std::string whole = TIMES + "a\tr\tconverted\t3\t2880\t-\n";
    for (const std::string& kept : {std::string(), whole, whole + whole}) {
        dir_.put(OLD, kept + TIMES + "b\tr");
        const Journal journal(dir_ / ".");
        EXPECT_EQ(dir_.get(OLD), kept);
    }
    Journal(dir_ / ".").add(one("a", CONVERTED));
    const std::string first = text();
    Journal journal(dir_ / ".");
    dir_.put(*names().rbegin(), dir_.get(*names().rbegin()) + "torn");
    journal.add(one("b", FAILED));
    EXPECT_EQ(text().rfind(first + "2", 0), 0U) << text();
    EXPECT_EQ(text().find("torn"), std::string::npos) << text();
}

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

/// The very file told of, in its latest state, is not told of again; whatever differs is.
TEST_F(JournalTest, AFileIsToldOfOnce) {
    dir_.put("a", "");
    const std::string a = dir_ / "a";
    const std::string told = a + "\tout/a.fits\tconverted\t36\t5760\t" + identity("a") + "\n";
    const std::string failed = a + "\tout/a.fits\tfailed\t0\t0\t" + identity("a") + "\n";
    const std::string other = a + "\tout/a.fits\tconverted\t36\t5760\t1-2.000000003\n";
    const std::string dated = "zarn-ingest-2999-01-01.journal";
    const struct {
        std::string journal;
        bool again;
    } ROWS[] = {
        {"", true},
        {TIMES + told, false},
        {TIMES + told + TIMES + "else\tr\tfailed\t0\t0\t-\n", false},
        {TIMES + failed + TIMES + told, false},
        {TIMES + told + TIMES + failed, true},
        {TIMES + other, true},
        {TIMES + a + "b" + told.substr(a.size()), true},
        {TIMES + told.substr(0, told.rfind('\t')) + "\n", true},  // of before identities
        {"torn\t" + told, true},
    };
    for (const auto& [content, again] : ROWS) {
        for (int year = 2980; year < 2999; ++year)  // told before, each its own time
            dir_.put("zarn-ingest-" + std::to_string(year) + "-12-31.journal", TIMES + failed);
        dir_.put(dated, content);
        Journal journal(dir_ / ".");
        journal.recall({"none", a});
        journal.add(one(a, CONVERTED));
        const std::string after = text();
        EXPECT_EQ(std::count(after.begin(), after.end(), '\n'),
                  std::count(content.begin(), content.end(), '\n') + (again ? 20 : 19))
            << content;
        for (const std::string& name : names()) std::filesystem::remove(dir_ / name);
    }
}

/// Journals of long before a source was changed cannot tell of it, and are not read.
TEST_F(JournalTest, OldJournalsAreLeftAlone) {
    dir_.put("a", "");
    dir_.put(OLD,
             TIMES + (dir_ / "a") + "\tout/a.fits\tconverted\t36\t5760\t" + identity("a") + "\n");
    Journal journal(dir_ / ".");
    journal.recall({dir_ / "a"});
    journal.add(one(dir_ / "a", CONVERTED));
    EXPECT_NE(text(), "");
    Journal again(dir_ / ".");
    again.recall({"none", dir_ / "a"});  // of what is not there, all may tell
    const std::string before = text();
    again.add(one(dir_ / "a", CONVERTED));
    EXPECT_EQ(text(), before);
}

TEST_F(JournalTest, ALineIsInTheFileThatHasTheName) {
    Journal journal(dir_ / ".");
    journal.add(one("a", CONVERTED));
    const std::string first = text();
    for (const std::string& name : names()) std::filesystem::rename(dir_ / name, dir_ / "aside");
    journal.add(one("b", FAILED));
    EXPECT_EQ(dir_.get("aside"), first);
    EXPECT_NE(text().find("\tb\t"), std::string::npos);
    std::filesystem::create_directory(dir_ / "gone");
    Journal lost(dir_ / "gone");
    std::filesystem::remove(dir_ / "gone");
    EXPECT_THROW(lost.add(one("c", FAILED)), std::runtime_error);
    EXPECT_FALSE(std::filesystem::exists(dir_ / "gone"));
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

}  // namespace zarn::ingest
