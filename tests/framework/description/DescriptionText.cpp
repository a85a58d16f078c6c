#include "tests/framework/description/DescriptionText.h"
#include "tests/ClassicText.h"

#include <array>
#include <cstring>

namespace descriptiontext {

using namespace SubstanceAir;

namespace {

template <class Numbers>
std::string join(const Numbers& numbers) {
    ClassicText text;
    for (const auto number : numbers) text << (text.tellp() > 0 ? "," : "") << number;
    return text.str();
}

template <class T, class Number>
std::string valuesAs(const InputDescBase& input) {
    const auto* const numerical = dynamic_cast<const InputDescNumerical<T>*>(&input);
    if (!numerical) return "";
    const auto components = [](const T& value) {
        std::array<Number, sizeof(T) / sizeof(Number)> numbers;
        std::memcpy(numbers.data(), &value, sizeof(T));
        return join(numbers);
    };
    return components(numerical->defaultValue) + " in " + components(numerical->minValue) + " to " +
           components(numerical->maxValue);
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

std::string print(const OutputDesc& output) {
    ClassicText text;
    text << "output " << output.uid << " " << output.identifier << " '" << output.label << "' format "
         << output.format << " mipmaps " << output.mipmaps << " " << channelUsageNames()[output.channel]
         << " altered by " << join(output.alteringInputUids) << ".\n";
    return text.str();
}

} // namespace

std::string print(const std::vector<unsigned int>& uids) {
    return join(uids);
}

std::string print(const std::vector<std::pair<unsigned int, unsigned int>>& pairs) {
    ClassicText text;
    for (const auto& [first, second] : pairs) text << first << ">" << second << " ";
    return text.str();
}

std::string print(const InputDescBase& input) {
    ClassicText text;
    text << "input " << input.uid << " " << input.identifier << " '" << input.label << "' type " << input.type
         << " " << values(input) << (input.isSystem ? " system" : "") << " alters "
         << join(input.alteredOutputUids) << "." << input.guiXml << "\n";
    return text.str();
}

std::string print(const GraphDesc& graph) {
    std::string result = "graph " + graph.packageUrl + " '" + graph.label + "'\n";
    for (const OutputDesc& output : graph.outputs) result += print(output);
    for (const auto& input : graph.inputs) result += print(*input);
    for (const Preset& preset : graph.presets) {
        result += "preset " + preset.packageUrl + " '" + preset.label + "' '" + preset.description + "'\n";
        for (const PresetInputValue& value : preset.inputValues)
            result += "  " + std::to_string(value.uid) + " " + value.identifier + " type " +
                      std::to_string(value.type) + " = " + value.value + ".\n";
    }
    return result;
}

} // namespace descriptiontext
