// The whole way with the embedded linker and engine: from package bytes to pixels.
#include "framework/description/PackageDesc.h"
#include "tests/Compiled.h"
#include "tests/ReadFile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <set>

namespace {

using hosting::Image;
using hosting::Material;
using hosting::render;
using hosting::setValue;
using kvSubstance::createSubstance;
using Pixel = std::array<int, 4>;

kv::vector<char> package(const std::string& url, const std::string& content) {
    return hosting::compile("<package><graph url=\"pkg://" + url + R"(">
        <input identifier="$resolution" type="integer2" default="3,3"/>)" +
                            content + "</graph></package>");
}

// A top that shows the image input of that name.
kv::vector<char> show(const std::string& input, const std::string& format = "rgba8",
                      const std::string& label = "") {
    return package("show_" + input, "<input identifier=\"" + input + "\" type=\"image\" label=\"" + label +
                                        "\"/><node name=\"in\" kind=\"imageInput\" image=\"{" + input +
                                        "}\" fallback=\"0.2,0.4,0.6,0.8\"/>"
                                        "<output identifier=\"Output\" node=\"in\" format=\"" +
                                        format + "\"/>");
}

Pixel pixelAt(const Image& image, int x, int y) {
    const unsigned char* const bytes = image->getBytes() + 4 * (y * image->getSize().x + x);
    return {bytes[0], bytes[1], bytes[2], bytes[3]};
}

Image edit(const Material& material, const char* identifier, float value) {
    setValue(material, identifier, value);
    return render(material);
}

// A colour and a height that the host can set, under several usages.
kv::vector<char> plainBottom() {
    return package("plain", R"(<input identifier="tint" type="float3" default="1,0.5,0" widget="color"/>
        <input identifier="level" type="float" default="0.25" min="0" max="1"/>
        <node name="colour" kind="uniform" colour="colour" encoding="linear" value="{tint}"/>
        <node name="gray" kind="uniform" value="{level} * 2 - 0.5"/>
        <output identifier="base" usage="diffuse" node="colour" mipmaps="3"/>
        <output identifier="relief" usage="height" node="gray" format="gray16"/>)");
}

TEST(Pixels, FollowTheInputsThroughTheStack) {
    const kv::vector<char> mix = package("mix", R"(<input identifier="diffuse" type="image"/>
        <input identifier="height" type="image"/><input identifier="amount" type="float" default="1" min="0" max="1"/>
        <node name="colour" kind="imageInput" image="{diffuse}"/>
        <node name="mask" kind="imageInput" image="{height}" colour="gray"/><node name="black" kind="uniform" value="0"/>
        <node name="mixed" kind="blend" background="black" foreground="colour" mask="mask" opacity="{amount}"/>
        <output identifier="Output" node="mixed" format="rgba8"/>)");
    const struct {
        const char* what;
        kv::vector<char> top;
        const char* identifier;
        float value;
        Pixel expected;
    } cases[] = {
        {"linear", show("diffuse"), "tint", 1, {255, 128, 0, 255}},
        {"encoded", show("diffuse", "srgb8"), "tint", 1, {255, 188, 0, 255}},
        // "bump" answers to "height", which is gray; its value goes through a factor and an offset.
        {"below black", show("bump"), "level", 0.25f, {0, 0, 0, 255}},
        {"gray", show("bump"), "level", 0.45f, {102, 102, 102, 255}},
        // The diffuse output stands in for tops with one name only.
        {"two names and no match", show("left", "rgba8", "a"), "level", 0, {51, 102, 153, 204}},
        {"half of a mixture", mix, "level", 0.5f, {128, 64, 0, 255}},
        {"nothing of a mixture", mix, "amount", 0, {0, 0, 0, 255}},
    };
    for (const auto& each : cases) {
        const Image image = edit(createSubstance(plainBottom(), each.top), each.identifier, each.value);
        EXPECT_EQ(image->getSize().x, 8);
        EXPECT_EQ(pixelAt(image, 7, 7), each.expected) << each.what;
    }
}

TEST(Pixels, OneResolutionAndOneSeedForBothGraphs) {
    const kv::vector<char> bottom =
        package("noisy", R"(<input identifier="$seed" type="integer"/><node name="n" kind="fbm" repeats="2"/>
        <output identifier="base" usage="diffuse" node="n"/>)");
    const kv::vector<char> top = package(
        "noisier", R"(<input identifier="$seed" type="integer"/><input identifier="diffuse" type="image"/>
        <node name="in" kind="imageInput" image="{diffuse}"/><node name="n" kind="fbm" repeats="3"/>
        <node name="both" kind="channelMerge" red="in" green="n"/>
        <output identifier="Output" node="both" format="rgba8"/>)");
    const Material material = createSubstance(bottom, top);
    EXPECT_EQ(material->numInputs(), 2);
    material->getInput("$resolution")->setValueI(5, 1);
    const Image image = edit(material, "$resolution", 6);
    EXPECT_TRUE(image->getSize().x == 64 && image->getSize().y == 32);
    const Pixel before = pixelAt(image, 21, 9), after = pixelAt(edit(material, "$seed", 7), 21, 9);
    EXPECT_TRUE(before[0] != after[0] && before[1] != after[1]);
    EXPECT_TRUE(hosting::pixels(edit(material, "$seed", 0)) == hosting::pixels(image));
}

TEST(Pixels, MaterialsOfOnePackageLiveApart) {
    const kv::vector<char> bottom = plainBottom(), top = show("diffuse");
    const Material one = createSubstance(bottom, top), other = createSubstance(bottom, top);
    const Image first = edit(one, "tint", 0);
    EXPECT_EQ(pixelAt(edit(other, "tint", 0.2f), 0, 0), (Pixel{51, 128, 0, 255}));
    EXPECT_EQ(pixelAt(edit(one, "level", 1), 0, 0), (Pixel{0, 128, 0, 255}));
    EXPECT_EQ(pixelAt(edit(one, "tint", 1), 0, 0), (Pixel{255, 128, 0, 255}));
    EXPECT_EQ(pixelAt(first, 0, 0), (Pixel{0, 128, 0, 255})); // the host's image stays as it was
}

TEST(Pixels, AGraphStacksOnItself) {
    const kv::vector<char> both = package("loop", R"(<input identifier="diffuse" type="image"/>
        <node name="in" kind="imageInput" image="{diffuse}" fallback="1,1,1,1"/>
        <node name="half" kind="levels" source="in" outputHigh="0.5"/>
        <output identifier="Output" usage="diffuse" node="half" format="rgba8"/>)");
    EXPECT_EQ(pixelAt(render(createSubstance(both, both)), 0, 0), (Pixel{64, 64, 64, 255}));
}

// ---- The samples

kv::vector<char> sample(const std::string& name) {
    return hosting::compile(readFile(KVSUBSTANCE_SAMPLES "/" + name + ".xml"));
}

template <class Body>
void forEachPair(const Body& body) {
    for (const char* const bottom : {"bottoms/brick_wall", "bottoms/marble", "bottoms/rusted_steel"}) {
        for (const char* const top : {"tops/edge_wear", "tops/moss_overgrowth"}) {
            SCOPED_TRACE(std::string(bottom) + " under " + top);
            body(sample(bottom), sample(top));
        }
    }
}

// Every bottom under every top renders something with detail, and each input of either changes the picture.
TEST(Samples, RenderUnderEveryTopAndFollowTheirInputs) {
    forEachPair([](const auto& bottom, const auto& top) {
        const Material material = createSubstance(bottom, top);
        material->getInput("$resolution")->setValueI(7, 1);
        const Image before = edit(material, "$resolution", 7);
        ASSERT_TRUE(before);
        std::set<Pixel> colours;
        for (int i = 0; i < 128 * 128; ++i) colours.insert(pixelAt(before, i % 128, i / 128));
        EXPECT_GT(colours.size(), 500u);
        for (const auto& identifier : material->getInputIds()) {
            if (identifier == "$resolution") continue;
            kvSubstance::SubstanceInput& input = *material->getInput(identifier);
            const bool isInteger = input.getType() & 0x20;
            const float value = isInteger ? (input.getValueI(0) == 1 ? 2.0f : 1.0f)
                                          : (input.getValueF(0) > 0.5f ? 0.1f : 0.9f);
            const Image edited = edit(material, identifier.asChar(), value);
            EXPECT_TRUE(hosting::pixels(edited) != hosting::pixels(before)) << identifier.asChar();
            input.reset();
            kvSubstance::syncValueFromSubstanceInputToInputInstanceBase(material, &input);
            EXPECT_TRUE(hosting::pixels(render(material)) == hosting::pixels(before)) << identifier.asChar();
        }
    });
}

// Through lines of a state string.
void applyPreset(kvSubstance::Substance& material, const SubstanceAir::Preset& preset) {
    std::string state = std::string(material.getPackageURL().asChar()) + "\n";
    for (const auto& value : preset.inputValues) {
        const auto* const input = dynamic_cast<kvSubstance::SubstanceInput*>(material.getEntity(value.uid));
        ASSERT_TRUE(input) << preset.label << " " << value.identifier;
        const std::string type = (input->getType() & 0x20 ? "i" : "f") + std::to_string(input->getType() & 7);
        std::string numbers = value.value;
        std::replace(numbers.begin(), numbers.end(), ',', ' ');
        state += std::to_string(value.uid) + "d " + type + " " + numbers + "\n";
    }
    material.applyStateString(state.c_str());
}

// Every preset of every sample, saved and restored: the same values and the same pixels.
TEST(Samples, PresetsSurviveTheStateString) {
    forEachPair([](const auto& bottom, const auto& top) {
        for (const kv::vector<char>& content : {bottom, top}) {
            const SubstanceAir::PackageDesc package(content.data(), content.size(), nullptr);
            for (const SubstanceAir::Preset& preset : package.graphs().front().presets) {
                const Material saved = createSubstance(bottom, top), restored = createSubstance(bottom, top);
                applyPreset(*saved, preset);
                saved->getInput("$resolution")->setValue2I(6, 6);
                const kvString::CString state = saved->getStateString();
                saved->applyStateString(state); // rounds to six decimals
                restored->applyStateString(state);
                EXPECT_STREQ(restored->getStateString().asChar(), state.asChar());
                EXPECT_TRUE(hosting::pixels(render(restored)) == hosting::pixels(render(saved)))
                    << preset.label;
            }
        }
    });
}

} // namespace
