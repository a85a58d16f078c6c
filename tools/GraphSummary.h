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

// Whether a texture tiles.
struct TilingSummary {
    std::string seam;                // by which it may not, such as: node 3 (wave), parameter layout
    std::vector<std::string> images; // identifiers of inputs; unless there is a seam it tiles if they do
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
    std::optional<TilingSummary> tiling; // when the package's program tells
};

struct PresetSummary {
    std::string label;
    std::string description;
    std::vector<std::pair<std::string, std::string>> values; // identifier and value as written
};

struct CostSummary {
    std::size_t nodes = 0;
    double operationsPerPixel = 0; // roughly, at most
    double bytesPerPixel = 0;      // of the results of all nodes
};

struct GraphSummary {
    std::string url;
    std::string label;
    std::vector<InputSummary> inputs;
    std::vector<OutputSummary> outputs;
    std::vector<PresetSummary> presets;
    std::optional<CostSummary> cost; // when the package's program tells
};

GraphSummary summarize(const SubstanceAir::GraphDesc& graph);

// All but what the input alters, which a material does not tell.
InputSummary summarize(const kvSubstance::SubstanceInput& input);

// Short, for people. Empty when there is none.
std::string defaultText(const InputSummary& input);
std::string rangeText(const InputSummary& input);

void printSummary(std::ostream& out, const GraphSummary& graph);
nlohmann::ordered_json toJson(const GraphSummary& graph);

// Indented. Bytes that are no UTF-8 become replacement characters.
void printJson(std::ostream& out, const nlohmann::ordered_json& json);

} // namespace tool
