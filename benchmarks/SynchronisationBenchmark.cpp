// Carrying changed values from a material's inputs to its graph instance, each input once.
//
// The floor finds the same identifiers in a hash table of the standard library and stores the values there.
#include "benchmarks/LibraryBenchmarks.h"
#include "benchmarks/MaterialScene.h"
#include "bridge/Synchronisation.h"

#include <benchmark/benchmark.h>

#include <memory>
#include <unordered_map>

namespace benchmarks {

namespace {

Piece synchroniseEach(int inputs) {
    const auto scene = std::make_shared<MaterialScene>(inputs);
    return {[scene] {
                for (kvSubstance::SubstanceInput* const input : scene->inputs)
                    kvSubstance::syncValueFromSubstanceInputToInputInstanceBase(scene->material, input);
            },
            [scene, seed = 0]() mutable { scene->edit(++seed); }};
}

Piece storeEach(int inputs) {
    const auto scene = std::make_shared<MaterialScene>(inputs);
    std::vector<std::string> identifiers;
    std::unordered_map<std::string, kvSubstance::SubstanceInput::IntOrFloat> stored;
    identifiers.reserve(scene->inputs.size());
    for (const kvSubstance::SubstanceInput* const input : scene->inputs) {
        identifiers.emplace_back(input->getIdentifier().asChar());
        stored[identifiers.back()] = {};
    }
    return {[scene, identifiers, stored]() mutable {
                for (std::size_t i = 0; i < identifiers.size(); ++i) {
                    auto& values = stored.find(identifiers[i])->second;
                    for (int k = 0; k < (scene->inputs[i]->getType() & 7); ++k)
                        values.f[k] = scene->inputs[i]->getValueF(k);
                }
                benchmark::ClobberMemory();
            },
            [scene, seed = 0]() mutable { scene->edit(++seed); }};
}

} // namespace

void addSynchronisation() {
    add({"synchronise every input", "inputs", {1000, 10000}, synchroniseEach, storeEach, 0, 1.3});
}

} // namespace benchmarks
