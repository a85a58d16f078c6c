// kvsubstance nodes: the reference of node kinds, for authors of package sources.

#include "embedded/compiler/Vocabulary.h"
#include "embedded/nodes/NodeKind.h"
#include "support/Numbers.h"
#include "tools/commands/Commands.h"

#include <algorithm>
#include <iostream>
#include <string>

namespace tool {
namespace {

using embedded::NodeKind;
using embedded::ParameterInfo;

const char* nameOf(embedded::PortChannels channels) {
    switch (channels) {
    case embedded::PortChannels::Gray:
        return "gray";
    case embedded::PortChannels::Colour:
        return "colour";
    case embedded::PortChannels::Any:
        return "any";
    }
    return "";
}

const char* describe(embedded::ResultChannels result) {
    switch (result) {
    case embedded::ResultChannels::Gray:
        return "Gives gray.";
    case embedded::ResultChannels::Colour:
        return "Gives colour.";
    case embedded::ResultChannels::Widest:
        return "Gives colour when a source is colour, else gray.";
    case embedded::ResultChannels::ByParameter:
        return "Gives what the parameter `colour` says.";
    }
    return "";
}

std::string number(double value) {
    return support::toText(static_cast<float>(value));
}

// One number when all components have the same.
std::string defaultText(const ParameterInfo& parameter) {
    if (parameter.type == embedded::ValueType::Image) return "";
    if (!parameter.choices.empty())
        return parameter.choices[static_cast<size_t>(parameter.defaultValue.front())];
    const int count = componentCount(parameter.type);
    const auto end = parameter.defaultValue.begin() + count;
    if (std::all_of(parameter.defaultValue.begin(), end,
                    [&](double value) { return value == parameter.defaultValue.front(); }))
        return number(parameter.defaultValue.front());
    std::string text;
    for (auto value = parameter.defaultValue.begin(); value != end; ++value)
        text += (text.empty() ? "" : ",") + number(*value);
    return text;
}

std::string rangeText(const ParameterInfo& parameter) {
    if (parameter.type == embedded::ValueType::Image) return "an image input";
    if (parameter.choices.empty()) {
        constexpr double unlimited = 1e9;
        if (parameter.maximum > unlimited) return "any";
        return number(parameter.minimum) + " to " + number(parameter.maximum);
    }
    std::string text;
    for (const char* const choice : parameter.choices)
        text += (text.empty() ? "`" : ", `") + std::string(choice) + "`";
    return text;
}

// In the worst case: nothing is known of the parameters.
std::string describeTiling(const NodeKind& kind) {
    const embedded::KnownParameters unknown(kind.parameters.size());
    if (const char* const parameter = kind.breaksPeriod ? kind.breaksPeriod(unknown) : nullptr)
        return "May have a seam, by the parameter `" + std::string(parameter) + "`.";
    return kind.ports.empty() ? "Tiles." : "Tiles if its sources do.";
}

std::string borderText(int border) {
    if (border == 0) return "the pixel";
    if (border == embedded::anywhere) return "any pixel";
    return border == 1 ? "one pixel around" : std::to_string(border) + " pixels around";
}

void print(const NodeKind& kind) {
    std::cout << "\n## `" << kind.name << "`\n\n"
              << kind.summary << " " << describe(kind.result) << " " << describeTiling(kind)
              << " Costs up to about " << number(kind.costPerPixel) << " operations for a pixel.\n";
    if (!kind.ports.empty()) {
        std::cout << "\n| Port | Takes | | Reads |\n|---|---|---|---|\n";
        for (const auto& port : kind.ports)
            std::cout << "| `" << port.name << "` | " << nameOf(port.channels) << " | "
                      << (port.required ? "required" : "optional") << " | " << borderText(port.border)
                      << " |\n";
    }
    if (!kind.parameters.empty()) {
        std::cout << "\n| Parameter | Type | Default | Range | |\n|---|---|---|---|---|\n";
        for (const ParameterInfo& parameter : kind.parameters)
            std::cout << "| `" << parameter.name << "` | " << nameOf(parameter.type) << " | "
                      << defaultText(parameter) << " | " << rangeText(parameter) << " | " << parameter.summary
                      << " |\n";
    }
}

} // namespace

void addNodes(CLI::App& app, int&) {
    CLI::App* const command = app.add_subcommand("nodes", "Print the reference of node kinds, as Markdown");
    command->footer("Example: kvsubstance nodes | less");
    command->callback([] {
        std::cout
            << "# Node kinds\n\n"
               "What `node` elements of a package source can be (see package-source.md). This page is what\n"
               "`kvsubstance nodes` prints.\n";
        for (const NodeKind& kind : embedded::nodeKinds()) print(kind);
    });
}

} // namespace tool
