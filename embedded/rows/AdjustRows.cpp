#include "embedded/rows/AdjustRows.h"

#include "embedded/rows/Arithmetic.h"

namespace embedded::KVSUBSTANCE_ROWS {

void adjustRow(const Adjustment& adjustment, const float* in, int count, float* __restrict out) {
    const Adjustment a = adjustment;
    if (a.clamps) {
        for (int i = 0; i < count; ++i) out[i] = clamp(in[i] * a.scale + a.offset, a.low, a.high);
    } else {
        for (int i = 0; i < count; ++i) out[i] = in[i] * a.scale + a.offset;
    }
}

} // namespace embedded::KVSUBSTANCE_ROWS
