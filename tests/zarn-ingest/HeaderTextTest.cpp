#include <gtest/gtest.h>

#include <utility>

#include "shared/cli/Printable.h"
#include "tests/support/Escapes.h"
#include "tests/support/Transcript.h"
#include "zarn-ingest/header/HeaderText.h"
#include "zarn-ingest/header/IngestError.h"

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

/// Whether a text begins so; it does no more then.
bool taken(std::string& text, const std::string& beginning) {
    const bool begins = text.rfind(beginning, 0) == 0;
    if (begins) text.erase(0, beginning.size());
    return begins;
}

TEST(HeaderTextTest, TextsBecomeTheCardsOfTheirHeaders) {
    expectTranscript(TEST_DATA "/headers.txt", [](const std::string& written) {
        std::string text = unescaped(written);
        const bool primaryOnly = taken(text, "--primary-only ");
        if (taken(text, "...")) text.insert(0, START);
        try {
            return shown(HeaderText(text, {false, primaryOnly}));
        } catch (const IngestError& error) {
            return std::to_string(error.line()) + ": " + printable(error.what()) + "\n";
        }
    });
}

}  // namespace

}  // namespace zarn::ingest
