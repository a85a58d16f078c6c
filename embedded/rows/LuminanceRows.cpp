#include "embedded/rows/LuminanceRows.h"

#include "embedded/rows/Arithmetic.h"

namespace embedded::KVSUBSTANCE_ROWS {

void luminanceRow(const float* red, const float* green, const float* blue, int count, float* __restrict out) {
    for (int i = 0; i < count; ++i) {
        const float colour[3] = {red[i], green[i], blue[i]};
        out[i] = luminance(colour);
    }
}

} // namespace embedded::KVSUBSTANCE_ROWS
