/// Runs the sides of the comparisons: side-by-side DIRECTORY [OPTION OF GOOGLE BENCHMARK...]
///
/// Files are made in DIRECTORY, which should be in memory. script/bench runs it row by row, so that
/// the sides of a row alternate within seconds.

#include <ace/Log_Msg.h>
#include <benchmark/benchmark.h>

#include "Sides.h"

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (argc != 2) return 2;
    ACE_Log_Msg::instance()->priority_mask(LM_INFO | LM_ERROR, ACE_Log_Msg::PROCESS);
    addMoon();
    addHelpers();
    addSetUp(argv[1]);
    addFiles(argv[1]);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
