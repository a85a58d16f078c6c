#include "tests/framework/description/DescriptionText.h"

#include "support/Numbers.h"

namespace descriptiontext {

using namespace SubstanceAir;

namespace {

std::string quoted(const std::string& text) {
    return '"' + text + '"';
}

std::string text(float value) {
    return support::toText(value);
}
std::string text(int value) {
    return std::to_string(value);
}
template <class T>
std::string text(const Math::Vector2<T>& v) {
    return text(v.x) + "," + text(v.y);
}
template <class T>
std::string text(const Math::Vector3<T>& v) {
    return text(v.x) + "," + text(v.y) + "," + text(v.z);
}
template <class T>
std::string text(const Math::Vector4<T>& v) {
    return text(v.x) + "," + text(v.y) + "," + text(v.z) + "," + text(v.w);
}

template <class T>
std::string valuesAs(const InputDescBase& input) {
    const auto* const numerical = dynamic_cast<const InputDescNumerical<T>*>(&input);
    if (!numerical) return "";
    return text(numerical->defaultValue) + " in " + text(numerical->minValue) + " to " +
           text(numerical->maxValue);
}

// Goes by the class of the descriptor, not by its type code.
std::string values(const InputDescBase& input) {
    using namespace Math;
    if (!input.isNumerical()) return input.isImage() ? "image" : "nothing";
    return valuesAs<float>(input) + valuesAs<Vector2<float>>(input) + valuesAs<Vector3<float>>(input) +
           valuesAs<Vector4<float>>(input) + valuesAs<int>(input) + valuesAs<Vector2<int>>(input) +
           valuesAs<Vector3<int>>(input) + valuesAs<Vector4<int>>(input);
}

} // namespace

std::string print(const std::vector<unsigned int>& uids) {
    std::string result;
    for (const unsigned int uid : uids) result += (result.empty() ? "" : ",") + std::to_string(uid);
    return result;
}

std::string print(const std::vector<std::pair<unsigned int, unsigned int>>& pairs) {
    std::string result;
    for (const auto& [first, second] : pairs)
        result += (result.empty() ? "" : " ") + std::to_string(first) + ">" + std::to_string(second);
    return result;
}

std::string print(const OutputDesc& output) {
    return "output " + std::to_string(output.uid) + " " + output.identifier + " " + quoted(output.label) +
           " format " + std::to_string(output.format) + " mipmaps " + std::to_string(output.mipmaps) + " " +
           channelUsageNames()[output.channel] + " altered by " + print(output.alteringInputUids) + "\n";
}

std::string print(const InputDescBase& input) {
    const std::string gui = input.guiXml.empty() ? "" : "  " + input.guiXml + "\n";
    return "input " + std::to_string(input.uid) + " " + input.identifier + " " + quoted(input.label) +
           " type " + std::to_string(input.type) + " " + values(input) + (input.isSystem ? " system" : "") +
           " alters " + print(input.alteredOutputUids) + "\n" + gui;
}

std::string print(const std::vector<Preset>& presets) {
    std::string result;
    for (const Preset& preset : presets) {
        result += "preset " + preset.packageUrl + " " + quoted(preset.label) + " " +
                  quoted(preset.description) + "\n";
        for (const PresetInputValue& value : preset.inputValues)
            result += "  " + std::to_string(value.uid) + " " + value.identifier + " type " +
                      std::to_string(value.type) + " = " + value.value + "\n";
    }
    return result;
}

std::string print(const GraphDesc& graph) {
    std::string result = "graph " + graph.packageUrl + " " + quoted(graph.label) +
                         (graph.parent ? "" : " without a package") + "\n";
    for (const OutputDesc& output : graph.outputs) result += print(output);
    for (const auto& input : graph.inputs) result += print(*input);
    return result + print(graph.presets);
}

std::string print(const std::vector<GraphDesc>& graphs) {
    std::string result;
    for (const GraphDesc& graph : graphs) result += print(graph);
    return result;
}

} // namespace descriptiontext
