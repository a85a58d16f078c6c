// What benchmarks find out: rows that several programs write into one file, and the table that is made of
// them.
//
// Times alone drift with the machine, so every piece of work stands beside a floor: the least that anybody
// could do instead, measured in the same run and in turn with the work. Targets are for the
// median of the rounds' ratios. How the time grows is the ratio of the medians of two sizes.
#pragma once

#include <string>
#include <vector>

namespace benchmarks {

// Of many times, in nanoseconds.
struct Summary {
    double median = 0;
    double spread = 0; // half the distance between the quartiles, as a part of the median
};

Summary summarise(std::vector<double> times);

// One line of the table. What is 0 from the floor on was not measured, or has no limit.
struct Row {
    std::string name;
    std::string size; // with its unit
    Summary time;
    double floor = 0;  // the floor's median, in nanoseconds
    double ratio = 0;  // of the time to the floor
    double target = 0; // the largest ratio
    double growth = 0; // the ratio of the time to that of the smallest size
    double growthLimit = 0;
};

// Takes "--rows=FILE" out of the arguments; empty when it is not there.
std::string takeRowsFile(int& argc, char** argv);

// Appends the rows to the file, or without one prints their table. The exit status of the program.
int report(const std::vector<Row>& rows, const std::string& rowsFile);

// The rows of a file; false when it cannot be read.
bool readRows(const std::string& path, std::vector<Row>& rows);

// Prints the table, and a line for each missed target or growth limit. False when there is one.
bool printTable(const std::vector<Row>& rows);

} // namespace benchmarks
