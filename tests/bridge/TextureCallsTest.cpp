// Textures, and what is asked of the engine for them.
#include "tests/bridge/TextureFixture.h"
#include "tests/recording/Recording.h"

namespace kvSubstance {

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

TEST_F(Texture, IsAskedForAgainAfterAFailureOnly) {
    const auto material = materialWith({"Output"});
    const auto first = getTextureFromSubstance(material.get());
    recording::takeTrace();
    EXPECT_EQ(getTextureFromSubstance(material.get()).get(), first.get());
    EXPECT_EQ(recording::takeTrace().find("substanceHandleStart"), std::string::npos);

    // What fails leaves the last good one, and the next call tries again.
    edit(material);
    recording::fail("substanceHandleStart");
    EXPECT_EQ(getTextureFromSubstance(material.get()).get(), first.get());
    EXPECT_NE(getTextureFromSubstance(material.get()).get(), first.get());
}

TEST_F(Texture, NothingToRenderMakesNoCalls) {
    const kv::Reference<Substance> material(new Substance);
    recording::takeTrace();
    EXPECT_FALSE(getTextureFromSubstance(material.get()));
    EXPECT_EQ(recording::takeTrace(), "");
}

} // namespace kvSubstance
