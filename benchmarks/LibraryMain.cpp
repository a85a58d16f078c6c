// How fast the library is, as ratios to floors that are measured in the same run, over a linker and an engine
// that do next to nothing (IdlePlatform.h). Each file names its floors.
//
//     library_benchmarks                              all of it, as a table
//     library_benchmarks --benchmark_filter=load      a part
//     library_benchmarks --rows=FILE                  appends the rows to a file for benchmark_table
//
// The status is 1 when a ratio or the growth over ten times the size exceeds its limit.
#include "benchmarks/LibraryBenchmarks.h"

#include <benchmark/benchmark.h>

int main(int argc, char** argv) {
    const std::string rowsFile = benchmarks::takeRowsFile(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;

    benchmarks::addLoading();
    benchmarks::addTextureRequest();
    benchmarks::addStateString();
    benchmarks::addEditing();
    benchmarks::addSynchronisation();
    return benchmarks::runAll(rowsFile);
}
