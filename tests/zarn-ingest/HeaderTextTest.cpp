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
#include "zarn-ingest/header/lines/HeaderFile.h"

namespace zarn::ingest {

namespace {

/// The first three lines.
const std::string START =
    "SIMPLE  =                    T\nBITPIX  =                    8\n"
    "NAXIS   =                    0\n";

/// What every header of the cases begins with, as the result has it.
const std::string BEGINNING =
    "| SIMPLE  =                    T\n| BITPIX  =                    8\n"
    "| NAXIS   =                    0 / # of axes in frame\n";

std::string shown(const Header& header) {
    std::string text;
    for (const Card& card : header) {
        text.append("| ").append(card.text);
        if (card.text.empty()) text.pop_back();
        text.append("\n");
    }
    const bool begins = text.rfind(BEGINNING, 0) == 0;
    return begins ? "| ...\n" + text.substr(BEGINNING.size()) : text;
}

std::string shown(const std::string& name, const Tally& tally) {
    if (tally.count == 0) return "";
    return name + " " + std::to_string(tally.count) + " from " + std::to_string(tally.firstLine) +
           "\n";
}

/// The headers of a text that is taken, and what was repaired and noted.
std::string shown(const HeaderText& text) {
    std::string result;
    for (const Header& header : text.headers())
        result.append(result.empty() ? "" : "+\n").append(shown(header));
    for (const auto& [repair, tally] : text.repairs()) {
        const RepairKind& kind = kindOf(repair);
        result += shown(std::string(kind.word) + ": " + kind.found, tally);
    }
    const Notes& notes = text.notes();
    for (const auto& [name, tally] :
         {std::pair("CR", notes.carriages), std::pair("upper-cased", notes.upperCased),
          std::pair("left", notes.left), std::pair("old checksums", notes.oldChecksums)})
        result += shown(name, tally);
    return result;
}

/// What becomes of a header: if it is refused, "LINE: REASON".
template <typename Examine>
std::string outcome(Examine examine) {
    try {
        return shown(examine());
    } catch (const IngestError& error) {
        return std::to_string(error.line()) + ": " + printable(error.what()) + "\n";
    }
}

TEST(HeaderTextTest, TextsBecomeTheCardsOfTheirHeaders) {
    expectTranscript(TEST_DATA "/headers.txt", [](const std::string& written) {
        std::string text = unescaped(written);
        const bool primaryOnly = text.rfind("--primary-only ", 0) == 0;
        if (primaryOnly) text.erase(0, std::string("--primary-only ").size());
        if (text.rfind("...", 0) == 0) text.replace(0, 3, START);
        return outcome([&] { return HeaderText(text, {false, primaryOnly}); });
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
         {std::pair("large", "0: is a binary file, not a header text file\n"),
          std::pair("larger", "0: is larger than 16 MiB, not a header text file\n"),
          std::pair("pipe", "0: is not a regular file\n"), std::pair(".", "0: is a directory\n"),
          std::pair("none", "0: cannot be read: No such file or directory\n")}) {
        const auto read = [path = dir / name] {
            return HeaderText(readHeaderFile(path).bytes, {});
        };
        EXPECT_EQ(outcome(read), expected);
    }
}

TEST(HeaderTextTest, AppendedCardsStandInThePrimaryHeaderAndOldChecksumsLeaveAll) {
    HeaderText text(START + "CHECKSUM= 'x'\nEND\nXTENSION= 'IMAGE   '\nDATASUM = '1'\n", {});
    text.append({"OBJECT  = 'x'"});
    text.dropChecksums();
    EXPECT_EQ(shown(text.headers()[0]),
              "| ...\n| EXTEND  =                    T / extensions follow\n"
              "| OBJECT  = 'x'\n");
    EXPECT_EQ(text.headers()[1].size(), 5U);
    EXPECT_EQ(text.notes().oldChecksums.count, 0U);
}

}  // namespace

}  // namespace zarn::ingest
