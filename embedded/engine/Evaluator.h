// Computes wanted outputs of a program: needed nodes only, each once, images freed after their last use.
#pragma once

#include "embedded/engine/Bands.h"
#include "embedded/engine/InputValues.h"
#include "embedded/nodes/Image.h"
#include "embedded/program/Program.h"

#include <functional>
#include <vector>

namespace embedded {

// Takes an output's image as soon as it is done; output is an index into Program::outputs.
using OutputReceiver = std::function<void(std::size_t output, const Image& image)>;

// The program has passed the verifier; the outputs are indices into Program::outputs, each once. Throws
// std::bad_alloc before any work when the images would need more than memoryLimit bytes.
void evaluate(const Program& program, const std::vector<std::size_t>& outputs, const InputValues& inputs,
              std::uint64_t memoryLimit, const BandRunner& runner, const OutputReceiver& receive);

} // namespace embedded
