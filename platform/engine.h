/// @file
/// The engine library, as this library calls it: contexts own texture memory, handles run one linked
/// assembly.
///
/// Every function returns 0 for success and non-zero for failure, except substanceHandleGetParentContext.
/// Null contexts, handles and pointers are refused with non-zero (null), and every out-parameter is set on
/// failure too. None throws.
///
/// A handle belongs to one thread at a time, and of a context's handles one is used at a time. The completion
/// callback may come from any thread, but only while substanceHandleStart runs. substanceContextMemoryFree is
/// safe from any thread at any time, also after the context was released: its memory lives until the last
/// buffer is freed.
///
/// The order of calls:
///
///     substanceContextInit, substanceContextSetCallback           once
///         substanceHandleInit, GetDesc, GetInputDesc              for each linked assembly
///             substanceHandlePushSetInput   for each input that changed    |
///             substanceHandlePushOutputs    for each wanted set of outputs | again and again
///             the same pushes as hints                                     |
///             substanceHandleStart                                         |
///                 in the callback: substanceHandleGetOutputDesc, substanceHandleGetOutputs
///         substanceHandleRelease
///     substanceContextRelease
///     substanceContextMemoryFree                                  at any time, once for each texture
#pragma once

#include <cstddef>

extern "C" {

/// Opaque: owns texture memory. Ended by substanceContextRelease.
typedef struct SubstanceContext_ SubstanceContext;

/// Opaque: runs one linked assembly. Ended by substanceHandleRelease, before its context is.
typedef struct SubstanceHandle_ SubstanceHandle;

/// The engine device: one pointer-sized word, passed by address.
typedef struct SubstanceDevice_ {
    void* word; ///< The engine's own affair; zero in this library.
} SubstanceDevice;

/// Value types of inputs.
enum {
    SubstanceInputFloat = 0,     ///< 1 float
    SubstanceInputFloat2 = 1,    ///< 2 floats
    SubstanceInputFloat3 = 2,    ///< 3 floats
    SubstanceInputFloat4 = 3,    ///< 4 floats
    SubstanceInputInteger = 4,   ///< 1 int
    SubstanceInputImage = 5,     ///< A SubstanceTextureInput.
    SubstanceInputInteger2 = 8,  ///< 2 ints
    SubstanceInputInteger3 = 9,  ///< 3 ints
    SubstanceInputInteger4 = 10, ///< 4 ints
};

/// Pixel format bits that the library itself knows. Other codes belong to the engine.
enum {
    SubstanceFormatRgba8 = 0, ///< 8 bits per channel; red, green, blue and alpha interleaved.
    SubstanceFormatSrgb = 32, ///< This bit marks colours as sRGB-encoded.
};

/// How much there is in a handle's assembly.
typedef struct SubstanceDataDesc_ {
    unsigned int inputsCount;  ///< Input indices are 0 to this, exclusively.
    unsigned int outputsCount; ///< Output indices are 0 to this, exclusively.
} SubstanceDataDesc;

/// An input of a handle's assembly.
typedef struct SubstanceInputDesc_ {
    unsigned int uid;   ///< As its package describes it.
    int type;           ///< A value type, SubstanceInputFloat to SubstanceInputInteger4.
    unsigned int index; ///< What substanceHandlePushSetInput takes.
} SubstanceInputDesc;

/// An output of a handle's assembly.
typedef struct SubstanceOutputDesc_ {
    unsigned int uid; ///< As its package describes it.
    int format;       ///< The pixel format its texture will have.
} SubstanceOutputDesc;

/// A finished texture: levels follow each other in the buffer, full size first, rows tightly packed, the
/// first row at the top.
typedef struct SubstanceTexture_ {
    void* buffer;                ///< Owned by whoever fetched it; freed with substanceContextMemoryFree.
    unsigned short level0Width;  ///< Of the full-size level, in pixels.
    unsigned short level0Height; ///< Of the full-size level, in pixels.
    unsigned char pixelFormat;   ///< A format code.
    unsigned char channelsOrder; ///< 0: red, green, blue, alpha.
    unsigned char mipmapCount;   ///< Levels in the buffer, at least 1; sides halve, down to 1.
} SubstanceTexture;

/// An image handed to an image input: the same layout, read at once and then no more. Null pixels are no
/// image.
typedef struct SubstanceTextureInput_ {
    const void* pixels;          ///< All levels; borrowed for the time of the call.
    unsigned short level0Width;  ///< Of the full-size level, in pixels.
    unsigned short level0Height; ///< Of the full-size level, in pixels.
    unsigned char pixelFormat;   ///< A format code.
    unsigned char channelsOrder; ///< 0: red, green, blue, alpha.
    unsigned char mipmapCount;   ///< Levels that the pixels hold.
} SubstanceTextureInput;

/// Flags of pushes. Hints tell what is likely to come again; they produce nothing.
enum {
    SubstancePushInput = 0,             ///< Set the value.
    SubstancePushOutputUids = 2,        ///< Ask for outputs; the array holds uids.
    SubstancePushInputHint = 2048,      ///< This input is likely to be set again. No value is read.
    SubstancePushOutputUidsHint = 2050, ///< These outputs are likely to be asked for again. None is computed.
};

/// Callback kinds of substanceContextSetCallback.
enum {
    SubstanceCallbackOutputCompleted = 2, ///< SubstanceOutputCompletedCallback
};

/// The callback kind's function: one call for each computed output, before substanceHandleStart returns.
/// jobUserData is what the push of that output carried.
///
/// On any thread of the engine, also on several at once. It calls substanceHandleGetOutputDesc,
/// substanceHandleGetOutputs, substanceHandleGetParentContext and substanceContextMemoryFree, nothing else of
/// the engine, and throws nothing.
typedef void (*SubstanceOutputCompletedCallback)(SubstanceHandle* handle, unsigned int outputIndex,
                                                 void* jobUserData);

/// The function pointer type that callbacks are cast to and from.
typedef void (*SubstanceCallback)(void);

/// Makes a context. The device is read at once.
unsigned int substanceContextInit(SubstanceContext** context, SubstanceDevice* device);

/// Sets what runs of the context's handles call; set once, before the first handle. Other kinds are refused.
unsigned int substanceContextSetCallback(SubstanceContext* context, unsigned int kind,
                                         SubstanceCallback callback);

/// Ends the context, after its handles. Buffers that are still out stay valid until they are freed.
unsigned int substanceContextRelease(SubstanceContext* context);

/// Frees the buffer of a fetched texture. The context is the one that the handle had.
unsigned int substanceContextMemoryFree(SubstanceContext* context, void* buffer);

/// Checks and copies the assembly; no content of it makes the engine crash or hang. Flags are 0. Null in
/// *handle for what is no valid assembly.
unsigned int substanceHandleInit(SubstanceHandle** handle, SubstanceContext* context,
                                 const unsigned char* assembly, size_t size, unsigned int flags);

/// How many inputs and outputs there are; both 0 on failure.
unsigned int substanceHandleGetDesc(SubstanceHandle* handle, SubstanceDataDesc* desc);

/// @{
/// One input, or one output, of the assembly. An index that is not there is refused, with a record of zeros.
unsigned int substanceHandleGetInputDesc(SubstanceHandle* handle, unsigned int index,
                                         SubstanceInputDesc* desc);
unsigned int substanceHandleGetOutputDesc(SubstanceHandle* handle, unsigned int index,
                                          SubstanceOutputDesc* desc);
/// @}

/// Hands over the texture of one computed output, once: called in the completion callback or after the run,
/// with flags 0 and count 1. A second fetch is refused; a texture that nobody fetched is freed by the engine.
unsigned int substanceHandleGetOutputs(SubstanceHandle* handle, unsigned int flags, unsigned int outputIndex,
                                       unsigned int count, SubstanceTexture* texture);

/// The context that the handle was made in, borrowed; null for a null handle.
SubstanceContext* substanceHandleGetParentContext(SubstanceHandle* handle);

/// Sets an input by its engine index. The value is read at once: components of the stated type, or, for an
/// image, a SubstanceTextureInput (null: no image). A type other than the assembly's is refused unread.
/// The last argument is 0. Values stay until they are set again; they start at the assembly's defaults.
unsigned int substanceHandlePushSetInput(SubstanceHandle* handle, unsigned int flags, unsigned int inputIndex,
                                         int type, const void* value, unsigned int reserved);

/// Asks for outputs of the next start, computed with the values that the inputs have now: later pushes of
/// inputs are for later pushes of outputs. The array is copied; unknown uids are passed over.
unsigned int substanceHandlePushOutputs(SubstanceHandle* handle, unsigned int flags,
                                        const unsigned int* outputUids, unsigned int count,
                                        void* jobUserData);

/// Computes what was pushed. Blocks until every completion callback has returned; leaves the queue empty.
/// Flags are 0. A queue of hints alone is a success that computes nothing.
unsigned int substanceHandleStart(SubstanceHandle* handle, unsigned int flags);

/// Ends the handle and frees textures that nobody fetched. Refused inside a completion callback.
unsigned int substanceHandleRelease(SubstanceHandle* handle);

} // extern "C"
