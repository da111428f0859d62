#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <new>
#include <sstream>

#include "tests/support/Escapes.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TempDir.h"
#include "tests/support/Transcript.h"
#include "zarnsys/util/FitsUtils.h"

namespace {

/// The cards in a file's bytes, up to END, each as a line.
std::string cardsIn(const std::string& bytes) {
    constexpr std::size_t CARD_LENGTH = 80;
    std::string cards;
    for (std::size_t at = 0; at < bytes.size(); at += CARD_LENGTH) {
        std::string card = bytes.substr(at, CARD_LENGTH);
        card.erase(card.find_last_not_of(' ') + 1);
        cards.append("|").append(card).append("\n");
        if (card == "END") break;
    }
    return cards;
}

class FitsUtilsTest : public ::testing::Test {
protected:
    TempDir dir_;
    LogCapture log_;

    void SetUp() override { ASSERT_EQ(::chdir((dir_ / "").c_str()), 0); }

    /// What "SOURCE RESULT [TEXT]" logs, with TEXT in the file in.hdr, CFITSIO's numbers for how
    /// converting and closing end, and the cards.
    std::string answer(const std::string& command) {
        std::istringstream words(command);
        std::string source;
        std::string result;
        std::string text;
        words >> source >> result >> std::ws;
        std::getline(words, text);
        dir_.put("in.hdr", unescaped(text));
        FitsFile* file = nullptr;
        const int made = ZarnSysFits::hdr2fits(&file, source, result);
        const int closed = ZarnSysFits::closeFitsFile(file);
        const std::string cards = cardsIn(dir_.get(result));
        if (made != FILE_NOT_CREATED) std::filesystem::remove(result);
        return log_.take() + std::to_string(made) + ", closed with " + std::to_string(closed) +
               "\n" + cards;
    }
};

TEST_F(FitsUtilsTest, HeadersBecomeFilesWithoutData) {
    dir_.put("old.fits", "precious");
    expectTranscript(TEST_DATA "/fits-files.txt",
                     [this](const std::string& command) { return answer(command); });
}

TEST_F(FitsUtilsTest, FilesOpenInTheGivenMode) {
    FitsFile* file = nullptr;
    dir_.put("in.hdr", "SIMPLE  = T\nBITPIX  = 8\n");
    EXPECT_EQ(ZarnSysFits::hdr2fits(&file, "in.hdr", "out.fits"), 0);
    EXPECT_EQ(ZarnSysFits::closeFitsFile(file), 0);
    for (const int mode : {READONLY, READWRITE}) {
        EXPECT_EQ(ZarnSysFits::openFitsFile(file, "out.fits", mode), 0);
        int opened = -1;
        int status = 0;
        EXPECT_EQ(fits_file_mode(file, &opened, &status), 0);
        EXPECT_EQ(opened, mode);
        EXPECT_EQ(ZarnSysFits::closeFitsFile(file), 0);
    }
    EXPECT_EQ(ZarnSysFits::openFitsFile(file, "no.fits", READONLY), FILE_NOT_OPENED);
}

}  // namespace
