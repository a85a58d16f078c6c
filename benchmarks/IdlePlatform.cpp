#include "benchmarks/IdlePlatform.h"

#include "platform/engine.h"
#include "platform/linker.h"

#include <algorithm>
#include <cstdlib>
#include <utility>
#include <vector>

namespace benchmarks {

namespace {

EngineProgram engineProgram;

} // namespace

void setEngineProgram(const EngineProgram& program) {
    engineProgram = program;
}

} // namespace benchmarks

struct SubstanceLinkerContext_ {
    SubstanceLinkerTextCallback text = nullptr;
    SubstanceLinkerBytesCallback bytes = nullptr;
};

struct SubstanceLinkerHandle_ {
    SubstanceLinkerContext* context;
    unsigned char linked = 0;
};

struct SubstanceContext_ {
    SubstanceOutputCompletedCallback completed = nullptr;
};

struct SubstanceHandle_ {
    SubstanceContext* context;
    benchmarks::EngineProgram program;
    std::vector<std::pair<unsigned int, void*>> wanted; // indices of outputs, with the jobs that want them
};

namespace {

constexpr unsigned short textureSide = 4; // pixels

} // namespace

extern "C" {

unsigned int substanceLinkerContextInit(SubstanceLinkerContext** context, unsigned int, unsigned int) {
    *context = new SubstanceLinkerContext;
    return 0;
}

unsigned int substanceLinkerContextSetCallback(SubstanceLinkerContext* context, unsigned int kind,
                                               SubstanceLinkerCallback callback) {
    if (kind == SubstanceLinkerCallbackText)
        context->text = reinterpret_cast<SubstanceLinkerTextCallback>(callback);
    else
        context->bytes = reinterpret_cast<SubstanceLinkerBytesCallback>(callback);
    return 0;
}

unsigned int substanceLinkerContextRelease(SubstanceLinkerContext* context) {
    delete context;
    return 0;
}

unsigned int substanceLinkerHandleInit(SubstanceLinkerHandle** handle, SubstanceLinkerContext* context) {
    *handle = new SubstanceLinkerHandle{context};
    return 0;
}

// Packages are told from assemblies, which have one byte.
unsigned int substanceLinkerHandlePushAssemblyMemory(SubstanceLinkerHandle* handle, const void* data,
                                                     size_t size) {
    if (size > 1 && handle->context->text) handle->context->text(handle, 0, static_cast<const char*>(data));
    if (size > 1 && handle->context->bytes) handle->context->bytes(handle, 0, &handle->linked, 1);
    return 0;
}

unsigned int substanceLinkerHandleSetOutputFormat(SubstanceLinkerHandle*, unsigned int, int, unsigned int) {
    return 0;
}

unsigned int substanceLinkerConnectOutputToInput(SubstanceLinkerHandle*, unsigned int, unsigned int) {
    return 0;
}

unsigned int substanceLinkerHandleSelectOutputs(SubstanceLinkerHandle*, unsigned int, unsigned int) {
    return 0;
}

unsigned int substanceLinkerFuseInputs(SubstanceLinkerHandle*, unsigned int, unsigned int) {
    return 0;
}

unsigned int substanceLinkerHandleLink(SubstanceLinkerHandle* handle, const unsigned char** data,
                                       size_t* size) {
    *data = &handle->linked;
    *size = 1;
    return 0;
}

unsigned int substanceLinkerHandleRelease(SubstanceLinkerHandle* handle) {
    delete handle;
    return 0;
}

unsigned int substanceContextInit(SubstanceContext** context, SubstanceDevice*) {
    *context = new SubstanceContext;
    return 0;
}

unsigned int substanceContextSetCallback(SubstanceContext* context, unsigned int,
                                         SubstanceCallback callback) {
    context->completed = reinterpret_cast<SubstanceOutputCompletedCallback>(callback);
    return 0;
}

unsigned int substanceContextRelease(SubstanceContext* context) {
    delete context;
    return 0;
}

unsigned int substanceContextMemoryFree(SubstanceContext*, void* buffer) {
    std::free(buffer);
    return 0;
}

unsigned int substanceHandleInit(SubstanceHandle** handle, SubstanceContext* context, const unsigned char*,
                                 size_t, unsigned int) {
    *handle = new SubstanceHandle{context, benchmarks::engineProgram, {}};
    return 0;
}

unsigned int substanceHandleGetDesc(SubstanceHandle* handle, SubstanceDataDesc* desc) {
    desc->inputsCount = static_cast<unsigned int>(handle->program.inputUids.size());
    desc->outputsCount = static_cast<unsigned int>(handle->program.outputUids.size());
    return 0;
}

unsigned int substanceHandleGetInputDesc(SubstanceHandle* handle, unsigned int index,
                                         SubstanceInputDesc* desc) {
    *desc = {handle->program.inputUids[index], SubstanceInputFloat, index};
    return 0;
}

unsigned int substanceHandleGetOutputDesc(SubstanceHandle* handle, unsigned int index,
                                          SubstanceOutputDesc* desc) {
    *desc = {handle->program.outputUids[index], SubstanceFormatRgba8};
    return 0;
}

unsigned int substanceHandleGetOutputs(SubstanceHandle*, unsigned int, unsigned int, unsigned int,
                                       SubstanceTexture* texture) {
    *texture = {
        std::calloc(textureSide * textureSide, 4), textureSide, textureSide, SubstanceFormatRgba8, 0, 1};
    return 0;
}

SubstanceContext* substanceHandleGetParentContext(SubstanceHandle* handle) {
    return handle->context;
}

unsigned int substanceHandlePushSetInput(SubstanceHandle*, unsigned int, unsigned int, int, const void*,
                                         unsigned int) {
    return 0;
}

unsigned int substanceHandlePushOutputs(SubstanceHandle* handle, unsigned int flags,
                                        const unsigned int* outputUids, unsigned int count,
                                        void* jobUserData) {
    if (flags != SubstancePushOutputUids) return 0;
    const auto& known = handle->program.outputUids;
    for (unsigned int i = 0; i < count; ++i) {
        const auto found = std::find(known.begin(), known.end(), outputUids[i]);
        handle->wanted.emplace_back(static_cast<unsigned int>(found - known.begin()), jobUserData);
    }
    return 0;
}

unsigned int substanceHandleStart(SubstanceHandle* handle, unsigned int) {
    for (const auto& [index, job] : handle->wanted) handle->context->completed(handle, index, job);
    handle->wanted.clear();
    return 0;
}

unsigned int substanceHandleRelease(SubstanceHandle* handle) {
    delete handle;
    return 0;
}

} // extern "C"
