#include "platform/image.h"

#include <gtest/gtest.h>

#include <limits>
#include <new>
#include <string>

namespace {

TEST(MemoryImage, TilesLieWhereTheOrderPutsThem) {
    // A tile of 2 x 2 pixels with 2 channels at (1, 1) of an image of 3 x 3.
    const struct {
        ilOrder order;
        const char* expected;
    } cases[] = {{ilInterleaved, "........abcd..efgh"},
                 {ilSequential, ".......ab.cd.ef.gh"},
                 {ilSeparate, "....ab.cd....ef.gh"}};
    for (const auto& c : cases) {
        ilSPMemoryImg image({3, 3, 1, 2}, ilUChar, c.order, false);
        ASSERT_EQ(image.setTile(0, 0, 3, 3, std::string(18, '.').data()), ilOKAY);
        EXPECT_EQ(image.setTile(1, 1, 2, 2, "abcdefgh"), ilOKAY);
        EXPECT_EQ(std::string(image.getBytes(), image.getBytes() + 18), c.expected);
    }
}

TEST(MemoryImage, RefusesWhatIsNotInside) {
    const int huge = std::numeric_limits<int>::max();
    ilSPMemoryImg image({4, 2, 1, 1}, ilUShort, ilInterleaved, true);
    const int rectangles[][4] = {{-1, 0, 2, 1}, {0, -1, 2, 1}, {3, 0, 2, 1},    {0, 1, 1, 2},
                                 {5, 0, 0, 1},  {1, 0, -1, 1}, {1, 0, huge, 1}, {huge, huge, huge, huge}};
    for (const auto& r : rectangles)
        EXPECT_EQ(image.setTile(r[0], r[1], r[2], r[3], "0123456789"), ilBADTILE) << r[0] << "," << r[1];
    EXPECT_EQ(image.setTile(0, 0, 1, 1, nullptr), ilBADTILE);
    const ilConfig other{ilFloat, ilInterleaved};
    EXPECT_EQ(image.setTile(0, 0, 1, 1, "0123", &other), ilUNSUPPORTED);
    EXPECT_EQ(image.setTile(4, 2, 0, 0, "x"), ilOKAY);
    EXPECT_EQ(image.setTile(3, 1, 1, 1, "ab"), ilOKAY);
    EXPECT_EQ(std::string(image.getBytes(), image.getBytes() + 16), std::string(14, '\0') + "ab");

    EXPECT_THROW(ilSPMemoryImg({huge, huge, huge, 4}, ilFloat, ilInterleaved, true), std::bad_alloc);
    ilSPMemoryImg later({huge, huge, huge, 4}, ilFloat, ilInterleaved, false);
    EXPECT_EQ(later.setTile(0, 0, 1, 1, "0123456789abcdef"), ilNOMEMORY);
}

} // namespace
