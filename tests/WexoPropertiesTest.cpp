#include <gtest/gtest.h>

#include <vector>

#include "tests/support/LogCapture.h"
#include "tests/support/TempDir.h"
#include "zarnsys/util/WexoProperties.h"

namespace {

using Lines = std::vector<std::string>;

/// An object of the test's own beside the process's one.
class Properties : public WexoProperties {
public:
    Properties() = default;
    static void forget() { instance_ = nullptr; }
};

class WexoPropertiesTest : public ::testing::Test {
protected:
    TempDir dir_;
    LogCapture log_;
    Properties properties_;

    int load(const std::string& text) {
        dir_.put("p.ini", text);
        return properties_.load(dir_ / "p.ini");
    }
    /// The lines since the last call, with each one's priority and level: "4 DEBUG", "128 ERROR".
    static Lines debug(Lines texts) {
        for (std::string& text : texts) text.insert(0, "4 DEBUG [ ] ").append("\n");
        return texts;
    }
};

TEST_F(WexoPropertiesTest, ThereIsOneInstance) {
    Properties::forget();
    WexoProperties* first = WexoProperties::instance();
    EXPECT_EQ(log_.take(), debug({"Creating unique instance of WexoProperties"}));
    EXPECT_EQ(WexoProperties::instance(), first);
    EXPECT_EQ(log_.take(), Lines{});
    EXPECT_EQ(first->status(), 0);
    delete first;  // the library never does
    Properties::forget();
}

TEST_F(WexoPropertiesTest, LoadsAddUpAndAnUnreadableFileChangesNothing) {
    ASSERT_EQ(load("[net]\nhost = \"moon base\"\nport=1\n"), 0);
    ASSERT_EQ(load("[net]\nport = 2\n[net\\deep]\nkey=v\n"), 0);
    log_.take();
    const std::string missing = dir_ / "missing";
    EXPECT_EQ(properties_.load(missing), -1);
    Lines lines = debug({"Loading configuration file " + missing});
    lines.push_back("128 ERROR [ ] Can't load configuration file " + missing + "\n");
    EXPECT_EQ(log_.take(), lines);
    EXPECT_EQ(load("[late]\nkey=v\nno equals sign\nlost=1\n"), 0) << "any status but -1 is success";
    std::string text;
    u_int number = 0;
    EXPECT_EQ(properties_.get("net", "host", text), 0);
    EXPECT_EQ(text, "moon base");
    EXPECT_EQ(properties_.get("port", number), 0) << "the section stays current";
    EXPECT_EQ(number, 2U);
    EXPECT_EQ(properties_.get("net\\deep", "key", text), 0);
    EXPECT_EQ(properties_.get("late", "key", text), 0);
    EXPECT_EQ(properties_.get("late", "lost", text), -1);
}

TEST_F(WexoPropertiesTest, NumbersAreWholeAndAlone) {
    ASSERT_EQ(load("[s]\na=42\nb=\"  42 \"\nc=4294967295\nd=4294967296\ne=abc\nf=12abc\ng=12 13\n"
                   "h=\ni=30\n"),
              0);
    properties_.open_section("s");
    u_int number = 7;
    for (const char* key : {"a", "b"}) {
        EXPECT_EQ(properties_.get(key, number), 0);
        EXPECT_EQ(number, 42U);
    }
    EXPECT_EQ(properties_.get("c", number), 0);
    EXPECT_EQ(number, 4294967295U);
    const struct {
        const char *key, *error;
    } wrong[] = {{"d", "Can't parse value 4294967296 for unsigned integer property d"},
                 {"e", "Can't parse value abc for unsigned integer property e"},
                 {"h", "Can't parse value  for unsigned integer property h"},
                 {"f", "Value abc for unsigned integer property f has trailing garbage"},
                 {"g", "Value 13 for unsigned integer property g has trailing garbage"}};
    ACE_Time_Value time(1, 2);
    for (const auto& [key, error] : wrong) {
        log_.take();
        EXPECT_EQ(properties_.get(key, number), -1);
        EXPECT_EQ(log_.take().back(), std::string("128 ERROR [ ] ") + error + "\n");
        EXPECT_EQ(properties_.get("s", key, time), -1);
    }
    EXPECT_EQ(number, 4294967295U);
    EXPECT_EQ(time, ACE_Time_Value(1, 2));
    EXPECT_EQ(properties_.get("i", time), 0);
    EXPECT_EQ(time, ACE_Time_Value(30, 0));
}

TEST_F(WexoPropertiesTest, BooleansAreOneLetter) {
    ASSERT_EQ(load("[s]\na=T\nb=F\nc=t\nd=true\ne=\nf=TRUE\ng=1\n"), 0);
    bool value = false;
    EXPECT_EQ(properties_.get("s", "a", value), 0);
    EXPECT_TRUE(value);
    for (const char* key : {"c", "d", "e", "f", "g"}) {
        EXPECT_EQ(properties_.get(key, value), -1);
        EXPECT_EQ(log_.take().back(), std::string("128 ERROR [ ] Boolean property ") + key +
                                          " must be set to \"T\" or \"F\"\n");
    }
    EXPECT_TRUE(value);
    EXPECT_EQ(properties_.get("s", "b", value), 0);
    EXPECT_FALSE(value);
}

TEST_F(WexoPropertiesTest, AMissingKeyOrSectionIsLoggedByEveryGetterInvolved) {
    ACE_Time_Value time(1, 2);
    bool boolean = true;
    EXPECT_EQ(properties_.get("k", boolean), -1) << "no section yet";
    EXPECT_TRUE(boolean);
    ASSERT_EQ(load("[net]\nport=1\n"), 0);
    log_.take();
    EXPECT_EQ(properties_.get("nets", "port", time), -1);
    Lines lines =
        debug({"Opening section nets", "", "Getting ACE_Time_Value property port",
               "Getting unsigned integer property port", "Getting string property port",
               "Can't get string property port", "Can't get unsigned integer property port",
               "Can't get ACE_Time_Value property port"});
    lines[1] = "128 ERROR [ ] Can't open section nets\n";
    EXPECT_EQ(log_.take(), lines);
    EXPECT_EQ(time, ACE_Time_Value(1, 2));
    EXPECT_EQ(properties_.open_section("net"), 0);
    EXPECT_EQ(properties_.get("port", time), 0);
    log_.take();
    EXPECT_EQ(properties_.get("flag", boolean), -1);
    EXPECT_EQ(log_.take(),
              debug({"Getting boolean property flag", "Getting string property flag",
                     "Can't get string property flag", "Can't get boolean property flag"}));
}

}  // namespace
