#include "tools/GraphSummary.h"

#include "embedded/compiler/Literal.h"
#include "embedded/compiler/Vocabulary.h"
#include "support/GuardedXml.h"
#include "tools/InputValue.h"
#include "tools/Table.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <ostream>

namespace tool {
namespace {

// Short, for people: whole numbers in full, others with four digits.
std::string textOf(double number) {
    char text[32];
    const bool isWhole = number == std::floor(number) && std::fabs(number) < 1e10;
    return {
        text,
        std::to_chars(text, text + sizeof text, number, std::chars_format::general, isWhole ? 10 : 4).ptr};
}

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

std::string joined(const std::vector<std::string>& texts) {
    std::string all;
    for (const std::string& text : texts) all += (all.empty() ? "" : ", ") + text;
    return all;
}

std::string joined(const std::vector<double>& numbers) {
    std::string all;
    for (const double number : numbers) all += (all.empty() ? "" : ",") + textOf(number);
    return all;
}

std::string rangeText(const InputSummary& input) {
    if (input.minimum.empty() && input.maximum.empty()) return "";
    const auto end = [](const std::vector<double>& numbers) {
        return numbers.empty() ? std::string("any") : joined(numbers);
    };
    return end(input.minimum) + " to " + end(input.maximum) +
           (input.step.empty() ? "" : " by " + joined(input.step)) + (input.clamps ? "" : ", open");
}

} // namespace

GraphSummary summarize(const SubstanceAir::GraphDesc& graph) {
    GraphSummary summary{graph.packageUrl, graph.label, {}, {}, {}};
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

void printSummary(std::ostream& out, const GraphSummary& graph) {
    out << "graph " << graph.url << (graph.label.empty() ? "" : "  \"" + graph.label + "\"") << "\n";

    out << "\n  inputs (" << graph.inputs.size() << ")\n";
    Table inputs({"identifier", "label", "type", "default", "range", "widget", "alters"});
    for (const InputSummary& input : graph.inputs)
        inputs.add({input.identifier, input.label, input.type, joined(input.defaultValue), rangeText(input),
                    input.widget, joined(input.altered)});
    inputs.print(out, 4);
    for (const InputSummary& input : graph.inputs) {
        if (input.comboItems.empty()) continue;
        out << "    choices of " << input.identifier << ":";
        for (const auto& [value, text] : input.comboItems) out << "  " << value << " " << text;
        out << "\n";
    }

    out << "\n  outputs (" << graph.outputs.size() << ")\n";
    Table outputs({"identifier", "label", "usage", "format", "mipmaps", "size"});
    for (const OutputSummary& output : graph.outputs) {
        const std::string size =
            output.size ? std::to_string(output.size->first) + "x" + std::to_string(output.size->second) : "";
        outputs.add(
            {output.identifier, output.label, output.usage, output.format, std::to_string(output.mipmaps),
             output.hasDynamicSize || !output.size ? size + (size.empty() ? "$resolution" : " dynamic")
                                                   : size});
    }
    outputs.print(out, 4);

    if (graph.presets.empty()) return;
    out << "\n  presets (" << graph.presets.size() << ")\n";
    for (const PresetSummary& preset : graph.presets) {
        out << "    \"" << preset.label << "\"" << (preset.description.empty() ? "" : "  ")
            << preset.description << "\n";
        for (const auto& [identifier, value] : preset.values)
            out << "      " << identifier << " = " << value << "\n";
    }
}

namespace {

nlohmann::ordered_json toJson(const InputSummary& input) {
    using nlohmann::ordered_json;
    const bool isInteger = input.type.compare(0, 7, "integer") == 0;
    const auto numbers = [isInteger](const std::vector<double>& values) {
        ordered_json list = ordered_json::array();
        for (const double value : values)
            list.push_back(isInteger ? ordered_json(std::llround(value)) : ordered_json(value));
        return list;
    };
    ordered_json items = ordered_json::array();
    for (const auto& [value, text] : input.comboItems) items.push_back({{"value", value}, {"text", text}});
    return {{"identifier", input.identifier},
            {"uid", input.uid},
            {"label", input.label},
            {"description", input.description},
            {"type", input.type},
            {"widget", input.widget},
            {"default", numbers(input.defaultValue)},
            {"min", numbers(input.minimum)},
            {"max", numbers(input.maximum)},
            {"step", numbers(input.step)},
            {"clamp", input.clamps},
            {"comboItems", items},
            {"alters", input.altered}};
}

} // namespace

nlohmann::ordered_json toJson(const GraphSummary& graph) {
    using nlohmann::ordered_json;
    ordered_json json{{"url", graph.url}, {"label", graph.label}};
    ordered_json& inputs = json["inputs"] = ordered_json::array();
    for (const InputSummary& input : graph.inputs) inputs.push_back(toJson(input));
    ordered_json& outputs = json["outputs"] = ordered_json::array();
    for (const OutputSummary& output : graph.outputs) {
        ordered_json entry{{"identifier", output.identifier}, {"uid", output.uid},
                           {"label", output.label},           {"usage", output.usage},
                           {"format", output.format},         {"mipmaps", output.mipmaps}};
        if (output.size) {
            entry["width"] = output.size->first;
            entry["height"] = output.size->second;
            entry["dynamicSize"] = output.hasDynamicSize;
        }
        outputs.push_back(std::move(entry));
    }
    ordered_json& presets = json["presets"] = ordered_json::array();
    for (const PresetSummary& preset : graph.presets) {
        ordered_json values = ordered_json::object();
        for (const auto& [identifier, value] : preset.values) values[identifier] = value;
        presets.push_back({{"label", preset.label}, {"description", preset.description}, {"values", values}});
    }
    return json;
}

void printJson(std::ostream& out, const nlohmann::ordered_json& json) {
    out << json.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) << "\n";
}

} // namespace tool
