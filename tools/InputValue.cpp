#include "tools/InputValue.h"

#include "bridge/Synchronisation.h"
#include "embedded/compiler/Literal.h"
#include "embedded/compiler/Suggestion.h"
#include "tools/Failure.h"

#include <algorithm>
#include <iostream>
#include <optional>

namespace tool {
namespace {

using embedded::Value;
using kvSubstance::SubstanceInput;

// What fills a position that no choice stands at.
bool isFiller(const kvString::IString& item) {
    return textOf(item) == "-";
}

bool holdsInts(const SubstanceInput& input) {
    return (input.getType() & 0x20) != 0;
}

Value bound(const SubstanceInput& input, int (SubstanceInput::*integer)(int) const,
            float (SubstanceInput::*real)(int) const) {
    Value value;
    value.type = valueTypeOf(input.getType());
    for (int i = 0; i < embedded::componentCount(value.type); ++i) {
        const auto slot = static_cast<size_t>(i);
        if (holdsInts(input))
            value.integers[slot] = (input.*integer)(i);
        else
            value.floats[slot] = (input.*real)(i);
    }
    return value;
}

std::optional<Value> lowerBound(const SubstanceInput& input) {
    if (!input.shouldClamp() || !input.hasMin()) return std::nullopt;
    return bound(input, &SubstanceInput::getMinI, &SubstanceInput::getMinF);
}

std::optional<Value> upperBound(const SubstanceInput& input) {
    if (!input.shouldClamp() || !input.hasMax()) return std::nullopt;
    return bound(input, &SubstanceInput::getMaxI, &SubstanceInput::getMaxF);
}

bool isInRange(const SubstanceInput& input, const Value& value) {
    const auto lowest = lowerBound(input);
    const auto highest = upperBound(input);
    for (int i = 0; i < embedded::componentCount(value.type); ++i) {
        const double number = embedded::component(value, i);
        if (lowest && number < embedded::component(*lowest, i)) return false;
        if (highest && number > embedded::component(*highest, i)) return false;
    }
    return true;
}

std::string expectation(SubstanceInput& input) {
    std::string text = embedded::expectedValue(valueTypeOf(input.getType()));
    if (const auto lowest = lowerBound(input)) text += ", from " + embedded::formatValue(*lowest);
    if (const auto highest = upperBound(input)) text += ", up to " + embedded::formatValue(*highest);
    const auto& items = input.getComboItem();
    const char* before = "; the choices are ";
    for (size_t i = 0; i < items.size(); ++i) {
        if (isFiller(items[i])) continue;
        text += before + std::to_string(i) + " " + embedded::quoted(textOf(items[i]));
        before = ", ";
    }
    return text;
}

std::optional<Value> parseChoice(SubstanceInput& input, std::string_view text) {
    const auto& items = input.getComboItem();
    for (size_t i = 0; input.isCombo() && i < items.size(); ++i)
        if (!isFiller(items[i]) &&
            kvString::CString(std::string(text).c_str()).compareNoCase(textOf(items[i]).c_str()) == 0) {
            Value value;
            value.type = embedded::ValueType::Integer;
            value.integers[0] = static_cast<std::int32_t>(i);
            return value;
        }
    return std::nullopt;
}

bool isChoice(SubstanceInput& input, const Value& value) {
    const auto& items = input.getComboItem();
    const auto index = static_cast<size_t>(value.integers[0]); // beyond all of them, when it is below zero
    return !input.isCombo() || items.empty() || (index < items.size() && !isFiller(items[index]));
}

} // namespace

embedded::ValueType valueTypeOf(kvSubstance::Type type) {
    using embedded::ValueType;
    if (type == kvSubstance::TypeImage) return ValueType::Image;
    const int count = type & 7;
    if (!(type & 0x20)) return static_cast<ValueType>(count - 1);
    return count == 1 ? ValueType::Integer : static_cast<ValueType>(count + 6);
}

std::string textOf(const kvString::IString& text) {
    return text.asMultibyte().asChar();
}

Value parseInputValue(SubstanceInput& input, std::string_view text, const std::string& place) {
    auto value = parseChoice(input, text);
    if (!value) value = embedded::parseValue(valueTypeOf(input.getType()), text);
    const std::string wrong = place + ": " + embedded::quoted(text);
    if (!value) throw Failure(wrong + " does not fit; expected " + expectation(input));
    if (!isInRange(input, *value)) throw Failure(wrong + " is out of range; expected " + expectation(input));
    if (!isChoice(input, *value)) throw Failure(wrong + " is no choice; expected " + expectation(input));
    return *value;
}

void setInputValue(const kv::Reference<kvSubstance::Substance>& material, SubstanceInput& input,
                   const Value& value) {
    for (int i = 0; i < embedded::componentCount(value.type); ++i) {
        const auto slot = static_cast<size_t>(i);
        if (holdsInts(input))
            input.setValueI(value.integers[slot], i);
        else
            input.setValueF(value.floats[slot], i);
    }
    kvSubstance::syncValueFromSubstanceInputToInputInstanceBase(material, &input);
}

SubstanceInput& requireInput(const kvSubstance::Substance& material, const std::string& identifier,
                             const std::string& place) {
    if (SubstanceInput* const input = material.getInput(identifier.c_str())) return *input;
    std::vector<std::string> identifiers;
    for (const kvString::CString& id : material.getInputIds()) identifiers.emplace_back(id.asChar());
    std::sort(identifiers.begin(), identifiers.end());
    throw Failure(place + ": the material has no input of that name for values" +
                  embedded::suggestion(identifier, identifiers));
}

void noteIfAmbiguous(const kvSubstance::Substance& material, const std::string& identifier,
                     const std::string& place) {
    const auto& ids = material.getInputIds();
    if (std::count(ids.begin(), ids.end(), kvString::CString(identifier.c_str())) < 2) return;
    std::cerr << "note: " << place
              << ": several inputs have that name; one of them is set, or none if their types differ\n";
}

} // namespace tool
