#include "framework/description/GraphDesc.h"

#include <utility>

namespace SubstanceAir {

namespace {

std::vector<std::unique_ptr<InputDescBase>>
cloneAll(const std::vector<std::unique_ptr<InputDescBase>>& inputs) {
    std::vector<std::unique_ptr<InputDescBase>> clones;
    clones.reserve(inputs.size());
    for (const auto& input : inputs) clones.push_back(input->clone());
    return clones;
}

} // namespace

GraphDesc::GraphDesc(const GraphDesc& other)
    : packageUrl(other.packageUrl)
    , label(other.label)
    , outputs(other.outputs)
    , inputs(cloneAll(other.inputs)) {}

GraphDesc& GraphDesc::operator=(const GraphDesc& other) {
    if (this == &other) return *this;
    packageUrl = other.packageUrl;
    label = other.label;
    outputs = other.outputs;
    inputs = cloneAll(other.inputs);
    return *this;
}

} // namespace SubstanceAir
