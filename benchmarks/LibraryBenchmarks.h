// What library_benchmarks consists of; each file adds its own comparisons.
#pragma once

#include "benchmarks/Comparison.h"

namespace benchmarks {

void addLoading();
void addTextureRequest();
void addStateString();
void addEditing();
void addSynchronisation();

} // namespace benchmarks
