// A package source, read and checked element by element; the wiring of the nodes is still in words.
#pragma once

#include "embedded/compiler/ElementReader.h"
#include "embedded/compiler/Vocabulary.h"
#include "embedded/nodes/NodeKind.h"
#include "embedded/program/Program.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace embedded {

struct SourceItem {
    std::int32_t value = 0;
    std::string text;
};

struct SourceInput {
    SourcePlace place;
    std::string identifier;
    std::optional<ValueType> type; // absent after an error
    SystemInput role = SystemInput::None;
    Value defaultValue;
    std::optional<Value> minimum;
    std::optional<Value> maximum;
    std::optional<Value> step;
    bool clamp = true;
    const Widget* widget = nullptr;
    std::string label;
    std::string description;
    std::vector<SourceItem> items;
};

struct SourceNode {
    SourcePlace place;
    std::string name;
    const NodeKind* kind = nullptr;          // null after an error
    std::vector<SourceAttribute> attributes; // ports and parameters
};

struct SourceOutput {
    SourcePlace place;
    std::string identifier;
    std::optional<SourceAttribute> node;
    std::string usage; // or empty
    std::int32_t format = 0;
    std::uint32_t mipmaps = 1;
    std::string label;
};

struct SourcePreset {
    struct Setting {
        std::size_t input = 0; // index in the graph
        Value value;
    };
    SourcePlace place;
    std::string label; // of no other preset in the graph
    std::string description;
    std::vector<Setting> settings;
};

struct SourceGraph {
    SourcePlace place;
    std::string url;
    std::string label;
    std::vector<SourceInput> inputs;
    std::vector<SourceNode> nodes;
    std::vector<SourceOutput> outputs;
    std::vector<SourcePreset> presets;
};

// Null when there is none.
template <typename Item>
const Item* findNamed(const std::vector<Item>& items, std::string Item::*name, std::string_view wanted) {
    for (const Item& item : items)
        if (!wanted.empty() && item.*name == wanted) return &item;
    return nullptr;
}

template <typename Item>
std::vector<std::string> namesOf(const std::vector<Item>& items, std::string Item::*name) {
    std::vector<std::string> names;
    for (const Item& item : items)
        if (!(item.*name).empty()) names.push_back(item.*name);
    return names;
}

} // namespace embedded
