#include "embedded/rows/WhiteNoiseRows.h"

#include "embedded/rows/Arithmetic.h"

namespace embedded::KVSUBSTANCE_ROWS {

void whiteNoiseRow(uint32_t seed, int row, const int* columns, int count, float* out) {
    float* __restrict const numbers = out;
    for (int i = 0; i < count; ++i)
        numbers[i] = unitFloat(hash(static_cast<uint32_t>(columns[i]), static_cast<uint32_t>(row), seed).x);
}

} // namespace embedded::KVSUBSTANCE_ROWS
