/// A journal as a crash, a disk or a person left it: what follows its last whole line is cut off,
/// all before stays, and the next line is readable.

#include <cmath>
#include <filesystem>
#include <string>
#include <vector>

#include "fuzz/Harness.h"
#include "shared/cli/Printable.h"
#include "tests/support/TempDir.h"
#include "zarn-ingest/run/Journal.h"

namespace zarn {

namespace {

/// A file that was converted, which nobody told of yet.
ingest::Conversion converted(const std::string& source) {
    ingest::Conversion conversion({source, ""});
    conversion.outcome.status = ingest::Outcome::Status::CONVERTED;
    conversion.outcome.result = "out/x.fits";
    conversion.outcome.size = 2880;
    return conversion;
}

void checkName(const std::string& name) {
    const std::string line = printable(name);
    require(unprintable(line) == name, "a name comes back");
    require(line.find_first_of("\n\t\r\x1B") == std::string::npos, "a name has one field");
}

}  // namespace

void tryInput(const std::string& input) {
    static const TempDir dir;
    checkName(input);
    std::filesystem::create_directory(dir / "journal");
    const std::string name = ingest::presentJournal(dir / "journal");
    const std::string entry = "journal/" + name.substr(name.rfind('/') + 1);
    dir.put(entry, input);
    const std::string whole = input.substr(0, input.rfind('\n') + 1);
    ingest::Journal journal(dir / "journal");
    require(dir.get(entry) == whole, "whole lines stay, and they alone");
    const std::size_t before = ingest::entriesIn(name).size();
    journal.recall({dir / "no\nfile", "in/x.hdr"});
    std::vector<ingest::Conversion> done;
    done.push_back(converted(dir / "no\nfile"));
    journal.add(done);
    require(dir.get(entry).compare(0, whole.size(), whole) == 0, "no line before changes");
    const std::vector<ingest::JournalEntry> entries = ingest::entriesIn(name);
    require(entries.size() == before + 1, "a file that is done has its line");
    require(entries.back().source == dir / "no\nfile", "the line names the file");
    for (const ingest::JournalEntry& one : entries) {
        require(std::fabs(one.seconds) < 1e12, "an entry has a time");
        ingest::inodeIn(one.identity);
    }
    std::filesystem::remove_all(dir / "journal");
}

}  // namespace zarn
