// The node kinds of the embedded engine: one table that the compiler, the verifier, the engine and the tools
// all read. Each kind has a file pair of its own in this folder, holding its metadata and its kernel; the
// inner loops are in rows/.
#pragma once

#include "embedded/nodes/Value.h"

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace embedded {

struct NodeKernel; // what the engine runs; see NodeKernel.h

// What a port accepts. Sources convert: colour to gray by luminance, gray to colour by repetition with
// alpha 1.
enum class PortChannels { Gray, Colour, Any };

// What a node gives. Widest: colour when one of the sources of its ports marked Any is colour.
// ByParameter: the integer parameter named "colour" decides (0 gray, else colour).
enum class ResultChannels { Gray, Colour, Widest, ByParameter };

constexpr int anywhere = -1; // a border: pixels of the whole image

struct PortInfo {
    const char* name;
    PortChannels channels;
    bool required; // an unconnected optional port reads as the kind's documentation says
    int border;    // pixels around a result's pixel that it depends on; 0: that pixel alone
};

// Floats and integers alike are described in double, which holds both exactly.
struct ParameterInfo {
    const char* name;
    ValueType type; // Image marks the reference to an image input
    std::array<double, 4> defaultValue;
    double minimum; // the range holds for each component; values outside are clamped when a program runs
    double maximum;
    std::vector<const char*> choices; // names of the values 0, 1, ... of an enumeration; else empty
    const char* summary;
};

// What is known of a node's parameters before it runs: nothing of those that inputs drive.
using KnownParameters = std::vector<std::optional<Value>>;

struct NodeKind {
    std::uint32_t code; // fixed for ever; never reused
    const char* name;   // as sources write it
    const char* summary;
    std::vector<PortInfo> ports;
    std::vector<ParameterInfo> parameters;
    ResultChannels result;
    // Whether a colour result has alpha, by the parameters and by the channels of what is connected to each
    // port, and of the image parameter's image: 0 for nothing, 1, 3, or 4 with alpha. Null: it has where a
    // source of a port marked Any has it.
    bool (*hasAlpha)(const std::vector<Value>& parameters, const std::vector<int>& sourceChannels);
    // The parameter by which sources that tile may give a result that does not (for generators: by which it
    // does not tile), null when there is none. Null: there never is.
    const char* (*breaksPeriod)(const KnownParameters& parameters);
    double costPerPixel; // floating-point operations for one pixel of the result, at most, roughly
    const NodeKernel* kernel;
};

// All kinds in the order of their codes.
const std::vector<NodeKind>& nodeKinds();

// Null when there is none.
const NodeKind* findNodeKind(std::uint32_t code);
const NodeKind* findNodeKind(std::string_view name);

} // namespace embedded
