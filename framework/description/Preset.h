// Named sets of input values. They are read and shown; to apply one is the host's business.
#pragma once

#include "framework/description/InputType.h"

#include <string>
#include <vector>

class TiXmlElement;

namespace SubstanceAir {

struct GraphDesc;

struct PresetInputValue {
    unsigned int uid = 0; // of the input that the value is for
    std::string identifier;
    unsigned int type = UnknownInputType; // an InputType, or UnknownInputType
    std::string value;                    // as written; vectors as components separated by ","
};

struct Preset {
    std::string packageUrl; // names the graph
    std::string label;
    std::string description;
    std::vector<PresetInputValue> inputValues; // in document order
};

// Appends the "sbspreset" children of the element. With an owning graph, its URL and its inputs decide about
// URLs, identifiers and types, whatever the document says; without one, the document does.
void parsePresets(std::vector<Preset>& presets, const TiXmlElement& element, const GraphDesc* owner);

// Appends the presets of a document of its own. True when there was at least one; nothing is appended else.
bool parsePresetsDocument(std::vector<Preset>& presets, const char* xmlText);

} // namespace SubstanceAir
