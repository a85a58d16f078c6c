// Prints the one table of the rows that the benchmark programs have appended to a file, and ends with status
// 1 when a target or a growth limit is missed.
#include "benchmarks/Report.h"

#include <cstdio>

int main(int argc, char** argv) {
    std::vector<benchmarks::Row> rows;
    if (argc != 2 || !benchmarks::readRows(argv[1], rows)) {
        std::fprintf(stderr, "benchmark_table: expected a file of rows, as --rows=FILE makes them\n");
        return 2;
    }
    return benchmarks::printTable(rows) ? 0 : 1;
}
