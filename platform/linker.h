// The linker library, as this library calls it: it takes packages apart into a description text and an
// assembly, and joins the assemblies of several packages into the one that the engine runs.
//
// Every function returns 0 for success and non-zero for failure; null contexts, handles and pointers are
// refused with non-zero, and every out-parameter is set on failure too (null, zero).
//
// A context and its handles belong to one thread at a time. Handles that were never released die with
// their context.
#pragma once

#include <cstddef>

extern "C" {

typedef struct SubstanceLinkerContext_ SubstanceLinkerContext;
typedef struct SubstanceLinkerHandle_ SubstanceLinkerHandle;

// What substanceLinkerContextInit expects; other values are refused.
enum { SubstanceLinkerApiVersion = 0x10001, SubstanceLinkerEngineId = 19 };

// Callback kinds of substanceLinkerContextSetCallback.
enum {
    SubstanceLinkerCallbackText = 2,  // SubstanceLinkerTextCallback
    SubstanceLinkerCallbackBytes = 3, // SubstanceLinkerBytesCallback
};

// The function pointer type that callbacks are cast to and from.
typedef void (*SubstanceLinkerCallback)(void);

// Called on the pushing thread, before the push returns, once for each pushed package (index counts the
// pushes into the handle from 0). Text and bytes are borrowed for the time of the call; both are empty for
// data that could not be read.
typedef void (*SubstanceLinkerTextCallback)(SubstanceLinkerHandle* handle, unsigned int index,
                                            const char* text);
typedef void (*SubstanceLinkerBytesCallback)(SubstanceLinkerHandle* handle, unsigned int index,
                                             const unsigned char* bytes, size_t count);

unsigned int substanceLinkerContextInit(SubstanceLinkerContext** context, unsigned int apiVersion,
                                        unsigned int engineId);

// A null callback removes the one set before.
unsigned int substanceLinkerContextSetCallback(SubstanceLinkerContext* context, unsigned int kind,
                                               SubstanceLinkerCallback callback);

unsigned int substanceLinkerContextRelease(SubstanceLinkerContext* context);

unsigned int substanceLinkerHandleInit(SubstanceLinkerHandle** handle, SubstanceLinkerContext* context);

// Takes a package file's bytes, or a bare assembly as the bytes callback delivered it. The data is copied.
// A failed push makes linking fail.
unsigned int substanceLinkerHandlePushAssemblyMemory(SubstanceLinkerHandle* handle, const void* data,
                                                     size_t size);

// Mipmaps n gives n levels, full size first; 0 and 1 both give one level. An unknown output, or a format the
// engine lacks, is refused and changes nothing.
unsigned int substanceLinkerHandleSetOutputFormat(SubstanceLinkerHandle* handle, unsigned int outputUid,
                                                  int format, unsigned int mipmaps);

// Feeds an image input of a later pushed assembly from an output of an earlier pushed one. Mind the order:
// the input's uid comes first. The fed input disappears from the linked assembly.
unsigned int substanceLinkerConnectOutputToInput(SubstanceLinkerHandle* handle, unsigned int inputUid,
                                                 unsigned int outputUid);

// Keeps an output; never makes other outputs unavailable.
unsigned int substanceLinkerHandleSelectOutputs(SubstanceLinkerHandle* handle, unsigned int selection,
                                                unsigned int outputUid);

// Two inputs of one type become one, which keeps the first uid and drives both.
unsigned int substanceLinkerFuseInputs(SubstanceLinkerHandle* handle, unsigned int firstUid,
                                       unsigned int secondUid);

// The linked assembly, borrowed until the handle is released.
unsigned int substanceLinkerHandleLink(SubstanceLinkerHandle* handle, const unsigned char** data,
                                       size_t* size);

unsigned int substanceLinkerHandleRelease(SubstanceLinkerHandle* handle);

} // extern "C"
