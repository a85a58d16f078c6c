// The engine library, as this library calls it: contexts own texture memory, handles run one linked assembly.
//
// Every function returns 0 for success and non-zero for failure, except substanceHandleGetParentContext. Null
// contexts, handles and pointers are refused with non-zero (null), and every out-parameter is set on failure
// too.
//
// A handle belongs to one thread at a time. The completion callback may come from any thread, but only while
// substanceHandleStart runs. substanceContextMemoryFree is safe from any thread at any time, also after the
// context was released: its memory lives until the last buffer is freed.
#pragma once

#include <cstddef>

extern "C" {

typedef struct SubstanceContext_ SubstanceContext;
typedef struct SubstanceHandle_ SubstanceHandle;

// The engine device: one pointer-sized word, passed by address.
typedef struct SubstanceDevice_ {
    void* word;
} SubstanceDevice;

// Value types of inputs.
enum {
    SubstanceInputFloat = 0,
    SubstanceInputFloat2 = 1,
    SubstanceInputFloat3 = 2,
    SubstanceInputFloat4 = 3,
    SubstanceInputInteger = 4,
    SubstanceInputImage = 5,
    SubstanceInputInteger2 = 8,
    SubstanceInputInteger3 = 9,
    SubstanceInputInteger4 = 10,
};

// Pixel format bits that the library itself knows: 8-bit RGBA is code 0, and this bit marks its colours as
// sRGB-encoded. Other codes belong to the engine.
enum { SubstanceFormatRgba8 = 0, SubstanceFormatSrgb = 32 };

typedef struct SubstanceDataDesc_ {
    unsigned int inputsCount;
    unsigned int outputsCount;
} SubstanceDataDesc;

typedef struct SubstanceInputDesc_ {
    unsigned int uid;
    int type;
    unsigned int index; // what substanceHandlePushSetInput takes
} SubstanceInputDesc;

typedef struct SubstanceOutputDesc_ {
    unsigned int uid;
    int format;
} SubstanceOutputDesc;

// A finished texture: levels follow each other in the buffer, full size first, rows tightly packed, the first
// row at the top.
typedef struct SubstanceTexture_ {
    void* buffer; // owned by whoever fetched it; freed with substanceContextMemoryFree
    unsigned short level0Width;
    unsigned short level0Height;
    unsigned char pixelFormat;
    unsigned char channelsOrder; // 0: red, green, blue, alpha
    unsigned char mipmapCount;
} SubstanceTexture;

// An image handed to an image input: the same layout, read at once and then no more. Null pixels are no
// image.
typedef struct SubstanceTextureInput_ {
    const void* pixels;
    unsigned short level0Width;
    unsigned short level0Height;
    unsigned char pixelFormat;
    unsigned char channelsOrder;
    unsigned char mipmapCount;
} SubstanceTextureInput;

// Flags of pushes. Hints tell what is likely to come again; they produce nothing.
enum {
    SubstancePushInput = 0,
    SubstancePushOutputUids = 2,
    SubstancePushInputHint = 2048,
    SubstancePushOutputUidsHint = 2050,
};

enum { SubstanceCallbackOutputCompleted = 2 };

// The callback kind's function: one call for each computed output, before substanceHandleStart returns.
// jobUserData is what the push of that output carried.
typedef void (*SubstanceOutputCompletedCallback)(SubstanceHandle* handle, unsigned int outputIndex,
                                                 void* jobUserData);
typedef void (*SubstanceCallback)(void);

unsigned int substanceContextInit(SubstanceContext** context, SubstanceDevice* device);
unsigned int substanceContextSetCallback(SubstanceContext* context, unsigned int kind,
                                         SubstanceCallback callback);
unsigned int substanceContextRelease(SubstanceContext* context);
unsigned int substanceContextMemoryFree(SubstanceContext* context, void* buffer);

// Checks and copies the assembly; no content of it makes the engine crash or hang. Flags are 0.
unsigned int substanceHandleInit(SubstanceHandle** handle, SubstanceContext* context,
                                 const unsigned char* assembly, size_t size, unsigned int flags);
unsigned int substanceHandleGetDesc(SubstanceHandle* handle, SubstanceDataDesc* desc);
unsigned int substanceHandleGetInputDesc(SubstanceHandle* handle, unsigned int index,
                                         SubstanceInputDesc* desc);
unsigned int substanceHandleGetOutputDesc(SubstanceHandle* handle, unsigned int index,
                                          SubstanceOutputDesc* desc);

// Hands over the texture of one computed output, once: called in the completion callback or after the run,
// with flags 0 and count 1. A second fetch is refused; a texture that nobody fetched is freed by the engine.
unsigned int substanceHandleGetOutputs(SubstanceHandle* handle, unsigned int flags, unsigned int outputIndex,
                                       unsigned int count, SubstanceTexture* texture);
SubstanceContext* substanceHandleGetParentContext(SubstanceHandle* handle);

// Sets an input by its engine index. The value is read at once: components of the stated type, or, for an
// image, a SubstanceTextureInput (null: no image). A type other than the assembly's is refused unread.
// The last argument is 0. Values stay until they are set again; they start at the assembly's defaults.
unsigned int substanceHandlePushSetInput(SubstanceHandle* handle, unsigned int flags, unsigned int inputIndex,
                                         int type, const void* value, unsigned int reserved);

// Asks for outputs of the next start. The array is copied; unknown uids are passed over.
unsigned int substanceHandlePushOutputs(SubstanceHandle* handle, unsigned int flags,
                                        const unsigned int* outputUids, unsigned int count,
                                        void* jobUserData);

// Computes what was pushed. Blocks until every completion callback has returned; leaves the queue empty.
unsigned int substanceHandleStart(SubstanceHandle* handle, unsigned int flags);
unsigned int substanceHandleRelease(SubstanceHandle* handle);

} // extern "C"
