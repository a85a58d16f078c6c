#include "tests/bridge/TestPackages.h"
#include "tests/recording/Recording.h"

#include <gtest/gtest.h>

namespace kvSubstance {

TEST(TextureCalls, CopyTheFullSizeLevelOfRgba8) {
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
    EXPECT_EQ(packages::faults(), "");
}

} // namespace kvSubstance
