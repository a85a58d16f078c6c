#include "fuzzers/Model.h"

#include "bridge/ComboItems.h"
#include "bridge/InputCreation.h"
#include "framework/render/ProcessObjects.h"

#include <array>

namespace fuzzing {

using namespace kvSubstance;
using namespace SubstanceAir;

namespace {

using Input = std::unique_ptr<InputDescBase>;

template <class T, InputType type>
Input numerical(Choices& choices) {
    auto input = std::make_unique<InputDescNumerical<T>>();
    input->type = type;
    input->defaultValue = choices.raw<T>();
    return input;
}

constexpr std::array<Input (*)(Choices&), numericalTypes> makers = {numerical<float, Float>,
                                                                    numerical<Math::Vector2<float>, Float2>,
                                                                    numerical<Math::Vector3<float>, Float3>,
                                                                    numerical<Math::Vector4<float>, Float4>,
                                                                    numerical<int, Integer>,
                                                                    numerical<Math::Vector2<int>, Integer2>,
                                                                    numerical<Math::Vector3<int>, Integer3>,
                                                                    numerical<Math::Vector4<int>, Integer4>};

} // namespace

Input numericalInput(unsigned int number, Choices& choices) {
    Input input = makers.at(number - 1)(choices);
    input->uid = number;
    input->identifier = "i" + std::to_string(number);
    return input;
}

GraphDesc graphOfAllTypes() {
    Choices zeros(nullptr, 0);
    GraphDesc graph;
    graph.packageUrl = "pkg:/a";
    for (unsigned int number = 1; number <= numericalTypes; ++number)
        graph.inputs.push_back(numericalInput(number, zeros));
    return graph;
}

kv::Reference<Substance> materialOf(const boost::shared_ptr<GraphInstance>& graph) {
    const kv::Reference<Substance> material(new Substance);
    material->setPackageURL(graph->desc.packageUrl.c_str());
    material->getGraphInstances().push_back(graph);
    for (const auto& input : graph->inputs) createInput(*material, *input);
    return material;
}

void tryValue(GraphInstance& graph, const std::string& identifier, const std::string& value) {
    auto* const input = dynamic_cast<InputInstanceNumericalBase*>(graph.findInput(identifier));
    if (!input || !input->setValueFromText(value)) return;
    require(input->setValueFromText(input->valueAsText()), "a value's own text is taken");
}

void readInputs(Substance& material) {
    for (const kvString::CString& identifier : material.getInputIds()) {
        SubstanceInput* const input = material.getInput(identifier);
        require(input != nullptr, "listed inputs are found");
        for (int k = 0; k < (input->getType() & 7); ++k) {
            for (const auto component :
                 {&SubstanceInput::getValueI, &SubstanceInput::getDefaultI, &SubstanceInput::getMinI,
                  &SubstanceInput::getMaxI, &SubstanceInput::getStepI})
                (input->*component)(k);
            input->getUniqueLabel(k);
            input->getIndexIdentifier(k);
        }
        input->isDefaultValue();
        require(!input->isCombo() || input->getType() == TypeInt1, "combo boxes are for single integers");
        require(input->getComboItem().size() <= MaxComboItems, "combo boxes have a limit");
    }
}

void checkStateString(Substance& material) {
    material.applyStateString(material.getStateString());
    const kvString::CString first = material.getStateString();
    material.applyStateString(first);
    require(material.getStateString() == first, "a state string is its own after it was applied");
}

void resetRenderer() {
    if (ProcessObjects* const objects = processObjects()) objects->renderer.reset();
}

} // namespace fuzzing
