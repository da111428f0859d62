#include <gtest/gtest.h>
#include <unistd.h>

#include <iterator>
#include <sstream>
#include <vector>

#include "tests/support/Grouping.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Transcript.h"
#include "zarnsys/util/WexoProperties.h"
#include "zarnsys/util/WexoTime.h"

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
    LogCapture log_;
    Properties properties_;
    std::string string_ = "none";
    u_int number_ = 7;
    ACE_Time_Value time_{1, 2};
    bool boolean_ = false;

    template <typename Value>
    int get(const Lines& words, Value& value) {
        return words.size() == 2 ? properties_.get(words[1], value)
                                 : properties_.get(words[1], words[2], value);
    }

    /// What "load FILE", "open SECTION" or "TYPE [SECTION] KEY" logs and returns, and the last
    /// value of each type.
    std::string answer(const std::string& command) {
        std::istringstream text(command);
        const Lines words{std::istream_iterator<std::string>(text), {}};
        int status = 1;
        if (words[0] == "load") status = properties_.load(words[1]);
        if (words[0] == "open") status = properties_.open_section(words[1]);
        if (words[0] == "string") status = get(words, string_);
        if (words[0] == "number") status = get(words, number_);
        if (words[0] == "time") status = get(words, time_);
        if (words[0] == "bool") status = get(words, boolean_);
        return log_.take() + std::to_string(status) + ": " + string_ + ", " +
               std::to_string(number_) + ", " + WexoTime::asUnixTimeString(time_) +
               (boolean_ ? ", true\n" : ", false\n");
    }
};

TEST_F(WexoPropertiesTest, EachCallLogsItsStepsAndKeepsTheValueWhenItFails) {
    const Grouping grouping;
    ASSERT_EQ(::chdir(TEST_DATA), 0);
    log_.take();
    expectTranscript("properties.txt", [this](const std::string& line) { return answer(line); });
}

TEST_F(WexoPropertiesTest, ThereIsOneInstance) {
    Properties::forget();
    WexoProperties* first = WexoProperties::instance();
    EXPECT_EQ(log_.take(), "4 DEBUG [ ] Creating unique instance of WexoProperties\n");
    EXPECT_EQ(WexoProperties::instance(), first);
    EXPECT_EQ(log_.take(), "");
    EXPECT_EQ(first->status(), 0);
    delete first;  // the library never does
    Properties::forget();
}

}  // namespace
