#include "embedded/nodes/WhiteNoise.h"

#include "embedded/nodes/Arithmetic.h"
#include "embedded/nodes/NodeKernel.h"
#include "embedded/nodes/Parameters.h"

namespace embedded {
namespace {

enum Parameter { Repeats, Seed };

constexpr int mostRepeats = 16384;

// The cell that the middle of a pixel lies in; sides and cells up to 2^14.
int cellOf(int pixel, int cells, int size) {
    return (2 * pixel + 1) * cells / (2 * size);
}

std::unique_ptr<RowKernel> prepare(const NodeRun& run) {
    return makeRowKernel(run, [width = run.width, height = run.height, columns = run.integer(Repeats, 0),
                               rows = run.integer(Repeats, 1),
                               seed = static_cast<std::uint32_t>(run.integer(Seed))](int y, float* out) {
        const auto row = static_cast<std::uint32_t>(cellOf(y, rows, height));
        for (int x = 0; x < width; ++x) {
            const auto column = static_cast<std::uint32_t>(cellOf(x, columns, width));
            out[x] = unitFloat(hash(column, row, seed).x);
        }
    });
}

const NodeKernel kernel{prepare};

} // namespace

NodeKind whiteNoiseKind() {
    return {17,
            "whiteNoise",
            "A random gray for each cell, 0 to 1, all equally likely.",
            {},
            {number("repeats", ValueType::Integer2, 256, 1, mostRepeats, "cells across and down"),
             seedParameter()},
            ResultChannels::Gray,
            true,
            25,
            &kernel};
}

} // namespace embedded
