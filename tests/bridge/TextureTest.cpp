#include "tests/bridge/TextureFixture.h"

namespace kvSubstance {

TEST_F(Texture, IsTheCachedOneUntilSomethingChanges) {
    const auto material = materialWith({"Output"});
    const auto first = getTextureFromSubstance(material.get());
    EXPECT_EQ(getTextureFromSubstance(material.get()).get(), first.get());
    edit(material);
    EXPECT_NE(getTextureFromSubstance(material.get()).get(), first.get());
}

TEST_F(Texture, OtherOutputsAreTakenAndFreed) {
    EXPECT_FALSE(getTextureFromSubstance(materialWith({"output", "Output2", ""}).get()));
    EXPECT_EQ(packages::faults(), "");

    const auto material = materialWith({"before", "Output", "after"});
    EXPECT_TRUE(getTextureFromSubstance(material.get()));
    for (const auto& output : material->getGraphInstances().at(0)->outputs)
        EXPECT_EQ(output->grabResult() != nullptr, output->desc.identifier == "after");
}

TEST_F(Texture, NothingToRenderIsNull) {
    EXPECT_FALSE(getTextureFromSubstance(nullptr));
    const kv::Reference<Substance> material(new Substance);
    material->setCachedTexture(new ilSPMemoryImg({1, 1, 1, 4}, ilUChar, ilInterleaved, true));
    EXPECT_FALSE(getTextureFromSubstance(material.get()));
}

} // namespace kvSubstance
