// What a texture means: the names of channel usages.
#pragma once

namespace SubstanceAir {

// Index into the table of usage names. 0, "diffuse", also stands for a usage that nothing is known of.
using ChannelUsage = unsigned int;

constexpr ChannelUsage ChannelUsageCount = 26;

// The names in the order of their indices; the end is the start plus ChannelUsageCount.
const char* const* channelUsageNames();

} // namespace SubstanceAir
