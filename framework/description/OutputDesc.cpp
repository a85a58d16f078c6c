#include "framework/description/OutputDesc.h"

#include "framework/description/Attributes.h"

#include <tinyxml.h>

#include <algorithm>

namespace SubstanceAir {

namespace {

// A name that is not in the table reads as usage 0, "diffuse". Kept: hosts have no other code for "unknown".
ChannelUsage channelUsageNamed(const std::string& name) {
    const char* const* const names = channelUsageNames();
    const char* const* const end = names + ChannelUsageCount;
    const char* const* const found = std::find(names, end, name);
    return found == end ? 0 : static_cast<ChannelUsage>(found - names);
}

// Only the first channel of an output counts.
ChannelUsage channelUsageOf(const TiXmlElement& gui) {
    const TiXmlElement* const channels = gui.FirstChildElement("channels");
    const TiXmlElement* const channel = channels ? channels->FirstChildElement("channel") : nullptr;
    return channel ? channelUsageNamed(textAttribute(*channel, "names")) : 0;
}

template <class Outputs>
auto findIn(Outputs& outputs, unsigned int uid) {
    const auto hasLowerUid = [](const OutputDesc& output, unsigned int key) { return output.uid < key; };
    const auto found = std::lower_bound(outputs.begin(), outputs.end(), uid, hasLowerUid);
    return found != outputs.end() && found->uid == uid ? found : outputs.end();
}

} // namespace

bool parseOutput(const TiXmlElement& element, OutputDesc& output) {
    output.uid = unsignedAttribute(element, "uid");
    output.identifier = textAttribute(element, "identifier");
    output.format = integerAttribute(element, "format", 0);
    output.mipmaps = unsignedAttribute(element, "mipmaps");
    output.channel = 0;
    if (const TiXmlElement* const gui = element.FirstChildElement("outputgui")) {
        output.label = textAttribute(*gui, "label");
        output.channel = channelUsageOf(*gui);
    }
    return true;
}

std::vector<OutputDesc>::iterator findOutput(std::vector<OutputDesc>& outputs, unsigned int uid) {
    return findIn(outputs, uid);
}

std::vector<OutputDesc>::const_iterator findOutput(const std::vector<OutputDesc>& outputs, unsigned int uid) {
    return findIn(outputs, uid);
}

} // namespace SubstanceAir
