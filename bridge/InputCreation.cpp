#include "bridge/InputCreation.h"

#include "bridge/ComboItems.h"
#include "framework/render/InputInstance.h"
#include "material/Substance.h"
#include "material/WidgetNames.h"
#include "support/GuardedXml.h"
#include "support/Numbers.h"

#include <cstring>

namespace kvSubstance {

namespace {

using IntOrFloat = SubstanceInput::IntOrFloat;

// The value as it stands: all components have four bytes.
IntOrFloat valueOf(const SubstanceAir::InputInstanceBase& instance) {
    IntOrFloat values{};
    std::memcpy(&values, instance.rawData(), instance.rawSize());
    return values;
}

Widget packageWidgetNamed(const char* name) {
    return std::strcmp(name, "combobox") == 0 ? WidgetComboBox : widgetNamed(name);
}

// One number for each component, or one for all. Any other count leaves the values as they are.
void readRangeValue(const char* text, const SubstanceInput& input, IntOrFloat& values) {
    const kv::vector<kvString::CString> pieces = kvUtil::split(text, ',', true, false);
    const size_t numComponents = static_cast<size_t>(input.getType() & 7);
    if (pieces.size() != numComponents && pieces.size() != 1) return;
    for (size_t k = 0; k < numComponents; ++k) {
        const char* const piece = pieces[pieces.size() == 1 ? 0 : k].asChar();
        if (input.getType() & 0x10) {
            values.f[k] = support::leadingFloat(piece);
        } else {
            values.i[k] = support::leadingInteger(piece);
        }
    }
}

void readRange(const TiXmlElement& element, SubstanceInput& input) {
    // Shared on purpose: a text of the wrong count hands on what the one before it gave, and hosts show the
    // ranges that come of it.
    IntOrFloat values{};
    const auto read = [&](const char* name, void (SubstanceInput::*store)(IntOrFloat)) {
        const char* const text = element.Attribute(name);
        if (!text) return;
        readRangeValue(text, input, values);
        (input.*store)(values);
    };
    read("min", &SubstanceInput::setMin);
    read("max", &SubstanceInput::setMax);
    read("step", &SubstanceInput::setStep);
    if (const char* const clamp = element.Attribute("clamp")) {
        input.setClamp(kvString::CString(clamp).compareNoCase("on") == 0);
    }
}

void readGui(const TiXmlElement& gui, SubstanceInput& input) {
    const char* const name = gui.Attribute("widget");
    const Widget widget = name ? packageWidgetNamed(name) : WidgetNone;
    if (widget == WidgetNone) return;
    input.setWidget(widget);
    input.setLabel(gui.Attribute("label"));
    if (const char* const description = gui.Attribute("description")) input.setDescription(description);
    const TiXmlElement* const first = gui.FirstChild() ? gui.FirstChild()->ToElement() : nullptr;
    if (first) readRange(*first, input);
    if (const TiXmlElement* const comboBox = gui.FirstChildElement("guicombobox")) {
        input.setCombo(true);
        addComboItems(*comboBox, input);
    }
}

} // namespace

bool findHostType(unsigned int frameworkType, Type& type) {
    switch (frameworkType) {
    case SubstanceAir::Float:
        type = TypeFloat1;
        return true;
    case SubstanceAir::Float2:
        type = TypeFloat2;
        return true;
    case SubstanceAir::Float3:
        type = TypeFloat3;
        return true;
    case SubstanceAir::Float4:
        type = TypeFloat4;
        return true;
    case SubstanceAir::Integer:
        type = TypeInt1;
        return true;
    case SubstanceAir::Integer2:
        type = TypeInt2;
        return true;
    case SubstanceAir::Integer3:
        type = TypeInt3;
        return true;
    case SubstanceAir::Integer4:
        type = TypeInt4;
        return true;
    default:
        return false;
    }
}

void createInput(Substance& material, const SubstanceAir::InputInstanceBase& instance) {
    const SubstanceAir::InputDescBase& desc = instance.desc;
    Type type;
    if (!findHostType(desc.type, type)) return;
    SubstanceInput* const input = material.newInput(desc.uid, desc.identifier.c_str(), type);
    input->setDefault(valueOf(instance), true);
    if (desc.guiXml.empty()) return;
    TiXmlElement gui("");
    if (support::parseXmlElement(desc.guiXml.c_str(), gui)) readGui(gui, *input);
}

} // namespace kvSubstance
