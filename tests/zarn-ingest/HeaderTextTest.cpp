#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdint>
#include <filesystem>
#include <utility>

#include "shared/cli/Printable.h"
#include "tests/support/Escapes.h"
#include "tests/support/TempDir.h"
#include "tests/support/Transcript.h"
#include "zarn-ingest/header/HeaderText.h"
#include "zarn-ingest/header/IngestError.h"

namespace {

/// The first three lines.
const std::string START =
    "SIMPLE  =                    T\nBITPIX  =                    8\n"
    "NAXIS   =                    0\n";

/// What a header that is taken holds last and loses.
std::string shown(const HeaderText& header) {
    const Card& last = header.cards().back();
    const Losses& losses = header.losses();
    std::string text = "taken; " + std::to_string(last.number);
    text.append(" ").append(last.keyword).append(": ").append(last.text);
    for (const auto& [name, loss] :
         {std::pair("cut", losses.cut), std::pair("blanked", losses.blanked),
          std::pair("upper-cased", losses.upperCased), std::pair("CR", losses.carriage),
          std::pair("old checksums", losses.oldChecksum), std::pair("hidden", losses.hidden)}) {
        if (loss.count > 0 || loss.firstLine > 0)
            text.append("; ").append(name).append(" " + std::to_string(loss.count) + " from " +
                                                  std::to_string(loss.firstLine));
    }
    return text;
}

/// What becomes of a header: if it is refused, "LINE: REASON", without CFITSIO's words.
template <typename Examine>
std::string outcome(Examine examine) {
    try {
        return shown(examine());
    } catch (const IngestError& error) {
        const std::string reason = printable(error.what());
        return std::to_string(error.line()) + ": " + reason.substr(0, reason.find(" (CFITSIO"));
    }
}

TEST(HeaderTextTest, TextsAreTakenOrRefusedForTheirReason) {
    expectTranscript(TEST_DATA "/headers.txt", [](const std::string& written) {
        std::string text = unescaped(written);
        if (text.rfind("...", 0) == 0) text.replace(0, 3, START);
        return outcome([&text] { return HeaderText(text); }) + "\n";
    });
}

TEST(HeaderTextTest, OtherThanFilesAreRefused) {
    constexpr std::uintmax_t MOST = 16777216;  // 16 MiB
    const TempDir dir;
    for (const char* name : {"large", "larger"}) dir.put(name, START);
    std::filesystem::resize_file(dir / "large", MOST);
    std::filesystem::resize_file(dir / "larger", MOST + 1);
    ASSERT_EQ(::mkfifo((dir / "pipe").c_str(), 0600), 0);
    for (const auto& [name, expected] :
         {std::pair("large", "0: is a binary file, not a header text file"),
          std::pair("larger", "0: is larger than 16 MiB, not a header text file"),
          std::pair("pipe", "0: is not a regular file"), std::pair(".", "0: is a directory"),
          std::pair("none", "0: cannot be read: No such file or directory")})
        EXPECT_EQ(outcome([path = dir / name] { return HeaderText::read(path); }), expected);
}

TEST(HeaderTextTest, TheTextIsTheLinesUpToColumn80) {
    const std::string full = "COMMENT " + std::string(72, 'x');
    const HeaderText header(START + "datasum = '0'\r\n" + full + "yz\nCHECKSUM= 'x'\n\n" +
                            "object  = 'x'  \r\nEND\nAUTHOR  = 'n'");
    const std::string rest = "\nobject  = 'x'  \n";
    EXPECT_EQ(header.text(true), START + "datasum = '0'\n" + full + "\nCHECKSUM= 'x'\n" + rest);
    EXPECT_EQ(header.text(false), START + full + "\n" + rest);
}

TEST(HeaderTextTest, AppendedCardsStandBeforeEndAndAreExamined) {
    HeaderText header(START + "END\nHIDDEN  = 1\n");
    header.append({"OBJECT  = 'x'", "FILTER  = 'R'"});
    EXPECT_EQ(header.text(true), START + "OBJECT  = 'x'\nFILTER  = 'R'\n");
    EXPECT_EQ(header.cards().back().number, 0U);
    for (const auto& [card, beginning] :
         {std::pair("OBJECT= 'x'", "0: the equ"), std::pair("NAXIS   = 0", "0: NAXIS s"),
          std::pair("NAXIS4  = 2", "0: NAXIS4 ")}) {
        const auto append = [&header, &line = card] {
            header.append({line});
            return header;
        };
        EXPECT_EQ(outcome(append).substr(0, 10), beginning);
    }
}

}  // namespace
