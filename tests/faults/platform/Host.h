// A host that renders one material against the recording double, and checks each time what it may rely on.
#pragma once

#include "bridge/Bridge.h"
#include "framework/render/GraphInstance.h"
#include "framework/render/ProcessObjects.h"
#include "tests/recording/Recording.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace faults {

using kvSubstance::Substance;

// The bottom's height feeds the top's bump, both have a seed, and the bottom's Output is left over. Materials
// that are alive at the same time have different numbers, which stand behind the packages' names.
inline kv::Reference<Substance> loadMaterial(const std::string& number = "") {
    const auto package = [](const char* xml, const std::string& tag) {
        const std::string bytes = recording::packageBytes(recording::withFreshUids(xml), tag);
        return kv::vector<char>(bytes.begin(), bytes.end());
    };
    return kvSubstance::createSubstance(
        package(R"(<sbsdescription asmuid='#0'><graphs count='1'><graph pkgurl='pkg://bottom'>
        <outputs count='2'><output uid='#1' identifier='Output'/><output uid='#2' identifier='bump'/></outputs>
        <inputs count='2'><input uid='#4' identifier='$seed' type='4' default='3' alteroutputs='#2'/>
            <input uid='#3' identifier='scale' type='0' default='1' alteroutputs='#2'/></inputs>
        </graph></graphs></sbsdescription>)",
                "bottom" + number),
        package(R"(<sbsdescription asmuid='#0'><graphs count='1'><graph pkgurl='pkg://top'>
        <outputs count='2'><output uid='#1' identifier='before'/><output uid='#2' identifier='Output'/></outputs>
        <inputs count='3'><input uid='#3' identifier='Bump' type='5' alteroutputs='#1,#2'/>
            <input uid='#5' identifier='$seed' type='4' alteroutputs='#2'/>
            <input uid='#4' identifier='amount' type='0' default='0.5' alteroutputs='#1,#2'/></inputs>
        </graph></graphs></sbsdescription>)",
                "top" + number));
}

// What the material's texture shows.
inline std::string pictureOf(int seed, int scale, const std::string& amount = "0.5",
                             const std::string& number = "") {
    return "top" + number + ".Output of bottom" + number + ".$seed Integer, " + std::to_string(seed) +
           "; bottom" + number + ".scale Float, " + std::to_string(scale) + "; top" + number +
           ".amount Float, " + amount;
}

inline void setValue(const kv::Reference<Substance>& material, const char* identifier, int value) {
    kvSubstance::SubstanceInput* const input = material->getInput(identifier);
    if (!input) return; // of a material that was made of the wrong packages
    if (input->getType() & 0x20)
        input->setValueI(value, 0);
    else
        input->setValueF(static_cast<float>(value), 0);
    kvSubstance::syncValueFromSubstanceInputToInputInstanceBase(material, input);
}

// The double writes into a texture what it was computed from.
inline std::string picture(const kv::TempReference<ilSIDImage>& image) {
    if (!image) return "none";
    const auto* const text = reinterpret_cast<const char*>(image->getBytes());
    return {text, std::find(text, text + 4 * image->getSize().x, '\0')};
}

// Requests a texture, which the material then holds.
inline std::string render(const kv::Reference<Substance>& material) {
    const auto image = kvSubstance::getTextureFromSubstance(material.get());
    EXPECT_EQ(material->getCachedTexture().get(), image.get());
    return picture(image);
}

inline bool isUpToDate(const kv::Reference<Substance>& material) {
    const auto& outputs = material->getGraphInstances().at(0)->outputs;
    return std::none_of(outputs.begin(), outputs.end(),
                        [](const auto& output) { return output->dirty.load(); });
}

// Begins with an engine and a linker that were never used, and ends the renderer: everything is given back.
class PlatformTest : public testing::Test {
protected:
    void SetUp() override { begin(); }
    void TearDown() override { end(); }

    static void begin() {
        recording::reset();
        recording::setTexture({200, 1, -1, true, {}});
    }
    static void end() {
        SubstanceAir::processObjects()->renderer.reset();
        EXPECT_EQ(recording::misuses(), "");
        EXPECT_EQ(recording::alive(), "");
    }
};

} // namespace faults
