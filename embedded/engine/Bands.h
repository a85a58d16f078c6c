// How row work is spread: a runner takes the number of rows, the number of samples in a row and a function
// for rows [begin, end), and returns when every row was computed once, in whatever bands, order and threads
// it likes. An exception of the function comes out of the runner, after all bands in progress have ended.
#pragma once

#include <functional>

namespace embedded {

using RowFunction = std::function<void(int begin, int end)>;
using BandRunner = std::function<void(int rows, int rowSamples, const RowFunction& function)>;

inline void runInOneBand(int rows, int, const RowFunction& function) {
    function(0, rows);
}

} // namespace embedded
