#include "zarn-ingest/report/Remarks.h"

#include <string>

namespace zarn::ingest {

namespace {

void addTally(const Tally& tally, const std::string& text, bool isWarning,
              std::vector<Remark>& remarks) {
    if (tally.count == 0) return;
    remarks.push_back({tally.firstLine,
                       text + ": " + std::to_string(tally.count) + ", the first in this line",
                       isWarning});
}

}  // namespace

std::vector<Remark> remarksOf(const Outcome& outcome) {
    std::vector<Remark> remarks;
    for (const auto& [repair, tally] : outcome.repairs) {
        const RepairKind& kind = kindOf(repair);
        addTally(tally,
                 std::string("repaired (") + kind.word + "): " + kind.found + " were " + kind.done,
                 false, remarks);
    }
    const Notes& notes = outcome.notes;
    addTally(notes.carriages, "lines that end in CR LF or CR", true, remarks);
    addTally(notes.upperCased, "keywords that became upper case", true, remarks);
    addTally(notes.left, "further headers left out by --primary-only", true, remarks);
    addTally(notes.oldChecksums, "checksums of another file (--checksum renews them)", true,
             remarks);
    remarks.insert(remarks.end(), outcome.moon.remarks.begin(), outcome.moon.remarks.end());
    return remarks;
}

}  // namespace zarn::ingest
