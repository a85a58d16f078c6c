#include "platform/image.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <new>
#include <string>
#include <vector>

namespace {

std::string bytesOf(const ilImage& image, const unsigned char* bytes) {
    const ilSize size = image.getSize();
    return std::string(bytes, bytes + size.x * size.y * size.c);
}

TEST(MemoryImage, TilesLieWhereTheOrderPutsThem) {
    // A tile of 2 x 2 pixels with 2 channels at (1, 1) of an image of 3 x 3.
    const struct {
        ilOrder order;
        const char* expected;
    } cases[] = {
        {ilInterleaved, "......"
                        "..abcd"
                        "..efgh"},
        {ilSequential, "......"
                       ".ab.cd"
                       ".ef.gh"},
        {ilSeparate, "....ab.cd"
                     "....ef.gh"},
    };
    for (const auto& c : cases) {
        const kv::TempReference<ilSPMemoryImg> image(
            new ilSPMemoryImg({3, 3, 1, 2}, ilUChar, c.order, false));
        EXPECT_EQ(image->getBytes(), nullptr);
        ASSERT_EQ(image->setTile(0, 0, 3, 3, std::string(18, '.').data()), ilOKAY);
        EXPECT_EQ(image->setTile(1, 1, 2, 2, "abcdefgh"), ilOKAY);
        EXPECT_EQ(bytesOf(*image, image->getBytes()), c.expected);
    }
}

TEST(MemoryImage, RefusesTilesThatAreNotInside) {
    const std::vector<std::uint16_t> pixels(64, 7);
    ilSPMemoryImg image({4, 2, 1, 1}, ilUShort, ilInterleaved, true);
    const int huge = std::numeric_limits<int>::max();
    const int rectangles[][4] = {{-1, 0, 2, 1}, {0, -1, 2, 1}, {3, 0, 2, 1},    {0, 1, 1, 2},
                                 {5, 0, 0, 1},  {1, 0, -1, 1}, {1, 0, huge, 1}, {huge, huge, huge, huge}};
    for (const auto& r : rectangles) {
        EXPECT_EQ(image.setTile(r[0], r[1], r[2], r[3], pixels.data()), ilBADTILE) << r[0] << "," << r[1];
    }
    EXPECT_EQ(image.setTile(0, 0, 1, 1, nullptr), ilBADTILE);
    const ilConfig other{ilFloat, ilInterleaved};
    EXPECT_EQ(image.setTile(0, 0, 1, 1, pixels.data(), &other), ilUNSUPPORTED);
    const std::string untouched(16, '\0');
    EXPECT_EQ(std::string(image.getBytes(), image.getBytes() + 16), untouched);
    EXPECT_EQ(image.setTile(4, 2, 0, 0, pixels.data()), ilOKAY);
    EXPECT_EQ(image.setTile(3, 1, 1, 1, pixels.data()), ilOKAY);
    EXPECT_EQ(image.getBytes()[14] + image.getBytes()[15], 7);
}

TEST(MemoryImage, SizesBeyondMemoryFailInOrder) {
    const int huge = std::numeric_limits<int>::max();
    EXPECT_THROW(ilSPMemoryImg({huge, huge, huge, 4}, ilFloat, ilInterleaved, true), std::bad_alloc);
    ilSPMemoryImg later({huge, huge, huge, 4}, ilFloat, ilInterleaved, false);
    EXPECT_EQ(later.setTile(0, 0, 1, 1, "0123456789abcdef"), ilNOMEMORY);
    ilSPMemoryImg none({-3, 5, 1, 4}, ilUChar, ilInterleaved, true);
    EXPECT_EQ(none.getBytes(), nullptr);
    EXPECT_EQ(none.setTile(0, 0, 1, 1, "abcd"), ilBADTILE);
}

} // namespace
