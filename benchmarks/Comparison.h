// A piece of work of the library beside its floor, each in a few sizes.
//
// For each size there are rounds, in which the work and the floor take turns. The ratio is the median of the
// rounds' ratios, since whatever else disturbs the machine mostly lasts longer than a round.
//
// Floors grow in proportion to the size, but for what the caches of the machine add when they are outgrown.
// Time may therefore grow as the size does or as the floor's time does, whichever is more, and 1.3 times
// that. Targets hold in every size, and so bound the growth of most work anyway.
#pragma once

#include "benchmarks/Report.h"

#include <functional>
#include <string>
#include <vector>

namespace benchmarks {

// What is timed, in one size. Throws std::runtime_error when it does not do what it should.
struct Piece {
    std::function<void()> run;
    std::function<void()> prepare; // before each run, and not timed; may be empty
};

enum class Clock {
    Processor, // of the calling thread: other work on the machine hardly shows
    Wall,      // for work on several threads
};

struct Comparison {
    std::string name;
    std::string unit; // of the sizes
    std::vector<int> sizes;
    std::function<Piece(int size)> work;
    std::function<Piece(int size)> floor;
    double target = 0;        // the largest ratio to the floor; 0: the ratio is for information
    double growthPerSize = 0; // how much faster than that the time may grow; 0: for information
    Clock clock = Clock::Processor;
    int rounds = 41;
};

// Under its name, for --benchmark_filter.
void add(const Comparison& comparison);

// Runs what was added, appends the rows to the file, or without one prints their table. The exit status of
// the program: 1 when the table holds a missed target or growth limit, 2 when a benchmark failed.
int runAll(const std::string& rowsFile);

} // namespace benchmarks
