#include "framework/description/Attributes.h"
#include "framework/description/CompactXml.h"
#include "framework/description/InputDesc.h"
#include "framework/description/OutputDesc.h"
#include "framework/description/ValueText.h"

#include <tinyxml.h>

#include <algorithm>
#include <string_view>

namespace SubstanceAir {

namespace {

template <class T>
T valueAttribute(const TiXmlElement& element, const char* name) {
    T value{};
    if (const char* const text = element.Attribute(name)) valueFromText(text, value);
    return value;
}

template <class T>
std::unique_ptr<InputDescBase> readNumerical(const TiXmlElement& element) {
    auto input = std::make_unique<InputDescNumerical<T>>();
    input->defaultValue = valueAttribute<T>(element, "default");
    input->maxValue = valueAttribute<T>(element, "max");
    input->minValue = valueAttribute<T>(element, "min");
    return input;
}

// A descriptor of the class that the type asks for, with its values; null when there is no such class.
std::unique_ptr<InputDescBase> readValues(const TiXmlElement& element, unsigned int type) {
    switch (type) {
    case Float:
        return readNumerical<float>(element);
    case Float2:
        return readNumerical<Math::Vector2<float>>(element);
    case Float3:
        return readNumerical<Math::Vector3<float>>(element);
    case Float4:
        return readNumerical<Math::Vector4<float>>(element);
    case Integer:
        return readNumerical<int>(element);
    case Image:
        return std::make_unique<InputDescImage>();
    case Integer2:
        return readNumerical<Math::Vector2<int>>(element);
    case Integer3:
        return readNumerical<Math::Vector3<int>>(element);
    case Integer4:
        return readNumerical<Math::Vector4<int>>(element);
    default:
        return nullptr;
    }
}

// Enters the link between the input and the outputs that it names on both sides: one uid for each token
// between commas, and no token in an empty text. A token that is no number names the output of uid 0, if
// there is one.
void linkAlteredOutputs(const TiXmlElement& element, InputDescBase& input, std::vector<OutputDesc>& outputs) {
    const char* const text = element.Attribute("alteroutputs");
    if (!text || !*text) return;
    std::string_view rest(text);
    input.alteredOutputUids.reserve(static_cast<size_t>(std::count(rest.begin(), rest.end(), ',')) + 1);
    for (bool isLast = false; !isLast;) {
        const size_t comma = rest.find(',');
        isLast = comma == std::string_view::npos;
        unsigned int uid = 0;
        support::convertWhole(rest.substr(0, comma), uid);
        if (!isLast) rest.remove_prefix(comma + 1);
        const auto output = findOutput(outputs, uid);
        if (output == outputs.end()) continue;
        input.alteredOutputUids.push_back(uid);
        output->alteringInputUids.push_back(input.uid);
    }
    std::sort(input.alteredOutputUids.begin(), input.alteredOutputUids.end());
}

// With a GUI element but no label in it, the label is empty: only an input without any takes its identifier.
void readGui(const TiXmlElement& element, InputDescBase& input) {
    if (const TiXmlElement* const gui = element.FirstChildElement("inputgui")) {
        input.label = textAttribute(*gui, "label");
        input.guiXml = compactXml(*gui);
    } else {
        input.label = input.identifier;
    }
}

} // namespace

std::unique_ptr<InputDescBase> parseInput(const TiXmlElement& element, std::vector<OutputDesc>& outputs) {
    const auto type = static_cast<unsigned int>(integerAttribute(element, "type", -1));
    std::unique_ptr<InputDescBase> input = readValues(element, type);
    if (!input) return nullptr;

    input->type = type;
    input->identifier = textAttribute(element, "identifier");
    input->isSystem = !input->identifier.empty() && input->identifier.front() == '$';
    input->uid = unsignedAttribute(element, "uid");
    linkAlteredOutputs(element, *input, outputs);
    readGui(element, *input);
    return input;
}

} // namespace SubstanceAir
