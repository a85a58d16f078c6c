#include "framework/render/GraphInstance.h"
#include "tests/bridge/TestPackages.h"

#include <gtest/gtest.h>

namespace {

using namespace kvSubstance;

class Texture : public testing::Test {
protected:
    Texture() { recording::reset(); }
    void TearDown() override {
        EXPECT_EQ(recording::misuses(), "");
        EXPECT_EQ(recording::liveTextures(), 0u);
    }

    // A material whose outputs have these identifiers, in the order of their uids, all altered by pick.
    static kv::Reference<Substance> materialWith(std::initializer_list<const char*> identifiers) {
        std::string outputs, uids;
        for (const char* const identifier : identifiers) {
            const unsigned int uid = recording::freshUids(1);
            outputs += outputTag(uid, identifier);
            uids += std::to_string(uid) + ",";
        }
        const std::string pick = inputTag("pick", 0, "0") + "alteroutputs='" + uids + "'/>";
        return createSubstance(plainPackage(), packageOf("top", outputs, pick));
    }
    static void edit(const kv::Reference<Substance>& material) {
        SubstanceInput* const pick = material->getInput("pick");
        pick->setValueF(pick->getValueF(0) + 1, 0);
        syncValueFromSubstanceInputToInputInstanceBase(material, pick);
    }
};

TEST_F(Texture, CopiesTheFullSizeLevelOfRgba8) {
    for (const int format : {0, 32, 1, 16, 33, 64, 128}) {
        recording::setTexture({3, 2, format, true, {1, 2, 3, 4, 5}});
        const auto image = getTextureFromSubstance(materialWith({"Output"}).get());
        ASSERT_EQ(static_cast<bool>(image), format == 0 || format == 32) << format;
        if (!image) continue;
        const ilSize size = image->getSize();
        EXPECT_TRUE(size.x == 3 && size.y == 2 && size.z == 1 && size.c == 4);
        EXPECT_TRUE(image->getType() == ilUChar && image->getOrder() == ilInterleaved);
        for (int i = 0; i < 3 * 2 * 4; ++i) EXPECT_EQ(image->getBytes()[i], i % 5 + 1);
    }
}

TEST_F(Texture, IsTheCachedOneUntilSomethingChanges) {
    const auto material = materialWith({"Output"});
    const auto first = getTextureFromSubstance(material.get());
    recording::takeTrace();
    EXPECT_EQ(getTextureFromSubstance(material.get()).get(), first.get());
    EXPECT_EQ(recording::takeTrace().find("substanceHandleStart"), std::string::npos);
    edit(material);
    const auto second = getTextureFromSubstance(material.get());
    EXPECT_NE(second.get(), first.get());

    // What fails leaves the last good one, and the next call tries again.
    edit(material);
    recording::fail("substanceHandleStart");
    EXPECT_EQ(getTextureFromSubstance(material.get()).get(), second.get());
    EXPECT_NE(getTextureFromSubstance(material.get()).get(), second.get());
}

TEST_F(Texture, OtherOutputsAreTakenAndFreed) {
    EXPECT_FALSE(getTextureFromSubstance(materialWith({"output", "Output2", ""}).get()));
    EXPECT_EQ(recording::liveTextures(), 0u);

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
    EXPECT_EQ(recording::takeTrace(), "");
}

} // namespace
