#include "embedded/compiler/Literal.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <type_traits>

namespace embedded {

namespace {

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r\n";
    const auto first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

template <typename Number>
std::optional<Number> parseWhole(std::string_view text) {
    text = trimmed(text);
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (text.empty() || error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

std::vector<std::string_view> splitAtCommas(std::string_view text) {
    std::vector<std::string_view> pieces;
    for (;;) {
        const auto comma = text.find(',');
        pieces.push_back(text.substr(0, comma));
        if (comma == std::string_view::npos) return pieces;
        text.remove_prefix(comma + 1);
    }
}

std::optional<Value> parseColour(ValueType type, std::string_view text) {
    const bool hasAlpha = text.size() == 9;
    if (type != ValueType::Float4 && (type != ValueType::Float3 || hasAlpha)) return std::nullopt;
    if (text.size() != 7 && !hasAlpha) return std::nullopt;
    Value value;
    value.type = type;
    if (type == ValueType::Float4) value.floats[3] = 1.0f;
    for (std::size_t i = 0; 2 * i + 1 < text.size(); ++i) {
        unsigned int byte = 0;
        const char* digits = text.data() + 1 + 2 * i;
        if (std::from_chars(digits, digits + 2, byte, 16).ptr != digits + 2) return std::nullopt;
        value.floats[i] = static_cast<float>(byte) / 255.0f;
    }
    return value;
}

template <typename Number, typename Parse>
bool parseComponents(const std::vector<std::string_view>& pieces, std::size_t count,
                     std::array<Number, 4>& components, Parse parse) {
    const bool addsFourth = std::is_same_v<Number, float> && pieces.size() == 3 && count == 4;
    if (pieces.size() != count && pieces.size() != 1 && !addsFourth) return false;
    if (addsFourth) components[3] = Number{1};
    for (std::size_t i = 0; i < (addsFourth ? 3 : count); ++i) {
        const auto number = parse(pieces[pieces.size() == 1 ? 0 : i]);
        if (!number) return false;
        components[i] = *number;
    }
    return true;
}

template <typename Number>
std::string shortestText(Number number) {
    char text[32];
    return {text, std::to_chars(text, text + sizeof text, number).ptr};
}

} // namespace

std::optional<std::int32_t> parseInteger(std::string_view text) {
    return parseWhole<std::int32_t>(text);
}

// By way of double, so that texts of tiny numbers are zero rather than refused.
std::optional<float> parseFloat(std::string_view text) {
    const auto number = parseWhole<double>(text);
    if (!number || !(std::fabs(*number) <= std::numeric_limits<float>::max())) return std::nullopt;
    return static_cast<float>(*number);
}

std::optional<Value> parseValue(ValueType type, std::string_view text) {
    text = trimmed(text);
    if (isColourText(text)) return parseColour(type, text);
    const auto pieces = splitAtCommas(text);
    const auto count = static_cast<std::size_t>(componentCount(type));
    if (count == 0) return std::nullopt;
    Value value;
    value.type = type;
    const bool isParsed = isInteger(type) ? parseComponents(pieces, count, value.integers, parseInteger)
                                          : parseComponents(pieces, count, value.floats, parseFloat);
    return isParsed ? std::optional(value) : std::nullopt;
}

std::string expectedValue(ValueType type) {
    const int count = componentCount(type);
    const std::string noun = isInteger(type) ? "whole number" : "number";
    if (count == 1) return "a " + noun;
    std::string text = std::to_string(count) + " " + noun + "s separated by commas, or one for all";
    if (type == ValueType::Float3) text += ", or a colour #rrggbb";
    if (type == ValueType::Float4) text += ", or a colour #rrggbb or #rrggbbaa";
    return text;
}

bool isColourText(std::string_view text) {
    text = trimmed(text);
    return !text.empty() && text.front() == '#';
}

Value linearFromSrgb(Value colour) {
    for (std::size_t i = 0; i < 3; ++i) {
        const double encoded = colour.floats[i];
        colour.floats[i] = static_cast<float>(encoded <= 0.04045 ? encoded / 12.92
                                                                 : std::pow((encoded + 0.055) / 1.055, 2.4));
    }
    return colour;
}

std::string formatValue(const Value& value) {
    std::string text;
    for (int i = 0; i < componentCount(value.type); ++i) {
        const auto index = static_cast<std::size_t>(i);
        if (i != 0) text += ',';
        text +=
            isInteger(value.type) ? shortestText(value.integers[index]) : shortestText(value.floats[index]);
    }
    return text;
}

std::string formatNumber(double number) {
    return shortestText(number);
}

double component(const Value& value, int index) {
    const auto i = static_cast<std::size_t>(index);
    return isInteger(value.type) ? static_cast<double>(value.integers[i])
                                 : static_cast<double>(value.floats[i]);
}

bool isInputExpression(std::string_view text) {
    text = trimmed(text);
    return !text.empty() && text.front() == '{';
}

std::optional<InputExpression> parseInputExpression(std::string_view text) {
    text = trimmed(text);
    const auto end = text.find('}');
    if (text.empty() || text.front() != '{' || end == std::string_view::npos) return std::nullopt;
    InputExpression expression;
    expression.input = trimmed(text.substr(1, end - 1));
    text = trimmed(text.substr(end + 1));

    if (!text.empty() && text.front() == '*') {
        // The sign that begins the offset follows a digit or a blank; others belong to a number: 1e-3, * -2.
        text = trimmed(text.substr(1));
        auto sign = text.find_first_of("+-", 1);
        while (sign != std::string_view::npos && (text[sign - 1] == 'e' || text[sign - 1] == 'E'))
            sign = text.find_first_of("+-", sign + 1);
        const auto scale = parseFloat(text.substr(0, sign));
        if (!scale) return std::nullopt;
        expression.scale = *scale;
        text = sign == std::string_view::npos ? std::string_view() : text.substr(sign);
    }
    if (text.empty()) return expression;
    const bool isNegative = text.front() == '-';
    const auto offset = parseFloat(text.substr(1));
    if ((!isNegative && text.front() != '+') || !offset) return std::nullopt;
    expression.offset = isNegative ? -*offset : *offset;
    return expression;
}

} // namespace embedded
