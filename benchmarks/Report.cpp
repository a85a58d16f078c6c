#include "benchmarks/Report.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <locale>
#include <sstream>

namespace benchmarks {

namespace {

constexpr const char* rowsOption = "--rows=";

// The value below which that part of the sorted values lies.
double quantile(const std::vector<double>& sorted, double part) {
    const double place = part * static_cast<double>(sorted.size() - 1);
    const auto below = static_cast<std::size_t>(place);
    const std::size_t above = std::min(below + 1, sorted.size() - 1);
    return sorted[below] + (sorted[above] - sorted[below]) * (place - static_cast<double>(below));
}

template <class... Values>
std::string printed(const char* format, Values... values) {
    char text[64];
    std::snprintf(text, sizeof text, format, values...);
    return text;
}

std::string timeText(double nanoseconds) {
    if (nanoseconds <= 0) return "-";
    if (nanoseconds < 1e3) return printed("%.1f ns", nanoseconds);
    if (nanoseconds < 1e6) return printed("%.1f us", nanoseconds / 1e3);
    return printed("%.2f ms", nanoseconds / 1e6);
}

std::string numberText(double number) {
    return number > 0 ? printed("%.2f", number) : "-";
}

std::string limitText(double limit) {
    return limit > 0 ? printed("%.4g", limit) : "-";
}

bool missesTarget(const Row& row) {
    return row.target > 0 && !(row.ratio > 0 && row.ratio <= row.target);
}

bool missesGrowth(const Row& row) {
    return row.growthLimit > 0 && !(row.growth > 0 && row.growth <= row.growthLimit);
}

const char* verdict(const Row& row) {
    if (missesTarget(row) || missesGrowth(row)) return "missed";
    return row.target > 0 || row.growthLimit > 0 ? "met" : "-";
}

} // namespace

Summary summarise(std::vector<double> times) {
    if (times.empty()) return {};
    std::sort(times.begin(), times.end());
    const double median = quantile(times, 0.5);
    return {median, (quantile(times, 0.75) - quantile(times, 0.25)) / 2 / median};
}

std::string takeRowsFile(int& argc, char** argv) {
    std::string path;
    int kept = 0;
    for (int i = 0; i < argc; ++i) {
        if (i > 0 && std::strncmp(argv[i], rowsOption, std::strlen(rowsOption)) == 0)
            path = argv[i] + std::strlen(rowsOption);
        else
            argv[kept++] = argv[i];
    }
    argc = kept;
    argv[argc] = nullptr;
    return path;
}

int report(const std::vector<Row>& rows, const std::string& rowsFile) {
    if (rowsFile.empty()) return printTable(rows) ? 0 : 1;
    std::ofstream file(rowsFile, std::ios::app);
    file.imbue(std::locale::classic());
    file.precision(9);
    for (const Row& row : rows) {
        file << row.name << '\t' << row.size << '\t' << row.time.median << '\t' << row.time.spread << '\t'
             << row.floor << '\t' << row.ratio << '\t' << row.target << '\t' << row.growth << '\t'
             << row.growthLimit << '\n';
    }
    file.flush();
    if (file) return 0;
    std::fprintf(stderr, "%s: cannot be written\n", rowsFile.c_str());
    return 2;
}

bool readRows(const std::string& path, std::vector<Row>& rows) {
    std::ifstream file(path);
    std::string line;
    while (std::getline(file, line)) {
        std::istringstream fields(line);
        fields.imbue(std::locale::classic());
        Row row;
        std::getline(fields, row.name, '\t');
        std::getline(fields, row.size, '\t');
        fields >> row.time.median >> row.time.spread >> row.floor >> row.ratio >> row.target >> row.growth >>
            row.growthLimit;
        if (!fields) return false;
        rows.push_back(row);
    }
    return !rows.empty();
}

bool printTable(const std::vector<Row>& rows) {
    constexpr const char* format = "%-52s %-16s %10s %7s %10s %7s %7s %7s %7s  %s\n";
    std::printf(format, "work", "size", "median", "spread", "floor", "ratio", "target", "growth", "limit",
                "verdict");
    for (const Row& row : rows) {
        std::printf(format, row.name.c_str(), row.size.c_str(), timeText(row.time.median).c_str(),
                    printed("%.1f%%", 100 * row.time.spread).c_str(), timeText(row.floor).c_str(),
                    numberText(row.ratio).c_str(), limitText(row.target).c_str(),
                    numberText(row.growth).c_str(), limitText(row.growthLimit).c_str(), verdict(row));
    }
    bool isFine = true;
    for (const Row& row : rows) {
        if (missesTarget(row))
            std::printf("missed: %s, %s: %.2f times its floor, at most %.4g\n", row.name.c_str(),
                        row.size.c_str(), row.ratio, row.target);
        if (missesGrowth(row))
            std::printf("missed: %s, %s: grew %.2f times, at most %.4g\n", row.name.c_str(), row.size.c_str(),
                        row.growth, row.growthLimit);
        isFine = isFine && !missesTarget(row) && !missesGrowth(row);
    }
    return isFine;
}

} // namespace benchmarks
