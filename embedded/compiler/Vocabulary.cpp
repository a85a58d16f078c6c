#include "embedded/compiler/Vocabulary.h"

#include <algorithm>
#include <array>

namespace embedded {

namespace {

template <typename Code>
struct Word {
    const char* name;
    Code code;
};

constexpr std::array<Word<ValueType>, 9> types{{{"float", ValueType::Float},
                                                {"float2", ValueType::Float2},
                                                {"float3", ValueType::Float3},
                                                {"float4", ValueType::Float4},
                                                {"integer", ValueType::Integer},
                                                {"integer2", ValueType::Integer2},
                                                {"integer3", ValueType::Integer3},
                                                {"integer4", ValueType::Integer4},
                                                {"image", ValueType::Image}}};

constexpr std::array<Word<std::int32_t>, 5> formats{
    {{"srgb8", 32}, {"rgba8", 0}, {"rgba16", 64}, {"gray8", 65}, {"gray16", 66}}};

constexpr std::array<Widget, 6> widgets{{{"slider", "guislider", true},
                                         {"angle", "guiangle", true},
                                         {"color", "guicolor", false},
                                         {"togglebutton", "guitogglebutton", false},
                                         {"combobox", "guicombobox", false},
                                         {"image", nullptr, false}}};

// Usages whose textures hold colours that people see, rather than measures.
constexpr std::array<const char*, 14> colourUsages{
    "",           "diffuse",    "emissive",    "ambient",     "specular",    "specularColor", "transmissive",
    "reflection", "refraction", "environment", "scattering0", "scattering1", "scattering2",   "scattering3"};

template <typename Entries>
auto find(const Entries& entries, std::string_view name) {
    const auto found =
        std::find_if(entries.begin(), entries.end(), [&](const auto& entry) { return entry.name == name; });
    return found == entries.end() ? nullptr : &*found;
}

template <typename Entries>
std::vector<std::string> namesOf(const Entries& entries) {
    std::vector<std::string> names;
    names.reserve(entries.size());
    for (const auto& entry : entries) names.emplace_back(entry.name);
    return names;
}

} // namespace

std::optional<ValueType> findValueType(std::string_view name) {
    const auto* found = find(types, name);
    return found ? std::optional(found->code) : std::nullopt;
}

const char* nameOf(ValueType type) {
    const auto found =
        std::find_if(types.begin(), types.end(), [&](const auto& entry) { return entry.code == type; });
    return found == types.end() ? "unknown" : found->name;
}

std::vector<std::string> valueTypeNames() {
    return namesOf(types);
}

std::optional<std::int32_t> findFormat(std::string_view name) {
    const auto* found = find(formats, name);
    return found ? std::optional(found->code) : std::nullopt;
}

std::vector<std::string> formatNames() {
    return namesOf(formats);
}

const std::vector<std::string>& usageNames() {
    static const std::vector<std::string> names = {
        "diffuse",          "opacity",      "emissive",    "ambient",
        "ambientOcclusion", "mask",         "normal",      "bump",
        "height",           "displacement", "specular",    "specularLevel",
        "specularColor",    "glossiness",   "roughness",   "anisotropyLevel",
        "anisotropyAngle",  "transmissive", "reflection",  "refraction",
        "environment",      "IOR",          "scattering0", "scattering1",
        "scattering2",      "scattering3"};
    return names;
}

bool isUsage(std::string_view name) {
    const auto& names = usageNames();
    return std::find(names.begin(), names.end(), name) != names.end();
}

const char* usualFormat(std::string_view usage) {
    const bool isColour = std::find(colourUsages.begin(), colourUsages.end(), usage) != colourUsages.end();
    return isColour ? "srgb8" : "rgba8";
}

const Widget* findWidget(std::string_view name) {
    return find(widgets, name);
}

std::vector<std::string> widgetNames() {
    return namesOf(widgets);
}

bool fits(const Widget& widget, ValueType type) {
    const std::string_view name = widget.name;
    if (name == "image") return type == ValueType::Image;
    if (name == "color") return type == ValueType::Float3 || type == ValueType::Float4;
    if (name == "togglebutton" || name == "combobox") return type == ValueType::Integer;
    return type != ValueType::Image;
}

} // namespace embedded
