#include "benchmarks/Comparison.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <memory>
#include <stdexcept>

namespace benchmarks {

namespace {

constexpr double ShortestSample = 1e6; // nanoseconds; shorter pieces are run several times in a row

double nanoseconds(Clock clock) {
    if (clock == Clock::Wall) {
        const auto now = std::chrono::steady_clock::now().time_since_epoch();
        return static_cast<double>(std::chrono::duration_cast<std::chrono::nanoseconds>(now).count());
    }
    std::timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e9 + static_cast<double>(time.tv_nsec);
}

// A piece with the times that it took.
class Measured {
public:
    Measured(Piece measuredPiece, Clock measuringClock)
        : piece(std::move(measuredPiece))
        , clock(measuringClock) {
        const double first = sample(); // also warms up
        if (!piece.prepare) runs = std::max(1, static_cast<int>(ShortestSample / first));
    }

    void measure() { times.push_back(sample()); }

    std::vector<double> times; // nanoseconds of one run, by rounds

private:
    double sample() const {
        if (piece.prepare) piece.prepare();
        const double begin = nanoseconds(clock);
        for (int i = 0; i < runs; ++i) piece.run();
        return (nanoseconds(clock) - begin) / runs;
    }

    Piece piece;
    Clock clock;
    int runs = 1;
};

double medianRatio(const std::vector<double>& numerators, const std::vector<double>& denominators) {
    std::vector<double> ratios;
    ratios.reserve(numerators.size());
    for (std::size_t i = 0; i < numerators.size(); ++i) ratios.push_back(numerators[i] / denominators[i]);
    return summarise(std::move(ratios)).median;
}

std::vector<Row> rows;

const Row* findRow(const std::string& name, const std::string& size) {
    const auto isIt = [&](const Row& row) { return row.name == name && row.size == size; };
    const auto found = std::find_if(rows.begin(), rows.end(), isIt);
    return found == rows.end() ? nullptr : &*found;
}

std::string sizeText(const Comparison& comparison, int size) {
    return std::to_string(size) + " " + comparison.unit;
}

void addRow(const Comparison& comparison, int size, const Measured& work, const Measured& floor) {
    Row row;
    row.name = comparison.name;
    row.size = sizeText(comparison, size);
    row.time = summarise(work.times);
    row.floor = summarise(floor.times).median;
    row.ratio = medianRatio(work.times, floor.times);
    row.target = comparison.target;
    const int smallest = comparison.sizes.front();
    const Row* const first = size == smallest ? nullptr : findRow(row.name, sizeText(comparison, smallest));
    if (first) {
        row.growth = row.time.median / first->time.median;
        const double expected = std::max(static_cast<double>(size) / smallest, row.floor / first->floor);
        row.growthLimit = comparison.growthPerSize * expected;
    }
    rows.push_back(row);
}

void run(benchmark::State& state, const Comparison& comparison, int size) {
    try {
        Measured work(comparison.work(size), comparison.clock);
        Measured floor(comparison.floor(size), comparison.clock);
        for (auto _ : state) {
            work.measure();
            floor.measure();
            state.SetIterationTime(work.times.back() / 1e9);
        }
        addRow(comparison, size, work, floor);
    } catch (const std::runtime_error& error) {
        state.SkipWithError(error.what());
    }
}

// Names each benchmark that is done on the standard error stream.
class Progress : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context&) override { return true; }

    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& each : runs) {
            const char* const problem = each.error_occurred ? each.error_message.c_str() : "measured";
            std::fprintf(stderr, "%s: %s\n", each.run_name.function_name.c_str(), problem);
            failed = failed || each.error_occurred;
        }
    }

    bool hasFailed() const { return failed; }

private:
    bool failed = false;
};

} // namespace

void add(const Comparison& comparison) {
    for (const int size : comparison.sizes) {
        const std::string name = comparison.name + ", " + sizeText(comparison, size);
        auto* const registered = benchmark::RegisterBenchmark(
            name.c_str(), [comparison, size](benchmark::State& state) { run(state, comparison, size); });
        registered->Iterations(comparison.rounds)->UseManualTime();
    }
}

int runAll(const std::string& rowsFile) {
    Progress progress;
    benchmark::RunSpecifiedBenchmarks(&progress);
    return progress.hasFailed() ? 2 : report(rows, rowsFile);
}

} // namespace benchmarks
