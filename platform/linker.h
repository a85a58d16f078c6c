/// @file
/// The linker library, as this library calls it: it takes packages apart into a description text and an
/// assembly, and joins the assemblies of several packages into the one that the engine runs.
///
/// Every function returns 0 for success and non-zero for failure; null contexts, handles and pointers are
/// refused with non-zero, and every out-parameter is set on failure too (null, zero). None throws.
///
/// A context and its handles belong to one thread at a time. Handles that were never released die with
/// their context.
#pragma once

#include <cstddef>

extern "C" {

/// Opaque: what handles are made in. Owned by whoever made it; ended by substanceLinkerContextRelease.
typedef struct SubstanceLinkerContext_ SubstanceLinkerContext;

/// Opaque: what packages are pushed into and linked by. Owned by its context; ended by
/// substanceLinkerHandleRelease, or with the context.
typedef struct SubstanceLinkerHandle_ SubstanceLinkerHandle;

/// What substanceLinkerContextInit expects; other values are refused.
enum {
    SubstanceLinkerApiVersion = 0x10001, ///< The apiVersion.
    SubstanceLinkerEngineId = 19,        ///< The engineId.
};

/// Statuses that mean something of their own.
enum {
    /// From any function, when memory ran out. A package whose reading it interrupts throws std::bad_alloc in
    /// this library, which would else go on with what was delivered for the package before.
    SubstanceLinkerOutOfMemory = 0x6D656D,
};

/// Callback kinds of substanceLinkerContextSetCallback.
enum {
    SubstanceLinkerCallbackText = 2,  ///< SubstanceLinkerTextCallback
    SubstanceLinkerCallbackBytes = 3, ///< SubstanceLinkerBytesCallback
};

/// The function pointer type that callbacks are cast to and from.
typedef void (*SubstanceLinkerCallback)(void);

/// Called with a package's description, an XML document that ends with a zero.
///
/// On the pushing thread, before the push returns, once for each pushed package (index counts the pushes into
/// the handle from 0). The text is borrowed for the time of the call; it is empty for data that could not be
/// read. It throws nothing and calls nothing of the linker.
typedef void (*SubstanceLinkerTextCallback)(SubstanceLinkerHandle* handle, unsigned int index,
                                            const char* text);

/// Called with a package's assembly, in the same way; count is 0 for data that could not be read. Which of
/// the two callbacks comes first does not matter.
typedef void (*SubstanceLinkerBytesCallback)(SubstanceLinkerHandle* handle, unsigned int index,
                                             const unsigned char* bytes, size_t count);

/// Makes a context. Null in *context when the version or the engine is another one.
unsigned int substanceLinkerContextInit(SubstanceLinkerContext** context, unsigned int apiVersion,
                                        unsigned int engineId);

/// Sets what pushes into the context's handles call. A null callback removes the one set before; an unknown
/// kind is refused.
unsigned int substanceLinkerContextSetCallback(SubstanceLinkerContext* context, unsigned int kind,
                                               SubstanceLinkerCallback callback);

/// Ends the context, the handles that are still in it, and what they linked.
unsigned int substanceLinkerContextRelease(SubstanceLinkerContext* context);

/// Makes an empty handle in the context.
unsigned int substanceLinkerHandleInit(SubstanceLinkerHandle** handle, SubstanceLinkerContext* context);

/// Takes a package file's bytes, or a bare assembly as the bytes callback delivered it. The data is copied.
/// A failed push makes linking fail.
unsigned int substanceLinkerHandlePushAssemblyMemory(SubstanceLinkerHandle* handle, const void* data,
                                                     size_t size);

/// Mipmaps n gives n levels, full size first; 0 and 1 both give one level. An unknown output, or a format the
/// engine lacks, is refused and changes nothing.
unsigned int substanceLinkerHandleSetOutputFormat(SubstanceLinkerHandle* handle, unsigned int outputUid,
                                                  int format, unsigned int mipmaps);

/// Feeds an image input of a later pushed assembly from an output of an earlier pushed one. Mind the order:
/// the input's uid comes first. The fed input disappears from the linked assembly.
unsigned int substanceLinkerConnectOutputToInput(SubstanceLinkerHandle* handle, unsigned int inputUid,
                                                 unsigned int outputUid);

/// Keeps an output; never makes other outputs unavailable. This library's selection is 0.
unsigned int substanceLinkerHandleSelectOutputs(SubstanceLinkerHandle* handle, unsigned int selection,
                                                unsigned int outputUid);

/// Two inputs of one type become one, which keeps the first uid and drives both. Other types are refused.
unsigned int substanceLinkerFuseInputs(SubstanceLinkerHandle* handle, unsigned int firstUid,
                                       unsigned int secondUid);

/// The linked assembly, borrowed until the handle is released. Refused when nothing was pushed, or when a
/// push failed.
unsigned int substanceLinkerHandleLink(SubstanceLinkerHandle* handle, const unsigned char** data,
                                       size_t* size);

/// Ends the handle and what it linked. A handle whose link failed is left to its context by this library.
unsigned int substanceLinkerHandleRelease(SubstanceLinkerHandle* handle);

} // extern "C"
