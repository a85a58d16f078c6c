// Any text as the GUI of an input of any type: it gives a widget, texts, a range and combo items, or leaves
// them unset. The first byte chooses the type, and the default's bytes follow; the rest is the text.
#include "bridge/Bridge.h"
#include "bridge/ComboItems.h"
#include "bridge/InputCreation.h"
#include "framework/description/GraphDesc.h"
#include "framework/render/GraphInstance.h"
#include "fuzzers/Fuzzing.h"
#include "fuzzers/ModelChecks.h"

#include <boost/make_shared.hpp>

#include <memory>

namespace {

using namespace fuzzing;
using namespace SubstanceAir;
namespace Math = SubstanceAir::Math;

template <class T>
std::unique_ptr<InputDescBase> numerical(unsigned int type, Choices& choices) {
    auto input = std::make_unique<InputDescNumerical<T>>();
    input->type = type;
    input->defaultValue = choices.raw<T>();
    return input;
}

std::unique_ptr<InputDescBase> makeInput(Choices& choices) {
    switch (choices.byte() % 8) { // so that the digits '0' to '7' choose it
    case 0:
        return numerical<float>(Float, choices);
    case 1:
        return numerical<Math::Vector2<float>>(Float2, choices);
    case 2:
        return numerical<Math::Vector3<float>>(Float3, choices);
    case 3:
        return numerical<Math::Vector4<float>>(Float4, choices);
    case 4:
        return numerical<int>(Integer, choices);
    case 5:
        return numerical<Math::Vector2<int>>(Integer2, choices);
    case 6:
        return numerical<Math::Vector3<int>>(Integer3, choices);
    default:
        return numerical<Math::Vector4<int>>(Integer4, choices);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Choices choices(data, size);
    GraphDesc graph;
    graph.inputs.push_back(makeInput(choices));
    InputDescBase& desc = *graph.inputs.front();
    desc.identifier = "input";
    desc.guiXml = choices.textUpTo('\0');

    const kv::Reference<kvSubstance::Substance> material(new kvSubstance::Substance);
    material->setPackageURL("pkg:/gui");
    const auto instance = boost::make_shared<GraphInstance>(graph);
    material->getGraphInstances().push_back(instance);
    kvSubstance::createInput(*material, *instance->inputs.front());
    require(material->numInputs() == 1 && !material->isModified(), "an input is made, and no edit");
    kvSubstance::SubstanceInput* const input = material->getInput("input");
    require(input->getComboItem().size() <= kvSubstance::MaxComboItems, "combo boxes have a limit");
    require(input->showInGUI() || input->getWidget() == kvSubstance::WidgetNone, "a widget is shown");
    readInputs(*material);

    input->setValueI(1, 0);
    kvSubstance::syncValueFromSubstanceInputToInputInstanceBase(material, input->getIndexIdentifier(0));
    checkStateString(*material);
    material->getGraphInstances().clear();
    return 0;
}
