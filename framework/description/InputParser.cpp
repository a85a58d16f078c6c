#include "framework/description/Attributes.h"
#include "framework/description/InputDesc.h"
#include "framework/description/OutputDesc.h"
#include "framework/description/ValueText.h"

#include <tinyxml.h>

#include <algorithm>

namespace SubstanceAir {

namespace {

template <class T>
T valueAttribute(const TiXmlElement& element, const char* name) {
    T value{};
    valueFromText(textAttribute(element, name), value);
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

// One uid for each token between commas, 0 for a token that is no number. An empty text has no token.
std::vector<unsigned int> readUids(const std::string& text) {
    std::vector<unsigned int> uids;
    if (text.empty()) return uids;
    size_t begin = 0;
    size_t comma = 0;
    do {
        comma = text.find(',', begin);
        const std::string token = text.substr(begin, comma - begin);
        uids.push_back(support::wholeOrZero<unsigned int>(token.c_str()));
        begin = comma + 1;
    } while (comma != std::string::npos);
    return uids;
}

// Enters the link between the input and the outputs that it names on both sides. A token that is no number
// names the output of uid 0, if there is one.
void linkAlteredOutputs(const TiXmlElement& element, InputDescBase& input, std::vector<OutputDesc>& outputs) {
    for (const unsigned int uid : readUids(textAttribute(element, "alteroutputs"))) {
        const auto output = findOutput(outputs, uid);
        if (output == outputs.end()) continue;
        input.alteredOutputUids.push_back(uid);
        output->alteringInputUids.push_back(input.uid);
    }
    std::sort(input.alteredOutputUids.begin(), input.alteredOutputUids.end());
}

std::string printedCompactly(const TiXmlElement& element) {
    TiXmlPrinter printer;
    printer.SetStreamPrinting();
    element.Accept(&printer);
    return printer.Str();
}

// With a GUI element but no label in it, the label is empty: only an input without any takes its identifier.
void readGui(const TiXmlElement& element, InputDescBase& input) {
    if (const TiXmlElement* const gui = element.FirstChildElement("inputgui")) {
        input.label = textAttribute(*gui, "label");
        input.guiXml = printedCompactly(*gui);
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
