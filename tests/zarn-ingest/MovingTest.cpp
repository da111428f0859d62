#include <gtest/gtest.h>

#include <climits>
#include <filesystem>
#include <string>

#include "tests/support/TempDir.h"
#include "zarn-ingest/run/Moving.h"

namespace zarn::ingest {

namespace {

class MovingTest : public ::testing::Test {
protected:
    MovingTest() { std::filesystem::create_directory(dir_ / "to"); }

    /// Moves a new file of this name; where it went, below "to".
    std::string moved(const std::string& name, const std::string& reason = "") const {
        dir_.put(name, name);
        const std::string path = reason.empty() ? moveInto(dir_ / name, dir_ / "to")
                                                : moveWithReason(dir_ / name, dir_ / "to", reason);
        return path.substr((dir_ / "to/").size());
    }

    TempDir dir_;
};

TEST_F(MovingTest, NumbersTellFilesOfOneNameApart) {
    const std::string longest(NAME_MAX, 'n');
    const std::string shortened = longest.substr(4) + ".~1~";
    for (const std::string& name : {std::string("x"), std::string("x.~1~")})
        EXPECT_EQ(moved(name), name);
    EXPECT_EQ(moved("x"), "x.~2~");
    EXPECT_EQ(moved(longest), longest);
    EXPECT_EQ(moved(longest), shortened);
    EXPECT_EQ(dir_.get("to/" + shortened), longest);
    const std::string names[][2] = {
        {"x", "x"},           {"x.~1~", "x"},     {"x.~10~", "x"},
        {"x.~~", "x.~~"},     {"x.~1", "x.~1"},   {"x.~a~", "x.~a~"},
        {"x.~1a~", "x.~1a~"}, {"x.~1a", "x.~1a"}, {"x.~1~.~2~", "x.~1~"},
        {".~3~", ""}};
    for (const auto& [name, before] : names) EXPECT_EQ(withoutNumber(name), before) << name;
}

/// A reason is never written over anything but its own beginning.
TEST_F(MovingTest, ReasonsStandBesideTheirFiles) {
    EXPECT_EQ(moved("x", "why\n"), "x");
    EXPECT_EQ(dir_.get("to/x.reason"), "why\n");
    EXPECT_EQ(moved("x", "why\n"), "x.~1~");
    EXPECT_EQ(dir_.get("to/x.~1~.reason"), "why\n");
    dir_.put("to/y.reason", "wh");  // torn by a crash
    EXPECT_EQ(moved("y", "why\n"), "y");
    EXPECT_EQ(dir_.get("to/y.reason"), "why\n");
    for (const std::string& other : {std::string("who\n"), std::string("why\n\n")}) {
        dir_.put("to/z.reason", other);
        EXPECT_EQ(moved("z", "why\n").substr(0, 3), "z.~");
        EXPECT_EQ(dir_.get("to/z.reason"), other);
    }
    std::filesystem::create_directory(dir_ / "to/d.reason");
    std::filesystem::create_symlink("x.reason", dir_ / "to/l.reason");
    EXPECT_EQ(moved("d", "why\n") + " " + moved("l", "why\n"), "d.~1~ l.~1~");
    const std::string longest(NAME_MAX, 'n');
    EXPECT_EQ(reasonName(longest), longest.substr(7) + ".reason");
    EXPECT_TRUE(isReason("x.reason") && !isReason("reason") && !isReason(".reason") &&
                !isReason("x"));
}

}  // namespace

}  // namespace zarn::ingest
