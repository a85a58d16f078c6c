// What clauses need to know of a package's description.
#pragma once

#include <string>
#include <vector>

namespace kvSubstance::conformance {

struct Port {
    unsigned int uid = 0;
    std::string identifier;
    int type = 0;               // of an input
    std::string defaultValue;   // of an input, as written
    bool altersOutputs = false; // an input that names outputs
};

struct Description {
    bool isReadable = false;           // by the library's rules for XML
    std::vector<Port> inputs, outputs; // of all graphs
};

Description readDescription(const std::string& text);

} // namespace kvSubstance::conformance
