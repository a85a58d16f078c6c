#include "tests/framework/description/DescriptionText.h"

#include "support/Numbers.h"

#include <cstring>

namespace descriptiontext {

using namespace SubstanceAir;

namespace {

std::string numberText(float value) {
    return support::toText(value);
}
std::string numberText(int value) {
    return std::to_string(value);
}
std::string numberText(unsigned int value) {
    return std::to_string(value);
}

template <class Numbers>
std::string join(const Numbers& numbers) {
    std::string result;
    for (const auto number : numbers) result += (result.empty() ? "" : ",") + numberText(number);
    return result;
}

template <class Number, class T>
std::string components(const T& value) {
    Number numbers[sizeof(T) / sizeof(Number)];
    std::memcpy(numbers, &value, sizeof(T));
    return join(numbers);
}

template <class T, class Number>
std::string valuesAs(const InputDescBase& input) {
    const auto* const numerical = dynamic_cast<const InputDescNumerical<T>*>(&input);
    if (!numerical) return "";
    return components<Number>(numerical->defaultValue) + " in " + components<Number>(numerical->minValue) +
           " to " + components<Number>(numerical->maxValue);
}

template <class Number>
std::string valuesOf(const InputDescBase& input) {
    return valuesAs<Number, Number>(input) + valuesAs<Math::Vector2<Number>, Number>(input) +
           valuesAs<Math::Vector3<Number>, Number>(input) + valuesAs<Math::Vector4<Number>, Number>(input);
}

// Goes by the class of the descriptor, not by its type code.
std::string values(const InputDescBase& input) {
    if (input.isNumerical()) return valuesOf<float>(input) + valuesOf<int>(input);
    return input.isImage() ? "image" : "nothing";
}

} // namespace

std::string print(const std::vector<unsigned int>& uids) {
    return join(uids);
}

std::string print(const std::vector<std::pair<unsigned int, unsigned int>>& pairs) {
    std::string result;
    for (const auto& [first, second] : pairs) result += numberText(first) + ">" + numberText(second) + " ";
    return result;
}

std::string print(const OutputDesc& output) {
    return "output " + numberText(output.uid) + " " + output.identifier + " '" + output.label + "' format " +
           numberText(output.format) + " mipmaps " + numberText(output.mipmaps) + " " +
           channelUsageNames()[output.channel] + " altered by " + join(output.alteringInputUids) + ".\n";
}

std::string print(const InputDescBase& input) {
    return "input " + numberText(input.uid) + " " + input.identifier + " '" + input.label + "' type " +
           numberText(input.type) + " " + values(input) + (input.isSystem ? " system" : "") + " alters " +
           join(input.alteredOutputUids) + "." + input.guiXml + "\n";
}

std::string print(const std::vector<Preset>& presets) {
    std::string result;
    for (const Preset& preset : presets) {
        result += "preset " + preset.packageUrl + " '" + preset.label + "' '" + preset.description + "'\n";
        for (const PresetInputValue& value : preset.inputValues)
            result += "  " + numberText(value.uid) + " " + value.identifier + " type " +
                      numberText(value.type) + " = " + value.value + ".\n";
    }
    return result;
}

std::string print(const GraphDesc& graph) {
    std::string result = "graph " + graph.packageUrl + " '" + graph.label + "'\n";
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
