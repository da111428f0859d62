#include "zarn-ingest/header/Repairs.h"

namespace zarn::ingest {

namespace {

constexpr RepairKind KINDS[] = {
    {"preamble", "byte-order marks", "left out"},
    {"preamble", "blank lines before the first card", "left out"},
    {"preamble", "lines of title or separation", "kept as COMMENT cards"},
    {"columns", "lines of several cards", "cut every 80 columns"},
    {"columns", "lines of an indented text", "moved to column 1"},
    {"columns", "cards whose keyword or equals sign is out of its columns", "moved"},
    {"characters", "tabs", "replaced by blanks up to the next stop"},
    {"characters", "letters outside ASCII", "written in ASCII"},
    {"characters", "characters without a form in ASCII", "replaced by '?'"},
    {"characters", "control characters", "replaced by blanks"},
    {"keyword", "keywords too long or of other characters", "written as HIERARCH cards"},
    {"keyword", "lines that are no card", "kept as COMMENT cards"},
    {"value", "values in a form that FITS does not have", "rewritten or put in quotes"},
    {"long", "values and comments beyond column 80", "moved closer or continued in CONTINUE cards"},
    {"long", "texts without a closing quote", "closed"},
    {"long", "commentary cards beyond column 80", "continued in further cards"},
    {"long", "comments that no further card can continue", "cut at column 80"},
    {"axes", "cards that describe data", "left out"},
    {"mandatory", "missing cards that each header begins with", "supplied"},
    {"mandatory", "cards of the header's beginning out of place or form", "put in order"},
    {"mandatory", "repeated cards of the header's beginning", "left out"},
    {"extensions", "further headers", "written as extensions without data"},
    {"extensions", "compressed images", "kept as tables, ZIMAGE as a HIERARCH card"},
    {"extensions", "tables that no reader could open", "written as images without axes"},
};

static_assert(sizeof KINDS / sizeof *KINDS == static_cast<std::size_t>(Repair::BROKEN_TABLES) + 1);

}  // namespace

const RepairKind& kindOf(Repair repair) { return KINDS[static_cast<std::size_t>(repair)]; }

std::map<std::string, Tally> byWord(const Repairs& repairs) {
    std::map<std::string, Tally> words;
    for (const auto& [repair, tally] : repairs)
        words[kindOf(repair).word].add(tally.firstLine, tally.count);
    return words;
}

}  // namespace zarn::ingest
