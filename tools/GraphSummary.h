// What there is to know about a graph's inputs, outputs and presets, as text for people and as JSON.
#pragma once

#include "framework/description/GraphDesc.h"
#include "material/Substance.h"

#include <nlohmann/json.hpp>

#include <iosfwd>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tool {

struct InputSummary {
    unsigned int uid = 0;
    std::string identifier;
    std::string label;
    std::string description;
    std::string type;
    std::string widget; // empty when there is none
    std::vector<double> defaultValue;
    std::vector<double> minimum; // these three: empty when not given
    std::vector<double> maximum;
    std::vector<double> step;
    bool clamps = false;
    std::vector<std::pair<int, std::string>> comboItems; // value and text
    std::vector<std::string> altered;                    // identifiers of outputs, or of other inputs
};

struct OutputSummary {
    unsigned int uid = 0;
    std::string identifier;
    std::string label;
    std::string usage; // empty when not known
    std::string format;
    int mipmaps = 0;
    std::optional<std::pair<int, int>> size; // pixels, when the description tells
    bool hasDynamicSize = false;
};

struct PresetSummary {
    std::string label;
    std::string description;
    std::vector<std::pair<std::string, std::string>> values; // identifier and value as written
};

struct GraphSummary {
    std::string url;
    std::string label;
    std::vector<InputSummary> inputs;
    std::vector<OutputSummary> outputs;
    std::vector<PresetSummary> presets;
};

GraphSummary summarize(const SubstanceAir::GraphDesc& graph);

// All but what the input alters, which a material does not tell.
InputSummary summarize(const kvSubstance::SubstanceInput& input);

void printSummary(std::ostream& out, const GraphSummary& graph);
nlohmann::ordered_json toJson(const GraphSummary& graph);

// Indented. Bytes that are no UTF-8 become replacement characters.
void printJson(std::ostream& out, const nlohmann::ordered_json& json);

} // namespace tool
