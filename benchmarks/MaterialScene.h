// Materials of many inputs without packages.
#pragma once

#include "framework/description/GraphDesc.h"
#include "material/Substance.h"

namespace benchmarks {

// A material over one graph instance, made in the order in which loading makes its parts. Inputs have the
// types of inputTypeAt.
class MaterialScene {
public:
    explicit MaterialScene(int inputs);
    ~MaterialScene();
    MaterialScene(const MaterialScene&) = delete;
    MaterialScene& operator=(const MaterialScene&) = delete;

    // Sets every number of every input to one that depends on the seed and has six decimals.
    void edit(int seed);

    kv::Reference<kvSubstance::Substance> material{new kvSubstance::Substance};
    std::vector<kvSubstance::SubstanceInput*> inputs;

private:
    SubstanceAir::GraphDesc desc;
};

} // namespace benchmarks
