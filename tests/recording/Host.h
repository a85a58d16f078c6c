// A host that renders one material against the recording double, and checks each time what it may rely on.
#pragma once

#include "framework/render/GraphInstance.h"
#include "framework/render/ProcessObjects.h"
#include "tests/Hosting.h"
#include "tests/recording/Recording.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace recording {

using hosting::Image;
using hosting::Material;
using hosting::setValue;

// The bottom's height feeds the top's bump, both have a seed, and the bottom's Output is left over. Materials
// that are alive at the same time have different numbers, which stand behind the packages' names.
inline Material loadMaterial(const std::string& number = "") {
    const auto package = [&number](const std::string& name, const char* xml) {
        const std::string description = packages::descriptionOf("#0", "pkg://" + name, xml);
        return hosting::content(packageBytes(withFreshUids(description), name + number));
    };
    const auto bottom = package("bottom", R"(<outputs count='2'>
            <output uid='#1' identifier='Output' mipmaps='1'/><output uid='#2' identifier='relief'><outputgui>
                <channels><channel names='height'/></channels></outputgui></output></outputs>
        <inputs count='2'><input uid='#4' identifier='$seed' type='4' default='3' alteroutputs='#2'/>
            <input uid='#3' identifier='scale' type='0' default='1' alteroutputs='#2'/></inputs>)");
    const auto top = package("top", R"(<outputs count='2'>
            <output uid='#1' identifier='before'/><output uid='#2' identifier='Output' mipmaps='2'/></outputs>
        <inputs count='3'><input uid='#3' identifier='Bump' type='5' alteroutputs='#1,#2'/>
            <input uid='#5' identifier='$seed' type='4' alteroutputs='#2'/>
            <input uid='#4' identifier='amount' type='0' default='0.5' alteroutputs='#1,#2'/></inputs>)");
    return kvSubstance::createSubstance(bottom, top);
}

// What the material's texture shows.
inline std::string pictureOf(int seed, int scale, const std::string& amount = "0.5",
                             const std::string& number = "") {
    return "top" + number + ".Output of bottom" + number + ".$seed Integer, " + std::to_string(seed) +
           "; bottom" + number + ".scale Float, " + std::to_string(scale) + "; top" + number +
           ".amount Float, " + amount;
}

// The double writes into a texture what it was computed from.
inline std::string picture(const Image& image) {
    return image ? hosting::pixels(image).c_str() : "none";
}

// Requests a texture, which the material then holds.
inline std::string render(const Material& material) {
    const Image image = hosting::render(material);
    EXPECT_EQ(material->getCachedTexture().get(), image.get());
    return picture(image);
}

inline bool isUpToDate(const Material& material) {
    const auto& outputs = material->getGraphInstances().at(0)->outputs;
    return std::none_of(outputs.begin(), outputs.end(),
                        [](const auto& output) { return output->dirty.load(); });
}

// Begins with an engine and a linker that were never used, and ends the renderer: everything is given back.
class HostTest : public testing::Test {
protected:
    void SetUp() override { begin(); }
    void TearDown() override { end(); }

    static void begin() {
        reset();
        setTexture({200, 1, -1, true, {}});
    }
    static void end() {
        SubstanceAir::processObjects()->renderer.reset();
        EXPECT_EQ(misuses(), "");
        EXPECT_EQ(alive(), "");
    }
};

} // namespace recording
