/// Compares the library's moon and sky with its own formulas in 50-digit arithmetic:
/// fifty-digits [COUNT]
///
/// COUNT random inputs (100000 unless given), and a hundredth as many at each edge of the formulas.
/// Ends with 1 when an ordinary input shows a difference above its figure's bound.

#include <cstdio>
#include <cstdlib>

#include "Comparison.h"
#include "FiftyDigits.h"
#include "SkyInputs.h"

namespace {

constexpr unsigned long COUNT = 100000;
constexpr unsigned long PER_EDGE = 100;  // ordinary inputs for each one at an edge of each kind
constexpr std::uint64_t SEED = 1;

void addInputs(Comparison& comparison, std::size_t kind, unsigned long count, Random& random) {
    for (unsigned long i = 0; i < count; ++i) {
        Inputs in = randomInputs(random);
        if (kind != EDGES) EDGE_TABLE[kind].move(in, random);
        comparison.add(kind, in, evaluate(in), evaluateExactly(in));
    }
}

}  // namespace

int main(int argc, char** argv) {
    const unsigned long count = argc > 1 ? std::strtoul(argv[1], nullptr, 10) : COUNT;
    if (argc > 2 || count < PER_EDGE) {
        std::fprintf(stderr, "fifty-digits [COUNT], at least %lu\n", PER_EDGE);
        return 2;
    }
    Random random(SEED);
    Comparison comparison;
    addInputs(comparison, EDGES, count, random);
    for (std::size_t kind = 0; kind < EDGES; ++kind)
        addInputs(comparison, kind, count / PER_EDGE, random);
    return comparison.report() ? 0 : 1;
}
