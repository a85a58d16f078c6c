#include "framework/description/Preset.h"

#include "framework/description/Attributes.h"
#include "framework/description/GraphDesc.h"
#include "support/GuardedXml.h"

#include <tinyxml.h>

namespace SubstanceAir {

namespace {

// The owner knows its inputs: what the element says about them is not read.
void describeByOwner(PresetInputValue& value, const GraphDesc& owner) {
    if (const InputDescBase* const input = findInput(owner.inputs, value.uid)) {
        value.type = input->type;
        value.identifier = input->identifier;
    }
}

void describeByElement(PresetInputValue& value, const TiXmlElement& element) {
    const int type = integerAttribute(element, "type", static_cast<int>(UnknownInputType));
    value.type = static_cast<unsigned int>(type);
    value.identifier = textAttribute(element, "identifier");
}

PresetInputValue readInputValue(const TiXmlElement& element, const GraphDesc* owner) {
    PresetInputValue value;
    value.uid = unsignedAttribute(element, "uid");
    value.value = textAttribute(element, "value");
    if (owner)
        describeByOwner(value, *owner);
    else
        describeByElement(value, element);
    return value;
}

Preset readPreset(const TiXmlElement& element, const GraphDesc* owner) {
    Preset preset;
    preset.packageUrl = owner ? owner->packageUrl : textAttribute(element, "pkgurl");
    preset.label = textAttribute(element, "label");
    preset.description = textAttribute(element, "description");
    forEachChild(element, "presetinput", [&](const TiXmlElement& input) {
        preset.inputValues.push_back(readInputValue(input, owner));
    });
    return preset;
}

} // namespace

void parsePresets(std::vector<Preset>& presets, const TiXmlElement& element, const GraphDesc* owner) {
    presets.reserve(presets.size() + countChildren(element, "sbspreset"));
    forEachChild(element, "sbspreset",
                 [&](const TiXmlElement& preset) { presets.push_back(readPreset(preset, owner)); });
}

bool parsePresetsDocument(std::vector<Preset>& presets, const char* xmlText) {
    const size_t sizeBefore = presets.size();
    const auto document = support::parseXmlDocument(xmlText, TIXML_ENCODING_UTF8);
    const TiXmlElement* const root = document ? rootElement(*document, "sbspresets") : nullptr;
    if (root) parsePresets(presets, *root, nullptr);
    return presets.size() > sizeBefore;
}

} // namespace SubstanceAir
