// The whole way with the embedded linker and engine: from package bytes to pixels.
#include "bridge/Bridge.h"
#include "embedded/compiler/Compiler.h"
#include "framework/description/PackageDesc.h"
#include "support/Numbers.h"

#include <gtest/gtest.h>

#include <array>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>

namespace {

using kvSubstance::Substance;
using Image = kv::TempReference<ilSIDImage>;
using Pixel = std::array<int, 4>;

kv::vector<char> compile(const std::string& source, const std::string& name) {
    const embedded::CompileResult result = embedded::compilePackage(source);
    for (const auto& diagnostic : result.diagnostics) ADD_FAILURE() << toString(diagnostic, name);
    return {result.package.begin(), result.package.end()};
}

kv::vector<char> package(const std::string& url, const std::string& content) {
    return compile("<package><graph url=\"pkg://" + url + R"(">
        <input identifier="$resolution" type="integer2" default="3,3"/>)" +
                       content + "</graph></package>",
                   url);
}

// A top that shows the image input of that name.
kv::vector<char> show(const std::string& input, const std::string& format = "rgba8") {
    return package(
        "show_" + input,
        "<input identifier=\"" + input +
            "\" type=\"image\"/><node name=\"in\" kind=\"imageInput\" image=\"{" + input +
            "}\" fallback=\"0.2,0.4,0.6,0.8\"/><output identifier=\"Output\" node=\"in\" format=\"" + format +
            "\"/>");
}

Pixel pixelAt(const Image& image, int x, int y) {
    const unsigned char* const bytes = image->getBytes() + 4 * (y * image->getSize().x + x);
    return {bytes[0], bytes[1], bytes[2], bytes[3]};
}

std::string bytesOf(const Image& image) {
    const ilSize size = image->getSize();
    return {reinterpret_cast<const char*>(image->getBytes()), static_cast<size_t>(size.x) * size.y * 4};
}

template <class Set>
Image edit(const kv::Reference<Substance>& material, const char* identifier, const Set& set) {
    kvSubstance::SubstanceInput* const input = material->getInput(identifier);
    set(*input);
    kvSubstance::syncValueFromSubstanceInputToInputInstanceBase(material, input);
    return kvSubstance::getTextureFromSubstance(material.get());
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

TEST(Pixels, ColoursPassAsTheyAreOrEncoded) {
    const auto raw = kvSubstance::createSubstance(plainBottom(), show("diffuse"));
    const Image image = kvSubstance::getTextureFromSubstance(raw.get());
    ASSERT_TRUE(image);
    EXPECT_EQ(image->getSize().x, 8);
    EXPECT_EQ(pixelAt(image, 7, 7), (Pixel{255, 128, 0, 255}));
    const auto encoded = kvSubstance::createSubstance(plainBottom(), show("diffuse", "srgb8"));
    EXPECT_EQ(pixelAt(kvSubstance::getTextureFromSubstance(encoded.get()), 0, 0), (Pixel{255, 188, 0, 255}));
}

TEST(Pixels, EditsShowAndIdleRequestsGiveTheSameImage) {
    const auto material = kvSubstance::createSubstance(plainBottom(), show("diffuse"));
    const Image first = kvSubstance::getTextureFromSubstance(material.get());
    EXPECT_EQ(kvSubstance::getTextureFromSubstance(material.get()).get(), first.get());
    const Image second = edit(material, "tint", [](auto& input) { input.setValue3F(0, 1, 0.2f); });
    EXPECT_NE(second.get(), first.get());
    EXPECT_EQ(pixelAt(second, 3, 3), (Pixel{0, 255, 51, 255}));
    EXPECT_EQ(pixelAt(first, 3, 3), (Pixel{255, 128, 0, 255})); // the host's image stays as it was
}

TEST(Pixels, AStackFindsItsPartnersByUsageAndConvertsThem) {
    // "bump" answers to "height", which is gray; its value went through a factor and an offset.
    const auto material = kvSubstance::createSubstance(plainBottom(), show("bump"));
    EXPECT_EQ(pixelAt(kvSubstance::getTextureFromSubstance(material.get()), 0, 0), (Pixel{0, 0, 0, 255}));
    const Image lifted = edit(material, "level", [](auto& input) { input.setValueF(0.45f, 0); });
    EXPECT_EQ(pixelAt(lifted, 0, 0), (Pixel{102, 102, 102, 255}));
}

TEST(Pixels, AnInputThatNothingFeedsShowsItsFallback) {
    // Two names and no match: the diffuse fallback of stacking is for tops with one name only.
    const kv::vector<char> top = package("two", R"(<input identifier="left" type="image" label="a"/>
        <node name="in" kind="imageInput" image="{left}" fallback="0.2,0.4,0.6,0.8"/>
        <output identifier="Output" node="in" format="rgba8"/>)");
    const auto material = kvSubstance::createSubstance(plainBottom(), top);
    EXPECT_EQ(pixelAt(kvSubstance::getTextureFromSubstance(material.get()), 0, 0),
              (Pixel{51, 102, 153, 204}));
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
    const auto material = kvSubstance::createSubstance(bottom, top);
    EXPECT_EQ(material->numInputs(), 2);
    const Image image = edit(material, "$resolution", [](auto& input) { input.setValue2I(6, 5); });
    EXPECT_EQ(image->getSize().x, 64);
    EXPECT_EQ(image->getSize().y, 32);
    const Image reseeded = edit(material, "$seed", [](auto& input) { input.setValueI(7, 0); });
    const Pixel before = pixelAt(image, 21, 9), after = pixelAt(reseeded, 21, 9);
    EXPECT_NE(before[0], after[0]);
    EXPECT_NE(before[1], after[1]);
    const Image back = edit(material, "$seed", [](auto& input) { input.setValueI(0, 0); });
    EXPECT_TRUE(bytesOf(back) == bytesOf(image));
}

TEST(Pixels, TwoOutputsFeedTwoInputs) {
    const kv::vector<char> top = package("mix", R"(<input identifier="diffuse" type="image"/>
        <input identifier="height" type="image"/><input identifier="amount" type="float" default="1" min="0" max="1"/>
        <node name="colour" kind="imageInput" image="{diffuse}"/>
        <node name="mask" kind="imageInput" image="{height}" colour="gray"/><node name="black" kind="uniform" value="0"/>
        <node name="mixed" kind="blend" background="black" foreground="colour" mask="mask" opacity="{amount}"/>
        <output identifier="Output" node="mixed" format="rgba8"/>)");
    const auto material = kvSubstance::createSubstance(plainBottom(), top);
    const Image half = edit(material, "level", [](auto& input) { input.setValueF(0.5f, 0); });
    EXPECT_EQ(pixelAt(half, 4, 4), (Pixel{128, 64, 0, 255}));
    const Image none = edit(material, "amount", [](auto& input) { input.setValueF(0, 0); });
    EXPECT_EQ(pixelAt(none, 4, 4), (Pixel{0, 0, 0, 255}));
}

TEST(Pixels, MaterialsOfOnePackageLiveApart) {
    const kv::vector<char> bottom = plainBottom(), top = show("diffuse");
    const auto one = kvSubstance::createSubstance(bottom, top);
    const auto other = kvSubstance::createSubstance(bottom, top);
    const auto red = [](auto& input) { input.setValue3F(1, 0, 0); };
    const auto blue = [](auto& input) { input.setValue3F(0, 0, 1); };
    EXPECT_EQ(pixelAt(edit(one, "tint", red), 0, 0), (Pixel{255, 0, 0, 255}));
    EXPECT_EQ(pixelAt(edit(other, "tint", blue), 0, 0), (Pixel{0, 0, 255, 255}));
    EXPECT_EQ(pixelAt(edit(one, "level", [](auto& input) { input.setValueF(1, 0); }), 0, 0),
              (Pixel{255, 0, 0, 255}));
}

TEST(Pixels, AGraphStacksOnItself) {
    const kv::vector<char> both = package("loop", R"(<input identifier="diffuse" type="image"/>
        <node name="in" kind="imageInput" image="{diffuse}" fallback="1,1,1,1"/>
        <node name="half" kind="levels" source="in" outputHigh="0.5"/>
        <output identifier="Output" usage="diffuse" node="half" format="rgba8"/>)");
    const auto material = kvSubstance::createSubstance(both, both);
    EXPECT_EQ(pixelAt(kvSubstance::getTextureFromSubstance(material.get()), 0, 0), (Pixel{64, 64, 64, 255}));
}

TEST(Pixels, DamagedPackagesGiveNoMaterialAndNoHarm) {
    const kv::vector<char> whole = plainBottom(), top = show("diffuse");
    for (size_t size = 0; size < whole.size(); size += 1 + whole.size() / 60) {
        const kv::vector<char> cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        EXPECT_FALSE(kvSubstance::createSubstance(cut, top)) << size;
        EXPECT_FALSE(kvSubstance::createSubstance(top, cut)) << size;
    }
}

// ---- The samples

kv::vector<char> sample(const std::string& name) {
    std::ifstream file(KVSUBSTANCE_SAMPLES "/" + name + ".xml");
    const std::string source{std::istreambuf_iterator<char>(file), {}};
    return compile(source, name);
}

// Every bottom under every top renders something with detail, and each input of either changes the picture.
TEST(Samples, RenderUnderEveryTopAndFollowTheirInputs) {
    for (const char* const bottom : {"bottoms/brick_wall", "bottoms/marble", "bottoms/rusted_steel"}) {
        for (const char* const top : {"tops/edge_wear", "tops/moss_overgrowth"}) {
            SCOPED_TRACE(std::string(bottom) + " under " + top);
            const auto material = kvSubstance::createSubstance(sample(bottom), sample(top));
            ASSERT_TRUE(material);
            const Image before = edit(material, "$resolution", [](auto& input) { input.setValue2I(7, 7); });
            ASSERT_TRUE(before);
            std::set<Pixel> colours;
            for (int i = 0; i < 128 * 128; ++i) colours.insert(pixelAt(before, i % 128, i / 128));
            EXPECT_GT(colours.size(), 500u);
            for (const auto& identifier : material->getInputIds()) {
                if (identifier == "$resolution") continue;
                const Image edited = edit(material, identifier.asChar(), [](auto& input) {
                    if (input.getType() & 0x20)
                        input.setValueI(input.getValueI(0) == 1 ? 2 : 1, 0);
                    else
                        input.setValueF(input.getValueF(0) > 0.5f ? 0.1f : 0.9f, 0);
                });
                EXPECT_TRUE(bytesOf(edited) != bytesOf(before)) << identifier.asChar();
                const Image after = edit(material, identifier.asChar(), [](auto& input) { input.reset(); });
                EXPECT_TRUE(bytesOf(after) == bytesOf(before)) << identifier.asChar();
            }
        }
    }
}

void applyPreset(Substance& material, const SubstanceAir::Preset& preset) {
    for (const auto& value : preset.inputValues) {
        auto* const input = dynamic_cast<kvSubstance::SubstanceInput*>(material.getEntity(value.uid));
        ASSERT_TRUE(input) << preset.label << " " << value.identifier;
        const auto numbers = kvUtil::split(value.value.c_str(), ',', true, false);
        for (size_t k = 0; k < numbers.size(); ++k) {
            const int component = static_cast<int>(k);
            if (input->getType() & 0x20)
                input->setValueI(support::leadingInteger(numbers[k].asChar()), component);
            else
                input->setValueF(support::leadingFloat(numbers[k].asChar()), component);
        }
    }
}

// Every preset of every sample, saved and restored: the same values and the same pixels.
TEST(Samples, PresetsSurviveTheStateString) {
    for (const std::string bottom : {"bottoms/brick_wall", "bottoms/marble", "bottoms/rusted_steel"}) {
        for (const std::string top : {"tops/edge_wear", "tops/moss_overgrowth"}) {
            const kv::vector<char> contents[] = {sample(bottom), sample(top)};
            for (const kv::vector<char>& content : contents) {
                const SubstanceAir::PackageDesc package(content.data(), content.size(), nullptr);
                for (const SubstanceAir::Preset& preset : package.graphs().front().presets) {
                    const auto saved = kvSubstance::createSubstance(contents[0], contents[1]);
                    applyPreset(*saved, preset);
                    saved->getInput("$resolution")->setValue2I(6, 6);
                    const kvString::CString state = saved->getStateString();
                    saved->applyStateString(state); // rounds to six decimals
                    const auto restored = kvSubstance::createSubstance(contents[0], contents[1]);
                    restored->applyStateString(state);
                    EXPECT_STREQ(restored->getStateString().asChar(), state.asChar());
                    EXPECT_TRUE(bytesOf(kvSubstance::getTextureFromSubstance(restored.get())) ==
                                bytesOf(kvSubstance::getTextureFromSubstance(saved.get())))
                        << preset.label;
                }
            }
        }
    }
}

} // namespace
