#include "tools/GraphSummary.h"

#include "embedded/compiler/Literal.h"
#include "embedded/compiler/Vocabulary.h"
#include "support/GuardedXml.h"
#include "tools/InputValue.h"

#include <algorithm>
#include <charconv>
#include <cstring>

namespace tool {
namespace {

// The double that prints as the float does: 0.1 rather than 0.10000000149.
double decimalOf(float number) {
    char text[32];
    const char* const end = std::to_chars(text, text + sizeof text, number).ptr;
    double decimal = number;
    std::from_chars(text, end, decimal);
    return decimal;
}

template <class T>
std::vector<double> defaultOf(const SubstanceAir::InputDescBase& input) {
    const T& value = static_cast<const SubstanceAir::InputDescNumerical<T>&>(input).defaultValue;
    const bool isFloat = input.type <= SubstanceAir::Float4;
    std::vector<double> numbers;
    for (size_t offset = 0; offset < sizeof value; offset += 4) {
        float real;
        int integer;
        std::memcpy(&real, reinterpret_cast<const char*>(&value) + offset, sizeof real);
        std::memcpy(&integer, reinterpret_cast<const char*>(&value) + offset, sizeof integer);
        numbers.push_back(isFloat ? decimalOf(real) : integer);
    }
    return numbers;
}

std::vector<double> readDefault(const SubstanceAir::InputDescBase& input) {
    using namespace SubstanceAir;
    switch (input.type) {
    case Float:
        return defaultOf<float>(input);
    case Float2:
        return defaultOf<Math::Vector2<float>>(input);
    case Float3:
        return defaultOf<Math::Vector3<float>>(input);
    case Float4:
        return defaultOf<Math::Vector4<float>>(input);
    case Integer:
        return defaultOf<int>(input);
    case Integer2:
        return defaultOf<Math::Vector2<int>>(input);
    case Integer3:
        return defaultOf<Math::Vector3<int>>(input);
    case Integer4:
        return defaultOf<Math::Vector4<int>>(input);
    default:
        return {};
    }
}

std::string attribute(const TiXmlElement& element, const char* name) {
    const char* const text = element.Attribute(name);
    return text ? text : "";
}

// Numbers with commas between them; what is no number is left out.
std::vector<double> numbersOf(const TiXmlElement& element, const char* name) {
    std::vector<double> numbers;
    for (const auto& piece : kvUtil::split(attribute(element, name).c_str(), ',', true, false))
        if (const auto number = embedded::parseFloat(piece.asChar())) numbers.push_back(decimalOf(*number));
    return numbers;
}

// What the GUI hints add.
void readGuiHints(const std::string& guiXml, InputSummary& summary) {
    TiXmlElement gui("");
    if (guiXml.empty() || !support::parseXmlElement(guiXml.c_str(), gui)) return;
    summary.widget = attribute(gui, "widget");
    summary.description = attribute(gui, "description");
    if (const TiXmlElement* const range = gui.FirstChild() ? gui.FirstChild()->ToElement() : nullptr) {
        summary.minimum = numbersOf(*range, "min");
        summary.maximum = numbersOf(*range, "max");
        summary.step = numbersOf(*range, "step");
        summary.clamps = kvString::CString("on").compareNoCase(attribute(*range, "clamp").c_str()) == 0;
    }
    const TiXmlElement* const combo = gui.FirstChildElement("guicombobox");
    for (const TiXmlElement* item = combo ? combo->FirstChildElement("guicomboboxitem") : nullptr; item;
         item = item->NextSiblingElement("guicomboboxitem"))
        if (const auto value = embedded::parseInteger(attribute(*item, "value")))
            summary.comboItems.emplace_back(*value, attribute(*item, "text"));
}

std::string formatName(int code) {
    for (const std::string& name : embedded::formatNames())
        if (embedded::findFormat(name) == code) return name;
    return std::to_string(code);
}

const char* typeName(unsigned int type) {
    return embedded::nameOf(static_cast<embedded::ValueType>(type));
}

InputSummary summarizeInput(const SubstanceAir::InputDescBase& input, const SubstanceAir::GraphDesc& graph) {
    InputSummary summary;
    summary.uid = input.uid;
    summary.identifier = input.identifier;
    summary.label = input.label;
    summary.type = typeName(input.type);
    summary.defaultValue = readDefault(input);
    readGuiHints(input.guiXml, summary);
    for (const unsigned int uid : input.alteredOutputUids) {
        const auto output = findOutput(graph.outputs, uid);
        if (output != graph.outputs.end()) summary.altered.push_back(output->identifier);
    }
    std::sort(summary.altered.begin(), summary.altered.end());
    return summary;
}

OutputSummary summarizeOutput(const SubstanceAir::OutputDesc& output) {
    OutputSummary summary;
    summary.uid = output.uid;
    summary.identifier = output.identifier;
    summary.label = output.label;
    if (output.channel < SubstanceAir::ChannelUsageCount)
        summary.usage = SubstanceAir::channelUsageNames()[output.channel];
    summary.format = formatName(output.format);
    summary.mipmaps = static_cast<int>(output.mipmaps);
    return summary;
}

const char* widgetName(kvSubstance::Widget widget) {
    switch (widget) {
    case kvSubstance::WidgetSlider:
        return "slider";
    case kvSubstance::WidgetAngle:
        return "angle";
    case kvSubstance::WidgetToggleButton:
        return "togglebutton";
    case kvSubstance::WidgetColor:
        return "color";
    case kvSubstance::WidgetImage:
        return "image";
    case kvSubstance::WidgetComboBox:
        return "combobox";
    case kvSubstance::WidgetNone:
        break;
    }
    return "";
}

} // namespace

GraphSummary summarize(const SubstanceAir::GraphDesc& graph) {
    GraphSummary summary{graph.packageUrl, graph.label, {}, {}, {}, {}};
    for (const auto& input : graph.inputs) summary.inputs.push_back(summarizeInput(*input, graph));
    for (const auto& output : graph.outputs) summary.outputs.push_back(summarizeOutput(output));
    for (const auto& preset : graph.presets) {
        PresetSummary& entry =
            summary.presets.emplace_back(PresetSummary{preset.label, preset.description, {}});
        for (const auto& value : preset.inputValues)
            entry.values.emplace_back(value.identifier.empty() ? "uid " + std::to_string(value.uid)
                                                               : value.identifier,
                                      value.value);
    }
    const auto byIdentifier = [](const auto& a, const auto& b) { return a.identifier < b.identifier; };
    std::stable_sort(summary.inputs.begin(), summary.inputs.end(), byIdentifier);
    std::stable_sort(summary.outputs.begin(), summary.outputs.end(), byIdentifier);
    return summary;
}

InputSummary summarize(const kvSubstance::SubstanceInput& input) {
    using kvSubstance::SubstanceInput;
    InputSummary summary;
    const auto numbers = [&](bool known, int (SubstanceInput::*integer)(int) const,
                             float (SubstanceInput::*real)(int) const) {
        std::vector<double> components;
        for (int i = 0; known && i < (input.getType() & 7); ++i)
            components.push_back(input.getType() & 0x20 ? (input.*integer)(i) : decimalOf((input.*real)(i)));
        return components;
    };
    summary.uid = input.getUID();
    summary.identifier = input.getIdentifier().asChar();
    summary.label = textOf(input.getLabel());
    summary.description = textOf(input.getDescription());
    summary.type = embedded::nameOf(valueTypeOf(input.getType()));
    summary.widget = widgetName(input.getWidget());
    summary.defaultValue =
        numbers(input.hasDefault(), &SubstanceInput::getDefaultI, &SubstanceInput::getDefaultF);
    summary.minimum = numbers(input.hasMin(), &SubstanceInput::getMinI, &SubstanceInput::getMinF);
    summary.maximum = numbers(input.hasMax(), &SubstanceInput::getMaxI, &SubstanceInput::getMaxF);
    summary.step = numbers(input.hasStep(), &SubstanceInput::getStepI, &SubstanceInput::getStepF);
    summary.clamps = input.shouldClamp();
    return summary;
}

} // namespace tool
