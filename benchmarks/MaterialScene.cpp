#include "benchmarks/MaterialScene.h"

#include "benchmarks/PackageText.h"
#include "bridge/InputCreation.h"
#include "framework/render/GraphInstance.h"

#include <boost/make_shared.hpp>

#include <memory>
#include <string>

namespace benchmarks {

using namespace SubstanceAir;

namespace {

constexpr unsigned int FirstUid = 1000000000; // nine digits and more, as uids of packages have

std::unique_ptr<InputDescBase> makeInput(InputType type) {
    switch (type) {
    case Float2:
        return std::make_unique<InputDescNumerical<Math::Vector2<float>>>();
    case Float3:
        return std::make_unique<InputDescNumerical<Math::Vector3<float>>>();
    case Float4:
        return std::make_unique<InputDescNumerical<Math::Vector4<float>>>();
    case Integer:
        return std::make_unique<InputDescNumerical<int>>();
    case Integer2:
        return std::make_unique<InputDescNumerical<Math::Vector2<int>>>();
    default:
        return std::make_unique<InputDescNumerical<float>>();
    }
}

} // namespace

MaterialScene::MaterialScene(int count) {
    for (int i = 0; i < count; ++i) {
        std::unique_ptr<InputDescBase> input = makeInput(inputTypeAt(i));
        input->type = inputTypeAt(i);
        input->uid = FirstUid + 12345u * static_cast<unsigned int>(i);
        input->identifier = "parameter_" + std::to_string(i);
        desc.inputs.push_back(std::move(input));
    }
    material->getGraphInstances().push_back(boost::make_shared<GraphInstance>(desc));
    material->setPackageURL("pkg://benchmark");
    for (const auto& input : desc.inputs) {
        kvSubstance::Type type = kvSubstance::TypeFloat1;
        kvSubstance::findHostType(input->type, type);
        inputs.push_back(material->newInput(input->uid, input->identifier.c_str(), type));
    }
}

MaterialScene::~MaterialScene() {
    material.reset(); // before the description, which its graph instance refers to
}

void MaterialScene::edit(int seed) {
    unsigned int bits = static_cast<unsigned int>(seed) * 2654435769u + 1;
    for (kvSubstance::SubstanceInput* const input : inputs) {
        for (int k = 0; k < (input->getType() & 7); ++k) {
            bits = bits * 1664525u + 1013904223u;
            if (input->getType() & 0x20)
                input->setValueI(static_cast<int>(bits >> 20), k);
            else
                input->setValueF(static_cast<float>(bits >> 8) / 16777216.0f, k);
        }
    }
}

} // namespace benchmarks
