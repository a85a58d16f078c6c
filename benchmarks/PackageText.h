// Descriptions of packages as compilers write them, of any size.
#pragma once

#include "framework/description/InputType.h"

#include <string>

namespace benchmarks {

// The type of the input of that index. Out of twenty: eleven floats, three integers of which one is a combo
// box, three colours (float3, float4), two pairs (float2, integer2) and a toggle button.
SubstanceAir::InputType inputTypeAt(int index);

// How many numbers a value of the type has.
int componentCount(SubstanceAir::InputType type);

// A package of one graph: outputs, the last of which is named "Output", inputs with defaults, ranges and
// widgets, and two presets that set every tenth input. Uids of outputs count from firstUid, those of inputs
// go on behind them.
std::string packageText(unsigned int firstUid, int inputs, int outputs);

} // namespace benchmarks
