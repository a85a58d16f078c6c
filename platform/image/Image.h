/// @file
/// Images: their geometry, and one that keeps its pixels in memory.
#pragma once

#include "platform/image/TempReference.h"

#include <vector>

/// The extent of an image.
struct ilSize {
    int x; ///< Width in pixels.
    int y; ///< Height in pixels.
    int z; ///< Slices.
    int c; ///< Channels.
};

/// What one channel of a pixel is stored as.
enum ilType {
    ilBit = 1,    ///< One bit.
    ilUChar = 2,  ///< 8 bits, unsigned.
    ilUShort = 8, ///< 16 bits, unsigned, in the machine's byte order.
    ilFloat = 64, ///< 32-bit float.
};

/// How the channels lie in memory.
enum ilOrder {
    ilInterleaved = 1, ///< Pixel by pixel: all channels of a pixel stand together.
    ilSequential = 2,  ///< Row by row: in each row one channel behind the other.
    ilSeparate = 4,    ///< Channel by channel: each is a plane of its own.
};

/// What became of a call.
enum ilStatus {
    ilOKAY = 0,        ///< Done.
    ilBADTILE = 1,     ///< The rectangle is not inside the image, or there is no data.
    ilUNSUPPORTED = 2, ///< Another layout than the image's, or pixels that do not begin at bytes.
    ilNOMEMORY = 3,    ///< There was no memory for the pixels.
};

/// How the pixels of a tile are laid out when they differ from the image. Only null configurations (as the
/// image) are in use.
struct ilConfig {
    ilType type;   ///< Of the tile's channels.
    ilOrder order; ///< Of the tile's channels.
};

/// A raster image. Rows run from the top, columns from the left. One thread at a time, unless all only read.
class KVIMAGE_API ilImage {
public:
    virtual ~ilImage();
    virtual ilSize getSize() const = 0;   ///< The same as long as the image lives.
    virtual ilType getType() const = 0;   ///< The same as long as the image lives.
    virtual ilOrder getOrder() const = 0; ///< The same as long as the image lives.

    /// Copies a rectangle of tightly packed pixels into the image. A rectangle that is not inside the image,
    /// or null data, changes nothing and gives ilBADTILE.
    virtual ilStatus setTile(int x, int y, int width, int height, const void* data,
                             const ilConfig* configuration = nullptr) = 0;
};

/// An image that is counted and passed on.
class KVIMAGE_API ilSIDImage : public ilImage, public kv::TempReferenceCount {
public:
    /// Tightly packed pixels of the whole image, or null when the image keeps none in memory. Valid as long
    /// as the image lives.
    virtual const unsigned char* getBytes() const = 0;
};

/// An image whose pixels lie in memory.
class KVIMAGE_API ilSPMemoryImg : public ilSIDImage {
public:
    /// Allocate takes the memory at once and clears it; otherwise the first tile does. Throws std::bad_alloc.
    ilSPMemoryImg(const ilSize& size, ilType type, ilOrder order, bool allocate);
    ~ilSPMemoryImg() override;

    ilSize getSize() const override;
    ilType getType() const override;
    ilOrder getOrder() const override;
    ilStatus setTile(int x, int y, int width, int height, const void* data,
                     const ilConfig* configuration = nullptr) override;
    const unsigned char* getBytes() const override;

private:
    ilSize imageSize;
    ilType imageType;
    ilOrder imageOrder;
    std::vector<unsigned char> bytes;
};
