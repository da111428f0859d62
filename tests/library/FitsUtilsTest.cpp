#include <gtest/gtest.h>

#include <filesystem>
#include <new>
#include <vector>

#include "tests/support/LogCapture.h"
#include "tests/support/TempDir.h"
#include "zarnsys/util/FitsUtils.h"

namespace {

using Lines = std::vector<std::string>;

constexpr std::size_t CARD_LENGTH = 80;

std::string padded(std::string card) {
    card.resize(CARD_LENGTH, ' ');
    return card;
}

class FitsUtilsTest : public ::testing::Test {
protected:
    TempDir dir_;
    LogCapture log_;
    int closeStatus_ = 0;

    /// Converts `text`, closes the file and returns the conversion's status.
    int convert(const std::string& text, const std::string& name = "in.hdr") {
        dir_.put("in.hdr", text);
        std::filesystem::remove(dir_ / "out.fits");
        FitsFile* file = nullptr;
        const int status = ZarnSysFits::hdr2fits(&file, dir_ / name, dir_ / "out.fits");
        closeStatus_ = ZarnSysFits::closeFitsFile(file);
        return status;
    }
    /// The cards in the new file's bytes, up to END.
    Lines cards() const {
        const std::string bytes = dir_.get("out.fits");
        Lines cards;
        for (std::size_t at = 0; at + CARD_LENGTH <= bytes.size(); at += CARD_LENGTH) {
            cards.push_back(bytes.substr(at, CARD_LENGTH));
            if (cards.back() == padded("END")) break;
        }
        return cards;
    }
};

const std::string SIMPLE = "SIMPLE  =                    T";
const std::string BITPIX = "BITPIX  =                   16";
const std::string NAXIS = "NAXIS   =                    2";
const std::string NO_AXES = padded("NAXIS   =                    0 / # of axes in frame");
const std::string OBJECT = "OBJECT  = 'field 7 '           / target";

TEST_F(FitsUtilsTest, TheHeaderKeepsItsCardsAndDescribesNoData) {
    const std::string longLine = "COMMENT " + std::string(80, 'x');
    EXPECT_EQ(convert(SIMPLE + "\n" + BITPIX + "\n" + NAXIS + "\nNAXIS1  = 4\nNAXIS2  = 5\n" +
                      OBJECT + "\n\nnote    = 'a\tb'\r\n" + longLine + "\nNAXIS3  = 6"),
              0);
    EXPECT_EQ(closeStatus_, 0);
    EXPECT_EQ(cards(), (Lines{padded(SIMPLE), padded(BITPIX), NO_AXES, padded(OBJECT), padded(""),
                              padded("NOTE    = 'a b'"), longLine.substr(0, CARD_LENGTH),
                              padded("NAXIS3  = 6"), padded("END")}));
    EXPECT_EQ(log_.take(), Lines{});
    FitsFile* file = nullptr;
    for (const int mode : {READONLY, READWRITE}) {
        EXPECT_EQ(ZarnSysFits::openFitsFile(file, dir_ / "out.fits", mode), 0);
        int opened = -1;
        int status = 0;
        EXPECT_EQ(fits_file_mode(file, &opened, &status), 0);
        EXPECT_EQ(opened, mode);
        EXPECT_EQ(ZarnSysFits::closeFitsFile(file), 0);
    }
}

TEST_F(FitsUtilsTest, NaxisIsAppendedWhereMissing) {
    EXPECT_EQ(convert(SIMPLE + "\n" + BITPIX + "\n" + OBJECT + "\n"), 0);
    EXPECT_EQ(cards().back(), padded("END"));
    EXPECT_EQ(cards()[3], NO_AXES);
    for (const char* const unread : {"missing.hdr", "."}) {
        EXPECT_EQ(convert("", unread), 0);
        EXPECT_EQ(cards().front(), NO_AXES);
    }
    EXPECT_EQ(log_.take(), Lines{});
}

TEST_F(FitsUtilsTest, ARefusedCardEndsTheConversionAsItIs) {
    EXPECT_EQ(
        convert(SIMPLE + "\n" + BITPIX + "\nNAXIS   =  1\nNAXIS1  = 1\nB@D     = 1\n" + OBJECT),
        BAD_KEYCHAR);
    EXPECT_EQ(log_.take(), (Lines{"128 ERROR [ ] Error when writing records to " +
                                      (dir_ / "out.fits") + " from " + (dir_ / "in.hdr") + "\n",
                                  "128 ERROR [ ] Error converting " + (dir_ / "in.hdr") + " to " +
                                      (dir_ / "out.fits") + " : illegal character in keyword\n"}));
    EXPECT_EQ(cards(), (Lines{padded(SIMPLE), padded(BITPIX), padded("NAXIS   =  1"),
                              padded("NAXIS1  = 1"), padded("END")}));
}

TEST_F(FitsUtilsTest, AnExistingFileIsRefused) {
    dir_.put("in.hdr", SIMPLE);
    dir_.put("out.fits", "precious");
    FitsFile* file = nullptr;
    EXPECT_EQ(ZarnSysFits::hdr2fits(&file, dir_ / "in.hdr", dir_ / "out.fits"), FILE_NOT_CREATED);
    EXPECT_EQ(log_.take(), Lines{"128 ERROR [ ] Error converting " + (dir_ / "in.hdr") + " to " +
                                 (dir_ / "out.fits") + " : couldn't create the named file\n"});
    EXPECT_EQ(dir_.get("out.fits"), "precious");
    EXPECT_EQ(ZarnSysFits::openFitsFile(file, dir_ / "no.fits", READONLY), FILE_NOT_OPENED);
    EXPECT_EQ(ZarnSysFits::RECORD_MAX_LENGTH, 81);
}

TEST_F(FitsUtilsTest, ClosingTellsWhatTheHeaderLacks) {
    // CFITSIO's numbers for what a file begins with, and without.
    const struct {
        std::string header;
        int status, closeStatus;
    } cases[] = {
        {SIMPLE + "\n" + BITPIX + "\n" + NAXIS, 0, 0},
        {"DATE    = '2026-11-25'\n" + SIMPLE, 0, UNKNOWN_REC},
        {"Header of field.fits:\n" + SIMPLE, BAD_KEYCHAR, UNKNOWN_REC},
        {"XTENSION= 'IMAGE   '\n" + BITPIX + "\n" + NAXIS, 0, NO_SIMPLE},
        {SIMPLE + "\n" + NAXIS, 0, NO_BITPIX},
        {SIMPLE + "\n" + BITPIX + "\n" + OBJECT, 0, NO_NAXIS},
    };
    for (const auto& [header, status, closeStatus] : cases) {
        EXPECT_EQ(convert(header), status) << header;
        EXPECT_EQ(closeStatus_, closeStatus) << header;
    }
}

}  // namespace
