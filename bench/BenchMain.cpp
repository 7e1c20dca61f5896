// Runs the benchmarks with the library started.
//
// Names are CASE/WHO/arguments, where WHO is "ours", "peer-..." for another library or program, or
// "limit-..." for what the wanted behaviour can't do without. scripts/bench makes ratios of them.

#include <benchmark/benchmark.h>

#include "bench/BenchInput.h"

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 2;
    StartedLibrary const library;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
