#include "tools/GraphSummary.h"

#include "tools/Table.h"

#include <charconv>
#include <cmath>
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

std::string tilingText(const TilingSummary& tiling) {
    if (!tiling.seam.empty()) return "may not: " + tiling.seam;
    if (tiling.images.empty()) return "yes";
    return "if " + joined(tiling.images) + (tiling.images.size() == 1 ? " does" : " do");
}

} // namespace

std::string defaultText(const InputSummary& input) {
    return joined(input.defaultValue);
}

std::string rangeText(const InputSummary& input) {
    if (input.minimum.empty() && input.maximum.empty()) return "";
    const auto end = [](const std::vector<double>& numbers) {
        return numbers.empty() ? std::string("any") : joined(numbers);
    };
    return end(input.minimum) + " to " + end(input.maximum) +
           (input.step.empty() ? "" : " by " + joined(input.step)) + (input.clamps ? "" : ", open");
}

void printSummary(std::ostream& out, const GraphSummary& graph) {
    out << "graph " << graph.url << (graph.label.empty() ? "" : "  \"" + graph.label + "\"") << "\n";

    out << "\n  inputs (" << graph.inputs.size() << ")\n";
    Table inputs({"identifier", "label", "type", "default", "range", "widget", "alters"});
    for (const InputSummary& input : graph.inputs)
        inputs.add({input.identifier, input.label, input.type, defaultText(input), rangeText(input),
                    input.widget, joined(input.altered)});
    inputs.print(out, 4);
    for (const InputSummary& input : graph.inputs) {
        if (input.comboItems.empty()) continue;
        out << "    choices of " << input.identifier << ":";
        for (const auto& [value, text] : input.comboItems) out << "  " << value << " " << text;
        out << "\n";
    }

    out << "\n  outputs (" << graph.outputs.size() << ")\n";
    const bool tellsTiling = !graph.outputs.empty() && graph.outputs.front().tiling;
    std::vector<std::string> headings = {"identifier", "label", "usage", "format", "mipmaps", "size"};
    if (tellsTiling) headings.push_back("tiles");
    Table outputs(headings);
    for (const OutputSummary& output : graph.outputs) {
        const std::string size =
            output.size ? std::to_string(output.size->first) + "x" + std::to_string(output.size->second) : "";
        std::vector<std::string> row = {output.identifier,
                                        output.label,
                                        output.usage,
                                        output.format,
                                        std::to_string(output.mipmaps),
                                        output.hasDynamicSize || !output.size
                                            ? size + (size.empty() ? "$resolution" : " dynamic")
                                            : size};
        if (tellsTiling) row.push_back(output.tiling ? tilingText(*output.tiling) : "");
        outputs.add(std::move(row));
    }
    outputs.print(out, 4);
    if (graph.cost)
        out << "    about " << textOf(std::round(graph.cost->operationsPerPixel))
            << " operations for a pixel, " << graph.cost->nodes << " nodes\n";

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
        if (output.tiling) {
            entry["tiles"] = output.tiling->seam.empty();
            entry["tilesIf"] = output.tiling->images;
            if (!output.tiling->seam.empty()) entry["seam"] = output.tiling->seam;
        }
        outputs.push_back(std::move(entry));
    }
    ordered_json& presets = json["presets"] = ordered_json::array();
    for (const PresetSummary& preset : graph.presets) {
        ordered_json values = ordered_json::object();
        for (const auto& [identifier, value] : preset.values) values[identifier] = value;
        presets.push_back({{"label", preset.label}, {"description", preset.description}, {"values", values}});
    }
    if (graph.cost)
        json["cost"] = {{"nodes", graph.cost->nodes},
                        {"operationsPerPixel", graph.cost->operationsPerPixel},
                        {"bytesPerPixel", graph.cost->bytesPerPixel}};
    return json;
}

void printJson(std::ostream& out, const nlohmann::ordered_json& json) {
    out << json.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) << "\n";
}

} // namespace tool
