// What running a program costs at most, before it runs.
#pragma once

#include "embedded/program/Program.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace embedded {

// Up to this many operations for a pixel, a node without sources is computed anew for each that reads it, if
// that spares an image.
constexpr double cheapGenerator = 4;

struct ProgramCost {
    std::size_t nodes = 0;            // that have to run
    std::size_t repeats = 0;          // of cheap generators, for all but their first reader
    std::size_t conversions = 0;      // of sources and outputs, to the size or to the gray that is read
    double operations = 0;            // floating-point operations, roughly
    std::uint64_t bytes = 0;          // of the results of all nodes; the engine holds fewer of them at a time
    std::uint64_t pixels = 0;         // of the largest result
    std::uint64_t computedPixels = 0; // of all results, repeats and conversions together
};

// The cost of computing these outputs, indexes into Program::outputs, whatever the values of inputs are, for
// the resolution (base-2 logarithms of width and height) of all nodes whose resolution an input drives; where
// several inputs do so it is the largest, and sizes that do not follow the same input are taken to differ.
// Images that the host gives are taken to have the size of the nodes that show them. The program holds to the
// rules of Verifier.h.
ProgramCost costOf(const Program& program, const std::vector<std::size_t>& outputs, int log2Width,
                   int log2Height);

} // namespace embedded
