// An engine of one's own, behind the functions of platform/engine.h: the smallest that keeps its word.
//
// A real one computes on other threads or on a graphics card. What stays the same is said beside each
// function. As in the linker null pointers are refused, out-parameters are set first, and no exception
// leaves.
#include "OwnProgram.h"

#include <algorithm>
#include <atomic>
#include <iterator>
#include <utility>
#include <vector>

// "Its memory lives until the last buffer is freed": the host may keep textures for longer than the library
// keeps its context, and buffers come back on any thread, also while a run makes new ones.
struct SubstanceContext_ {
    SubstanceOutputCompletedCallback completed = nullptr;
    std::atomic<unsigned int> users{1}; // whoever made it, and buffers; the last to leave ends it
};

struct SubstanceHandle_ {
    // What one push asked for, with the values of that moment.
    struct Request {
        own::Program program;
        own::Uids uids;
        void* jobUserData;
    };

    SubstanceContext* context;
    own::Program program; // a copy, with the values that were set last
    std::vector<Request> queue{};
    // By indices of outputs: what nobody fetched yet, or zeros.
    std::map<unsigned int, SubstanceTexture> textures{};
    bool isRunning = false; // when nobody may start or release it
};

static unsigned int leave(SubstanceContext* context) {
    if (--context->users == 0) delete context;
    return 0;
}

// This engine computes on the processor; another would use the device's word.
unsigned int substanceContextInit(SubstanceContext** context, SubstanceDevice* device) {
    if (!own::clear(context) || !device) return 1;
    return own::guarded([&] { *context = new SubstanceContext; });
}

unsigned int substanceContextSetCallback(SubstanceContext* context, unsigned int kind,
                                         SubstanceCallback callback) {
    if (!context || kind != SubstanceCallbackOutputCompleted) return 1;
    context->completed = reinterpret_cast<SubstanceOutputCompletedCallback>(callback);
    return 0;
}

unsigned int substanceContextRelease(SubstanceContext* context) {
    return context ? leave(context) : 1;
}

// Results die on the host's threads, whatever the render thread is doing.
unsigned int substanceContextMemoryFree(SubstanceContext* context, void* buffer) {
    if (!context || !buffer) return 1;
    delete[] static_cast<unsigned char*>(buffer);
    return leave(context);
}

// Whatever the bytes are: own::read() lets nothing through that the functions below could trip over.
unsigned int substanceHandleInit(SubstanceHandle** handle, SubstanceContext* context,
                                 const unsigned char* assembly, size_t size, unsigned int flags) {
    if (!own::clear(handle) || !context || flags != 0) return 1;
    return own::guarded([&] { *handle = new SubstanceHandle{context, own::read(assembly, size)}; });
}

unsigned int substanceHandleGetDesc(SubstanceHandle* handle, SubstanceDataDesc* desc) {
    if (!own::clear(desc) || !handle) return 1;
    desc->inputsCount = static_cast<unsigned int>(handle->program.inputs.size());
    desc->outputsCount = static_cast<unsigned int>(handle->program.outputs.size());
    return 0;
}

// From here the library learns which index stands for which uid.
unsigned int substanceHandleGetInputDesc(SubstanceHandle* handle, unsigned int index,
                                         SubstanceInputDesc* desc) {
    if (!own::clear(desc) || !handle || index >= handle->program.inputs.size()) return 1;
    const auto& [uid, input] = *std::next(handle->program.inputs.begin(), index);
    *desc = {uid, input.type, index};
    return 0;
}

unsigned int substanceHandleGetOutputDesc(SubstanceHandle* handle, unsigned int index,
                                          SubstanceOutputDesc* desc) {
    if (!own::clear(desc) || !handle || index >= handle->program.outputs.size()) return 1;
    const auto& [uid, output] = *std::next(handle->program.outputs.begin(), index);
    *desc = {uid, output.format};
    return 0;
}

// From here on the buffer is the caller's. A second fetch finds nothing, so that no buffer is freed twice.
unsigned int substanceHandleGetOutputs(SubstanceHandle* handle, unsigned int flags, unsigned int outputIndex,
                                       unsigned int count, SubstanceTexture* texture) {
    if (!own::clear(texture) || !handle || flags != 0 || count != 1) return 1;
    if (auto* const computed = own::find(handle->textures, outputIndex))
        *texture = std::exchange(*computed, {});
    return texture->buffer ? 0 : 1;
}

// The library frees buffers through it.
SubstanceContext* substanceHandleGetParentContext(SubstanceHandle* handle) {
    return handle ? handle->context : nullptr;
}

// Inputs go by index, outputs by uid. A hint (2048) only says that the value is likely to come again; an
// engine that computes ahead may use it, this one need not. The type is compared before the value is touched:
// the library's idea of an input may be an older one.
unsigned int substanceHandlePushSetInput(SubstanceHandle* handle, unsigned int flags, unsigned int inputIndex,
                                         int type, const void* value, unsigned int reserved) {
    if (!handle) return 1;
    if (flags == SubstancePushInputHint) return 0;
    if (flags != SubstancePushInput || reserved != 0 || inputIndex >= handle->program.inputs.size()) return 1;
    own::Input& input = std::next(handle->program.inputs.begin(), inputIndex)->second;
    if (type != input.type) return 1;
    if (type == SubstanceInputImage) {
        const auto* const image = static_cast<const SubstanceTextureInput*>(value);
        const auto* const texel = image ? static_cast<const unsigned char*>(image->pixels) : nullptr;
        const bool isEmpty = texel && (image->level0Width == 0 || image->level0Height == 0);
        if (texel && (isEmpty || !own::isFormat(image->pixelFormat) || image->channelsOrder != 0)) return 1;
        input.value =
            texel ? own::Value{texel[0] / 255.0f, texel[1] / 255.0f, texel[2] / 255.0f} : own::Value{};
        return 0;
    }
    if (!value) return 1;
    if (type <= SubstanceInputFloat4)
        std::copy_n(static_cast<const float*>(value), own::componentCount(type), input.value.begin());
    else
        std::copy_n(static_cast<const int*>(value), own::componentCount(type), input.value.begin());
    return 0;
}

// The library pushes each run twice, once for work and once as hints (2050): taken for work, every texture
// would arrive twice. Unknown uids are passed over, because outputs of a stack may have been linked away.
unsigned int substanceHandlePushOutputs(SubstanceHandle* handle, unsigned int flags,
                                        const unsigned int* outputUids, unsigned int count,
                                        void* jobUserData) {
    if (!handle) return 1;
    if (flags == SubstancePushOutputUidsHint) return 0;
    if (flags != SubstancePushOutputUids || (!outputUids && count > 0)) return 1;
    return own::guarded([&] {
        handle->queue.push_back({handle->program, {outputUids, outputUids + count}, jobUserData});
    });
}

// The user data are jobs of the library, which die when this has returned: the queue is emptied first,
// whatever happens, and all callbacks are made from in here. An engine with threads of its own waits for them
// here.
unsigned int substanceHandleStart(SubstanceHandle* handle, unsigned int flags) {
    if (!handle || flags != 0 || handle->isRunning) return 1;
    handle->isRunning = true;
    const auto requests = std::exchange(handle->queue, {});
    const unsigned int status = own::guarded([&] {
        for (const auto& [program, uids, jobUserData] : requests)
            for (unsigned int index = 0; index < program.outputs.size(); ++index) {
                const unsigned int uid = std::next(program.outputs.begin(), index)->first;
                if (uids.count(uid) == 0) continue;
                SubstanceTexture& texture = handle->textures[index]; // gives way, if nobody came for it
                substanceContextMemoryFree(handle->context, std::exchange(texture, {}).buffer);
                texture = own::paint(program, uid);
                ++handle->context->users;
                if (handle->context->completed) handle->context->completed(handle, index, jobUserData);
            }
    });
    handle->isRunning = false;
    return status;
}

unsigned int substanceHandleRelease(SubstanceHandle* handle) {
    if (!handle || handle->isRunning) return 1;
    for (const auto& [index, texture] : handle->textures)
        substanceContextMemoryFree(handle->context, texture.buffer);
    delete handle;
    return 0;
}
