#include "framework/render/StackInputs.h"

#include <algorithm>
#include <map>
#include <string>

namespace SubstanceAir {

namespace {

// The system inputs by identifier. Of several with one identifier the first counts.
std::map<std::string, InputDescBase*>
systemInputs(const std::vector<std::unique_ptr<InputDescBase>>& inputs) {
    std::map<std::string, InputDescBase*> found;
    for (const auto& input : inputs)
        if (input->isSystem) found.emplace(input->identifier, input.get());
    return found;
}

void fuse(StackInputs& joined, InputDescBase& bottomInput, const InputDescBase& topInput) {
    const auto [known, isNew] = joined.fusedUids.emplace(topInput.uid, bottomInput.uid);
    if (isNew || known->second != bottomInput.uid)
        joined.fusedPairs.emplace_back(bottomInput.uid, topInput.uid);
    bottomInput.alteredOutputUids.insert(bottomInput.alteredOutputUids.end(),
                                         topInput.alteredOutputUids.begin(),
                                         topInput.alteredOutputUids.end());
}

} // namespace

StackInputs joinInputs(const GraphDesc& bottom, const GraphDesc& top, const StackDependencies& dependencies) {
    StackInputs joined;
    for (const auto& input : bottom.inputs) joined.inputs.push_back(input->clone());
    const std::map<std::string, InputDescBase*> bottomSystemInputs = systemInputs(joined.inputs);

    for (const auto& input : top.inputs) {
        if (dependencies.isFed(input->uid)) continue;
        const auto twin = bottomSystemInputs.find(input->identifier);
        if (twin == bottomSystemInputs.end())
            joined.inputs.push_back(input->clone());
        else
            fuse(joined, *twin->second, *input);
    }
    std::stable_sort(joined.inputs.begin(), joined.inputs.end(),
                     [](const auto& a, const auto& b) { return a->uid < b->uid; });
    return joined;
}

} // namespace SubstanceAir
