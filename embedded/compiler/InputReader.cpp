#include "embedded/compiler/InputReader.h"

#include "embedded/compiler/Literal.h"
#include "embedded/compiler/Suggestion.h"
#include "embedded/program/Verifier.h"

#include <algorithm>

namespace embedded {

namespace {

constexpr std::int32_t maxItemValue = 35; // hosts show no more items

Value wholeNumber(ValueType type, int number) {
    Value value;
    value.type = type;
    for (int i = 0; i < componentCount(type); ++i) {
        const auto index = static_cast<std::size_t>(i);
        if (isInteger(type))
            value.integers[index] = number;
        else
            value.floats[index] = static_cast<float>(number);
    }
    return value;
}

bool isWithin(const Value& value, const std::optional<Value>& minimum, const std::optional<Value>& maximum) {
    for (int i = 0; i < componentCount(value.type); ++i) {
        if (minimum && component(value, i) < component(*minimum, i)) return false;
        if (maximum && component(value, i) > component(*maximum, i)) return false;
    }
    return true;
}

void readItems(ElementReader& reader, SourceInput& input, Diagnostics& diagnostics) {
    for (const TiXmlElement* child : reader.children({"item"})) {
        ElementReader item(*child, diagnostics);
        const auto value = item.require("value");
        const auto text = item.require("text");
        item.children({});
        item.finishAttributes();
        if (!value || !text) continue;
        const auto number = parseInteger(value->value);
        const bool isTaken = std::any_of(input.items.begin(), input.items.end(),
                                         [&](const SourceItem& other) { return other.value == number; });
        if (!number || *number < 0 || *number > maxItemValue) {
            item.error(*value, "expected a whole number from 0 to 35, found " + quoted(value->value));
        } else if (isTaken) {
            item.error(*value, "an item above has this value already");
        } else {
            input.items.push_back({*number, text->value});
        }
    }
}

void readRole(ElementReader& reader, SourceInput& input) {
    if (input.identifier.empty() || input.identifier.front() != '$') return;
    const bool isResolution = input.identifier == "$resolution";
    if (!isResolution && input.identifier != "$seed")
        return reader.error("is no input that the engine knows" +
                            suggestion(input.identifier, {"$resolution", "$seed"}));
    input.role = isResolution ? SystemInput::Resolution : SystemInput::Seed;
    const ValueType wanted = isResolution ? ValueType::Integer2 : ValueType::Integer;
    if (input.type && *input.type != wanted) {
        reader.error(std::string("has to have the type ") + nameOf(wanted));
        input.type.reset();
    }
}

const Widget* impliedWidget(const SourceInput& input, bool isColour) {
    if (input.type == ValueType::Image) return findWidget("image");
    if (!input.items.empty()) return findWidget("combobox");
    if (isColour) return findWidget("color");
    return input.role == SystemInput::None ? findWidget("slider") : nullptr;
}

void readWidget(ElementReader& reader, SourceInput& input, bool isColour) {
    const auto attribute = reader.take("widget");
    input.widget = attribute ? findWidget(attribute->value) : impliedWidget(input, isColour);
    if (attribute && !input.widget)
        return reader.error(*attribute, quoted(attribute->value) + " is no widget" +
                                            suggestion(attribute->value, widgetNames()));
    if (input.widget && input.type && !fits(*input.widget, *input.type))
        return reader.error(std::string("a ") + nameOf(*input.type) + " cannot have the widget " +
                            input.widget->name);
    const bool isComboBox = input.widget && std::string_view(input.widget->name) == "combobox";
    if (isComboBox && input.items.empty()) reader.error("a combo box needs item elements");
    if (!isComboBox && !input.items.empty()) reader.error("items are for the widget combobox");
}

// The range that goes without saying.
void impliedRange(SourceInput& input) {
    std::optional<Value> low;
    std::optional<Value> high;
    const std::string_view widget = input.widget ? input.widget->name : "";
    if (widget == "color" || widget == "togglebutton") {
        low = wholeNumber(*input.type, 0);
        high = wholeNumber(*input.type, 1);
    } else if (widget == "combobox" && !input.items.empty()) {
        const auto [least, most] =
            std::minmax_element(input.items.begin(), input.items.end(),
                                [](const SourceItem& a, const SourceItem& b) { return a.value < b.value; });
        low = wholeNumber(*input.type, least->value);
        high = wholeNumber(*input.type, most->value);
    } else if (input.role == SystemInput::Resolution) {
        low = wholeNumber(*input.type, 0);
        high = wholeNumber(*input.type, maxResolution);
    }
    if (!input.minimum) input.minimum = low;
    if (!input.maximum) input.maximum = high;
}

void readNumbers(ElementReader& reader, SourceInput& input, const std::optional<SourceAttribute>& initial) {
    const auto read = [&](const std::optional<SourceAttribute>& attribute) {
        return attribute ? readValue(reader, *attribute, *input.type) : std::nullopt;
    };
    const auto minimum = reader.take("min");
    const auto maximum = reader.take("max");
    const bool hasRange = minimum && maximum;
    input.minimum = read(minimum);
    input.maximum = read(maximum);
    input.step = read(reader.take("step"));
    input.defaultValue = wholeNumber(*input.type, 0);
    if (input.widget && input.widget->needsRange && !hasRange)
        reader.error(std::string("the widget ") + input.widget->name + " needs min and max");
    impliedRange(input);
    if (input.minimum && input.maximum && !isWithin(*input.minimum, std::nullopt, input.maximum)) {
        reader.error("min lies above max");
    } else if (initial) {
        const auto value = readValue(reader, *initial, *input.type);
        if (!value) return;
        input.defaultValue = *value;
        checkValue(reader, *initial, input, *value);
    } else if (*input.type != ValueType::Image) {
        const SourceAttribute zero{"default", "0", input.place};
        checkValue(reader, zero, input, input.defaultValue);
    }
}

} // namespace

SourceInput readInput(const TiXmlElement& element, Diagnostics& diagnostics) {
    ElementReader reader(element, diagnostics);
    SourceInput input;
    input.place = reader.place();
    input.identifier = reader.requireIdentifier("identifier", true);
    if (const auto type = reader.require("type")) {
        input.type = findValueType(type->value);
        if (!input.type)
            reader.error(*type,
                         quoted(type->value) + " is no type" + suggestion(type->value, valueTypeNames()));
    }
    input.label = reader.text("label");
    input.description = reader.text("description");
    if (const auto clamp = reader.take("clamp")) {
        input.clamp = clamp->value == "on";
        if (!input.clamp && clamp->value != "off")
            reader.error(*clamp, "expected on or off, found " + quoted(clamp->value));
    }
    readRole(reader, input);
    readItems(reader, input, diagnostics);
    const auto initial = reader.take("default");
    readWidget(reader, input, initial && isColourText(initial->value));
    if (input.type) {
        readNumbers(reader, input, initial);
    } else {
        for (const char* name : {"min", "max", "step"}) reader.take(name);
    }
    reader.finishAttributes();
    return input;
}

std::optional<Value> readValue(ElementReader& reader, const SourceAttribute& attribute, ValueType type) {
    if (type == ValueType::Image) {
        reader.error(attribute, "images have no values; leave it out");
        return std::nullopt;
    }
    const auto value = parseValue(type, attribute.value);
    if (!value)
        reader.error(attribute, "expected " + expectedValue(type) + ", found " + quoted(attribute.value));
    return value;
}

void checkValue(ElementReader& reader, const SourceAttribute& attribute, const SourceInput& input,
                const Value& value) {
    if (!isWithin(value, input.minimum, input.maximum)) {
        reader.error(attribute, "lies outside the input's range, " +
                                    (input.minimum ? "from " + formatValue(*input.minimum) + " " : "") +
                                    (input.maximum ? "to " + formatValue(*input.maximum) : "upwards"));
    } else if (!input.items.empty() &&
               std::none_of(input.items.begin(), input.items.end(),
                            [&](const SourceItem& item) { return item.value == value.integers[0]; })) {
        reader.error(attribute, "is the value of no item");
    }
}

} // namespace embedded
