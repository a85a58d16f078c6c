#include "framework/render/GraphInstance.h"
#include "tests/bridge/TestPackages.h"

#include <gtest/gtest.h>

namespace kvSubstance {

TEST(Texture, OtherOutputsAreTakenAndFreed) {
    packages::beginTest();
    EXPECT_FALSE(getTextureFromSubstance(materialWith({"output", "Output2", ""}).get()));
    EXPECT_EQ(packages::faults(), "");

    const auto material = materialWith({"before", "Output", "after"});
    EXPECT_TRUE(getTextureFromSubstance(material.get()));
    for (const auto& output : material->getGraphInstances().at(0)->outputs)
        EXPECT_EQ(output->grabResult() != nullptr, output->desc.identifier == "after");
    EXPECT_EQ(packages::faults(), "");
}

TEST(Texture, NothingToRenderIsNull) {
    EXPECT_FALSE(getTextureFromSubstance(nullptr));
    const kv::Reference<Substance> material(new Substance);
    material->setCachedTexture(new ilSPMemoryImg({1, 1, 1, 4}, ilUChar, ilInterleaved, true));
    EXPECT_FALSE(getTextureFromSubstance(material.get()));
}

} // namespace kvSubstance
