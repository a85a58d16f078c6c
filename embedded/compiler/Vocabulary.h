// The words of package sources that stand for codes.
#pragma once

#include "embedded/nodes/Value.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace embedded {

std::optional<ValueType> findValueType(std::string_view name);
const char* nameOf(ValueType type);
std::vector<std::string> valueTypeNames();

// Codes of PixelFormat.h.
std::optional<std::int32_t> findFormat(std::string_view name);
std::vector<std::string> formatNames();

// What textures mean to a host. An output without a usage gets the format of a colour.
const std::vector<std::string>& usageNames();
bool isUsage(std::string_view name);
const char* usualFormat(std::string_view usage);

// How hosts let people edit an input. Null for a widget that does not exist.
struct Widget {
    const char* name;
    const char* guiElement; // in the description; null when it has none
    bool needsRange;        // min and max have to be given
};
const Widget* findWidget(std::string_view name);
std::vector<std::string> widgetNames();
bool fits(const Widget& widget, ValueType type);

} // namespace embedded
