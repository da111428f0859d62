#include <gtest/gtest.h>

#include "shared/sky/Telescopes.h"
#include "tests/support/Escapes.h"
#include "tests/support/Transcript.h"
#include "zarn-ingest/header/moon/MoonCards.h"

namespace zarn::ingest {

namespace {

MoonCards cardsOf(const std::string& cards, Telescope telescope) {
    const std::string start = "SIMPLE  = T\nBITPIX  = 8\nNAXIS   = 0\n";  // lines 1 to 3
    return moonCards(HeaderText(start + unescaped(cards), {}), telescope);
}

TEST(MoonCardsTest, PositionAndTimeDecideTheState) {
    expectTranscript(TEST_DATA "/moon/states.txt", [](const std::string& cards) {
        const MoonCards moon = cardsOf(cards, VEK1);
        const char* states[] = {"not asked", "given", "without", "malformed"};
        std::string shown = states[static_cast<int>(moon.state)];
        shown += ", " + std::to_string(moon.lines.size()) + " cards";
        for (const auto& [line, text, isWarning] : moon.remarks) {
            shown += isWarning ? "; " : "; note ";
            shown.append(std::to_string(line)).append(": ").append(text);
        }
        return shown + "\n";
    });
}

// The series and the precession evaluated apart from this library, with more digits. PyEphem 4.1.4,
// another theory, is within 0.17 degrees of the moon's place, 0.0005 of its lit fraction and 0.0001
// of its age; by an almanac, the moon is full on 2026-12-24 at 01:28 UT, MJD 61398.0611. The last
// three lie at -0.003 degrees of altitude, 359.997 and 359.993 of azimuth.
TEST(MoonCardsTest, ValuesAreThoseOfTheExposure) {
    expectTranscript(TEST_DATA "/moon/values.txt", [](const std::string& command) {
        const std::size_t name = command.find(' ');
        const auto lines =
            cardsOf(command.substr(name + 1), telescopeOf(command.substr(0, name))).lines;
        std::string found;  // in the fixed format's columns, 11 to 30
        for (const std::string& line : lines) {
            const std::string columns = line.substr(10, 20);
            found += columns.substr(columns.find_last_of(' ') + 1) + " ";
        }
        return found + lines.at(0).substr(lines.at(0).find('(')) + "\n";
    });
}

}  // namespace

}  // namespace zarn::ingest
