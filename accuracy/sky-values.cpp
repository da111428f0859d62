/// Compares the library's moon and sky on two machines: one writes values, the other reads them.
///
///     sky-values --print >FILE     2000 ordinary inputs and 20 at each edge of the formulas, each
///                                  with all outputs
///     sky-values --compare FILE    computes them again; ends with 1 when a bound is exceeded

#include <cstdio>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>

#include "Comparison.h"
#include "SkyInputs.h"

namespace {

constexpr int ORDINARY = 2000;
constexpr int PER_EDGE = 20;
constexpr std::uint64_t SEED = 2;

void printCase(std::size_t kind, const Inputs& in) {
    std::printf("%zu", kind);
    for (const double value : in) std::printf(" %.17g", value);
    for (const double value : evaluate(in)) std::printf(" %.17g", value);
    std::putchar('\n');
}

int printAll() {
    std::printf("# kind");
    for (const char* name : INPUT_NAMES) std::printf(" %s", name);
    std::printf(" and %d outputs\n", static_cast<int>(OUTPUTS));
    Random random(SEED);
    for (int i = 0; i < ORDINARY; ++i) printCase(EDGES, randomInputs(random));
    for (std::size_t kind = 0; kind < EDGES; ++kind) {
        for (int i = 0; i < PER_EDGE; ++i) {
            Inputs in = randomInputs(random);
            EDGE_TABLE[kind].move(in, random);
            printCase(kind, in);
        }
    }
    return std::fflush(stdout) == 0 ? 0 : 2;
}

int compareWith(const char* fileName) {
    std::ifstream file(fileName);
    if (!file) {
        std::cerr << fileName << " cannot be opened\n";
        return 2;
    }
    Comparison comparison;
    std::string line;
    std::getline(file, line);  // the names
    std::size_t cases = 0;
    for (; std::getline(file, line); ++cases) {
        std::istringstream fields(line);
        std::size_t kind = 0;
        Inputs in{};
        Outputs<double> theirs{};
        fields >> kind;
        for (double& value : in) fields >> value;
        for (double& value : theirs) fields >> value;
        if (!fields || kind > EDGES) {
            std::cerr << fileName << ": case " << cases + 1 << " cannot be read\n";
            return 2;
        }
        comparison.add(kind, in, evaluate(in), theirs);
    }
    if (cases != ORDINARY + EDGES * PER_EDGE) {
        std::cerr << fileName << ": " << cases << " cases\n";
        return 2;
    }
    return comparison.report() ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    const std::string option = argc > 1 ? argv[1] : "";
    if (argc == 2 && option == "--print") return printAll();
    if (argc == 3 && option == "--compare") return compareWith(argv[2]);
    std::cerr << "sky-values --print | --compare FILE\n";
    return 2;
}
