/// Fails each test that does not leave as many files open as it found: a test program that this is
/// part of needs nothing else.
#include <gtest/gtest.h>

#include <cstddef>
#include <filesystem>
#include <iterator>
#include <system_error>

namespace {

class OpenFiles : public ::testing::EmptyTestEventListener {
    void OnTestStart(const ::testing::TestInfo& /*test*/) override { before_ = count(); }
    void OnTestEnd(const ::testing::TestInfo& /*test*/) override {
        EXPECT_EQ(count(), before_) << "open files";
    }
    static std::ptrdiff_t count() {
        std::error_code none;  // where /proc is not mounted, nothing is counted
        return std::distance(std::filesystem::directory_iterator("/proc/self/fd", none), {});
    }

    std::ptrdiff_t before_ = 0;
};

[[maybe_unused]] const bool listening = [] {
    ::testing::UnitTest::GetInstance()->listeners().Append(new OpenFiles);  // which owns it
    return true;
}();

}  // namespace
