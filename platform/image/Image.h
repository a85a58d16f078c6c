// Images: their geometry, and one that keeps its pixels in memory.
#pragma once

#include "platform/image/TempReference.h"

#include <vector>

struct ilSize {
    int x; // pixels
    int y;
    int z; // slices
    int c; // channels
};

enum ilType { ilBit = 1, ilUChar = 2, ilUShort = 8, ilFloat = 64 };
enum ilOrder { ilInterleaved = 1, ilSequential = 2, ilSeparate = 4 };
enum ilStatus { ilOKAY = 0, ilBADTILE = 1, ilUNSUPPORTED = 2, ilNOMEMORY = 3 };

// How the pixels of a tile are laid out when they differ from the image. Only null configurations (as the
// image) are in use.
struct ilConfig {
    ilType type;
    ilOrder order;
};

// A raster image. Rows run from the top, columns from the left.
class KVIMAGE_API ilImage {
public:
    virtual ~ilImage();
    virtual ilSize getSize() const = 0;
    virtual ilType getType() const = 0;
    virtual ilOrder getOrder() const = 0;

    // Copies a rectangle of tightly packed pixels into the image. A rectangle that is not inside the image,
    // or null data, changes nothing and gives ilBADTILE.
    virtual ilStatus setTile(int x, int y, int width, int height, const void* data,
                             const ilConfig* configuration = nullptr) = 0;
};

// An image that is counted and passed on.
class KVIMAGE_API ilSIDImage : public ilImage, public kv::TempReferenceCount {
public:
    // Tightly packed pixels of the whole image, or null when the image keeps none in memory. Valid as long as
    // the image lives.
    virtual const unsigned char* getBytes() const = 0;
};

// An image whose pixels lie in memory.
class KVIMAGE_API ilSPMemoryImg : public ilSIDImage {
public:
    // Allocate takes the memory at once and clears it; otherwise the first tile does. Throws std::bad_alloc.
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
