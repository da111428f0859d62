/// The sides of the comparisons, under names of the form ROW/SIDE. bench/rows.csv pairs them.
#ifndef ZARNSYS_BENCH_SIDES_H
#define ZARNSYS_BENCH_SIDES_H

#include <benchmark/benchmark.h>

#include <string>
#include <utility>

/// Registers a side. `work` does its work once and returns something that depends on all of it.
template <typename Work>
void addSide(const std::string& name, Work work) {
    benchmark::RegisterBenchmark(name.c_str(), [work = std::move(work)](benchmark::State& state) {
        for (auto _ : state) benchmark::DoNotOptimize(work());
    });
}

void addMoon();
void addHelpers();

/// @{
/// @param directory  exists; files are left in it
void addSetUp(const std::string& directory);
void addFiles(const std::string& directory);
/// @}

#endif  // ZARNSYS_BENCH_SIDES_H
