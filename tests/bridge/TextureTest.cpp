#include "framework/render/GraphInstance.h"
#include "framework/render/PackageStackDesc.h"
#include "tests/bridge/TestPackages.h"

#include <gtest/gtest.h>

#include <cstring>

namespace kvSubstance {

namespace {

// A material whose outputs have these identifiers, in the order of their uids, all altered by the input pick.
kv::Reference<Substance> materialWith(std::initializer_list<const char*> identifiers, int format = 0) {
    std::string outputs;
    std::string uids;
    for (const char* const identifier : identifiers) {
        const unsigned int uid = recording::freshUids(1);
        outputs += outputTag(uid, identifier, format);
        uids += (uids.empty() ? "" : ",") + std::to_string(uid);
    }
    return createSubstance(
        packageOf("bottom", outputTag(recording::freshUids(1), "x"), ""),
        packageOf("top", outputs, inputTag("pick", 0, "0") + "alteroutputs='" + uids + "'/>"));
}

class Texture : public testing::Test {
protected:
    void SetUp() override { recording::reset(); }
    void TearDown() override {
        EXPECT_EQ(recording::misuses(), "");
        EXPECT_EQ(recording::liveTextures(), 0u);
    }
    static void edit(const kv::Reference<Substance>& material) {
        SubstanceInput* const pick = material->getInput("pick");
        pick->setValueF(pick->getValueF(0) + 1, 0);
        syncValueFromSubstanceInputToInputInstanceBase(material, pick);
    }
};

TEST_F(Texture, CopiesTheFullSizeLevel) {
    recording::setTexture({3, 2, 32, true, {1, 2, 3, 4, 5}});
    const auto material = materialWith({"Output"});
    const auto image = getTextureFromSubstance(material.get());
    ASSERT_TRUE(image);
    const ilSize size = image->getSize();
    EXPECT_TRUE(size.x == 3 && size.y == 2 && size.z == 1 && size.c == 4);
    EXPECT_EQ(image->getType(), ilUChar);
    EXPECT_EQ(image->getOrder(), ilInterleaved);
    for (int i = 0; i < 3 * 2 * 4; ++i) EXPECT_EQ(image->getBytes()[i], i % 5 + 1);
    EXPECT_EQ(image->numTempReferences(), 2); // ours and the material's
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

TEST_F(Texture, OnlyRgba8IsTaken) {
    for (const int format : {0, 32, 1, 16, 33, 64, 128}) {
        recording::setTexture({2, 2, format, true, {}});
        const auto material = materialWith({"Output"});
        EXPECT_EQ(static_cast<bool>(getTextureFromSubstance(material.get())), format == 0 || format == 32)
            << format;
        EXPECT_EQ(recording::liveTextures(), 0u);
    }
}

TEST_F(Texture, OtherOutputsAreTakenAndFreed) {
    EXPECT_FALSE(getTextureFromSubstance(materialWith({"output", "Output2", ""}).get()));
    EXPECT_EQ(recording::liveTextures(), 0u);

    const auto material = materialWith({"before", "Output", "after"});
    EXPECT_TRUE(getTextureFromSubstance(material.get()));
    EXPECT_EQ(recording::liveTextures(), 1u); // the one behind keeps its result
    for (const auto& output : material->getGraphInstances().at(0)->outputs)
        EXPECT_EQ(output->grabResult() != nullptr, output->desc.identifier == "after");
}

TEST_F(Texture, NothingToRenderIsNull) {
    EXPECT_FALSE(getTextureFromSubstance(nullptr));
    const kv::Reference<Substance> material(new Substance);
    const kv::TempReference<ilSIDImage> cached(
        new ilSPMemoryImg(ilSize{1, 1, 1, 4}, ilUChar, ilInterleaved, true));
    material->setCachedTexture(cached);
    EXPECT_FALSE(getTextureFromSubstance(material.get()));
    const SubstanceAir::GraphDesc loose; // of no package, so the stack is empty
    SubstanceAir::PackageStackDesc empty(loose, loose, {});
    material->setPackageDesc(&empty, nullptr, nullptr);
    EXPECT_FALSE(getTextureFromSubstance(material.get()));
    EXPECT_EQ(material->getCachedTexture().get(), cached.get());
    EXPECT_EQ(recording::takeTrace(), "");
}

} // namespace

} // namespace kvSubstance
