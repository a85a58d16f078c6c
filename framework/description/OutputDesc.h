// One texture that a graph produces.
#pragma once

#include "framework/description/ChannelUsage.h"

#include <string>
#include <vector>

class TiXmlElement;

namespace SubstanceAir {

// Read-only once its package has been read.
struct OutputDesc {
    std::string identifier;
    unsigned int uid = 0;
    int format = 0; // the engine's pixel format code
    ChannelUsage channel = 0;
    unsigned int mipmaps = 0; // levels, as handed to the linker
    std::string label;
    std::vector<unsigned int> alteringInputUids; // inputs of the graph that alter this output, ascending
};

// Fills a fresh descriptor from an "output" element. Always true: what is absent or malformed stays empty or
// 0.
bool parseOutput(const TiXmlElement& element, OutputDesc& output);

// The first of the outputs, which are sorted by uid, that has the uid; outputs.end() when there is none.
std::vector<OutputDesc>::iterator findOutput(std::vector<OutputDesc>& outputs, unsigned int uid);
std::vector<OutputDesc>::const_iterator findOutput(const std::vector<OutputDesc>& outputs, unsigned int uid);

} // namespace SubstanceAir
