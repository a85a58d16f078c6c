// Any text as the GUI of an input of any type: it gives a widget, texts, a range and combo items, or leaves
// them unset. The first byte chooses the type, and the default's bytes follow; the rest is the text.
#include "bridge/Bridge.h"
#include "fuzzers/Model.h"

#include <boost/make_shared.hpp>

using namespace fuzzing;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Choices choices(data, size);
    SubstanceAir::GraphDesc graph;
    graph.inputs.push_back(numericalInput(1 + choices.below(numericalTypes), choices));
    graph.inputs.front()->guiXml = choices.text();

    const auto material = materialOf(boost::make_shared<SubstanceAir::GraphInstance>(graph));
    require(material->numInputs() == 1 && !material->isModified(), "an input is made, and no edit");
    kvSubstance::SubstanceInput* const input = material->getInput(material->getInputIds().front());
    require(input->showInGUI() || input->getWidget() == kvSubstance::WidgetNone, "a widget is shown");
    readInputs(*material);

    input->setValueI(1, 0);
    kvSubstance::syncValueFromSubstanceInputToInputInstanceBase(material, input->getIndexIdentifier(0));
    checkStateString(*material);
    return 0;
}
