#include "Comparison.h"

#include <cstdio>

namespace {

constexpr char HEADINGS[] = "                              worst    median      99 %";

void printInputs(const Figure& figure, const Inputs& in) {
    for (std::size_t i = 0; i < INPUTS; ++i)
        if ((figure.inputs >> i & 1UL) != 0) std::printf("  %s %.17g", INPUT_NAMES[i], in[i]);
}

}  // namespace

void Comparison::print(const Figure& figure, const Tally& tally, double bound) const {
    const Differences& all = tally.differences;
    std::printf("%-19s %-5s %9.2g %9.2g %9.2g", figure.name, figure.unit, all.worst(),
                all.quantile(0.5), all.quantile(0.99));
    if (bound < UNBOUNDED) std::printf(" %9.2g", bound);
    if (tally.otherBranch > 0) std::printf("  [%zu other branch]", tally.otherBranch);
    if (all.worst() > 0) printInputs(figure, inputs_[all.worstInput()]);
    std::putchar('\n');
}

bool Comparison::printEdges(const Tallies& tallies, bool bounded) const {
    bool kept = true;
    for (std::size_t i = 0; i < FIGURES; ++i) {
        if (tallies[i].differences.count() + tallies[i].otherBranch == 0) continue;
        const double bound = bounded ? FIGURE_TABLE[i].bound : UNBOUNDED;
        print(FIGURE_TABLE[i], tallies[i], bound);
        kept = kept && tallies[i].differences.worst() <= bound;
    }
    return kept;
}

bool Comparison::report() const {
    const Tallies& ordinary = tallies_[EDGES];
    std::printf("%zu ordinary inputs\n%s     bound  worst case\n", ordinary[0].differences.count(),
                HEADINGS);
    bool kept = true;
    for (std::size_t i = 0; i < FIGURES; ++i) {
        print(FIGURE_TABLE[i], ordinary[i], FIGURE_TABLE[i].bound);
        kept = kept && ordinary[i].differences.worst() <= FIGURE_TABLE[i].bound;
    }
    std::printf("\nnear the edges\n%s\nordinary inputs that lie there\n", HEADINGS);
    kept = printEdges(strays_, false) && kept;
    for (std::size_t kind = 0; kind < EDGES; ++kind) {
        std::printf("%s: %s\n", EDGE_TABLE[kind].name, EDGE_TABLE[kind].why);
        kept = printEdges(tallies_[kind], EDGE_TABLE[kind].bounded) && kept;
    }
    std::puts(kept ? "\nevery bound is kept" : "\nA BOUND IS EXCEEDED");
    return kept;
}
