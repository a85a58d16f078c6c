// Numbers, colours and references to inputs, as sources write them. No locale takes part.
#pragma once

#include "embedded/nodes/Value.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace embedded {

std::optional<std::int32_t> parseInteger(std::string_view text);
std::optional<float> parseFloat(std::string_view text);

// Numbers separated by commas: as many as the type has components, one for all of them, or three for four
// with a fourth of 1. For three and four floats also "#rrggbb" and "#rrggbbaa", divided by 255. Nothing for
// anything else.
std::optional<Value> parseValue(ValueType type, std::string_view text);

// What parseValue takes, in words.
std::string expectedValue(ValueType type);

bool isColourText(std::string_view text);

// Colours decoded from sRGB to linear light (IEC 61966-2-1); the fourth component stays.
Value linearFromSrgb(Value colour);

// The form that descriptions use: components separated by commas, each the shortest text that reads back the
// same.
std::string formatValue(const Value& value);

std::string formatNumber(double number);

double component(const Value& value, int index);

// "{input} * scale + offset"; both parts after the input may be absent.
struct InputExpression {
    std::string input;
    float scale = 1.0f;
    float offset = 0.0f;
};
bool isInputExpression(std::string_view text);
std::optional<InputExpression> parseInputExpression(std::string_view text);

} // namespace embedded
