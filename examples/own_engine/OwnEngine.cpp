// An engine of one's own, behind the functions of platform/engine.h: the smallest that keeps its word.
//
// A real one computes on other threads or on a graphics card. What stays the same is said beside each
// function. As in the linker null pointers are refused, out-parameters are set first, and no exception
// leaves.
#include "OwnPicture.h"
#include "OwnProgram.h"
#include "platform/engine.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <utility>

// "Its memory lives until the last buffer is freed": whoever leaves last, the user, a handle or a buffer,
// ends it.
struct SubstanceContext_ {
    std::mutex mutex; // buffers come back on any thread, also while a run makes new ones
    SubstanceOutputCompletedCallback completed = nullptr;
    std::set<void*> buffers;
    unsigned int users = 1;
};

struct SubstanceHandle_ {
    // What one push asked for, with the values of that moment.
    struct Request {
        std::vector<unsigned int> outputs;
        own::Values values;
        void* jobUserData;
    };

    SubstanceContext* context;
    const own::Program program;
    own::Values values;
    std::vector<Request> queue{};
    std::map<unsigned int, SubstanceTexture> textures{}; // which nobody fetched yet
    bool isRunning = false;                              // when nobody may start or release it
};

namespace {

void enter(SubstanceContext& context) {
    const std::lock_guard<std::mutex> lock(context.mutex);
    ++context.users;
}

void leave(SubstanceContext* context) {
    std::unique_lock<std::mutex> lock(context->mutex);
    const bool isLast = --context->users == 0;
    lock.unlock();
    if (isLast) delete context;
}

// "Levels follow each other in the buffer, full size first, rows tightly packed, the first row at the top."
SubstanceTexture textureOf(const own::Picture& picture, int format, SubstanceContext& context) {
    auto buffer = std::make_unique<unsigned char[]>(picture.bytes.size());
    std::copy(picture.bytes.begin(), picture.bytes.end(), buffer.get());
    SubstanceTexture texture{};
    texture.level0Width = static_cast<unsigned short>(picture.width);
    texture.level0Height = static_cast<unsigned short>(picture.height);
    texture.pixelFormat = static_cast<unsigned char>(format);
    texture.mipmapCount = static_cast<unsigned char>(picture.levels);
    const std::lock_guard<std::mutex> lock(context.mutex);
    context.buffers.insert(buffer.get());
    ++context.users;
    texture.buffer = buffer.release();
    return texture;
}

// False for what is no buffer of this context.
bool freeBuffer(SubstanceContext* context, void* buffer) {
    {
        const std::lock_guard<std::mutex> lock(context->mutex);
        if (context->buffers.erase(buffer) == 0) return false;
    }
    delete[] static_cast<unsigned char*>(buffer);
    leave(context);
    return true;
}

void forgetTexture(SubstanceHandle& handle, unsigned int output) {
    const auto found = handle.textures.find(output);
    if (found == handle.textures.end()) return;
    freeBuffer(handle.context, found->second.buffer);
    handle.textures.erase(found);
}

// The last of a uid: of two packages with the same uids it is the one on top that is looked at.
bool findOutput(const own::Program& program, std::uint32_t uid, unsigned int& index) {
    for (std::size_t i = program.outputs.size(); i-- > 0;)
        if (program.outputs[i].uid == uid) {
            index = static_cast<unsigned int>(i);
            return true;
        }
    return false;
}

} // namespace

extern "C" {

unsigned int substanceContextInit(SubstanceContext** context, SubstanceDevice* device) {
    if (!context) return 1;
    *context = nullptr;
    if (!device) return 1; // this engine computes on the processor; another would use the word
    return own::guarded([&] { return (*context = new SubstanceContext) != nullptr; });
}

unsigned int substanceContextSetCallback(SubstanceContext* context, unsigned int kind,
                                         SubstanceCallback callback) {
    if (!context || kind != SubstanceCallbackOutputCompleted) return 1;
    context->completed = reinterpret_cast<SubstanceOutputCompletedCallback>(callback);
    return 0;
}

// The host may keep textures for longer than the library keeps its context: see leave().
unsigned int substanceContextRelease(SubstanceContext* context) {
    if (!context) return 1;
    leave(context);
    return 0;
}

// Results die on the host's threads, whatever the render thread is doing.
unsigned int substanceContextMemoryFree(SubstanceContext* context, void* buffer) {
    return context && buffer && freeBuffer(context, buffer) ? 0 : 1;
}

// Whatever the bytes are: own::read() lets nothing through that the functions below could trip over.
unsigned int substanceHandleInit(SubstanceHandle** handle, SubstanceContext* context,
                                 const unsigned char* assembly, size_t size, unsigned int flags) {
    if (!handle) return 1;
    *handle = nullptr;
    if (!context || flags != 0) return 1;
    return own::guarded([&] {
        std::optional<own::Program> program = own::read(assembly, size);
        if (!program) return false;
        own::Values defaults = own::defaultValues(*program);
        *handle = new SubstanceHandle{context, std::move(*program), std::move(defaults)};
        enter(*context);
        return true;
    });
}

unsigned int substanceHandleGetDesc(SubstanceHandle* handle, SubstanceDataDesc* desc) {
    if (!desc) return 1;
    *desc = {};
    if (!handle) return 1;
    desc->inputsCount = static_cast<unsigned int>(handle->program.inputs.size());
    desc->outputsCount = static_cast<unsigned int>(handle->program.outputs.size());
    return 0;
}

// From here the library learns which index stands for which uid.
unsigned int substanceHandleGetInputDesc(SubstanceHandle* handle, unsigned int index,
                                         SubstanceInputDesc* desc) {
    if (!desc) return 1;
    *desc = {};
    if (!handle || index >= handle->program.inputs.size()) return 1;
    *desc = {handle->program.inputs[index].uid, handle->program.inputs[index].type, index};
    return 0;
}

unsigned int substanceHandleGetOutputDesc(SubstanceHandle* handle, unsigned int index,
                                          SubstanceOutputDesc* desc) {
    if (!desc) return 1;
    *desc = {};
    if (!handle || index >= handle->program.outputs.size()) return 1;
    *desc = {handle->program.outputs[index].uid, handle->program.outputs[index].format};
    return 0;
}

// From here on the buffer is the caller's. A second fetch finds nothing, so that no buffer is freed twice.
unsigned int substanceHandleGetOutputs(SubstanceHandle* handle, unsigned int flags, unsigned int outputIndex,
                                       unsigned int count, SubstanceTexture* texture) {
    if (!texture) return 1;
    *texture = {};
    if (!handle || flags != 0 || count != 1) return 1;
    const auto found = handle->textures.find(outputIndex);
    if (found == handle->textures.end()) return 1;
    *texture = found->second;
    handle->textures.erase(found);
    return 0;
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
    if (type != handle->program.inputs[inputIndex].type) return 1;
    if (type == SubstanceInputImage) {
        const auto* const texture = static_cast<const SubstanceTextureInput*>(value);
        return own::guarded([&] {
            std::shared_ptr<const own::Image> image;
            if (texture && texture->pixels && !(image = own::readImage(*texture))) return false;
            handle->values.images[inputIndex] = std::move(image); // without pixels: no image any more
            return true;
        });
    }
    if (!value) return 1;
    std::memcpy(handle->values.numbers[inputIndex].data(), value,
                static_cast<std::size_t>(own::componentCount(type)) * sizeof(std::uint32_t));
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
        std::set<unsigned int> wanted;
        unsigned int index = 0;
        for (unsigned int i = 0; i < count; ++i)
            if (findOutput(handle->program, outputUids[i], index)) wanted.insert(index);
        handle->queue.push_back({{wanted.begin(), wanted.end()}, handle->values, jobUserData});
        return true;
    });
}

// The user data are jobs of the library, which die when this has returned: the queue is emptied first,
// whatever happens, and all callbacks are made from in here. An engine with threads of its own waits for them
// here.
unsigned int substanceHandleStart(SubstanceHandle* handle, unsigned int flags) {
    if (!handle || flags != 0 || handle->isRunning) return 1;
    handle->isRunning = true;
    const unsigned int status = own::guarded([&] {
        const auto requests = std::exchange(handle->queue, {});
        for (const auto& request : requests)
            for (const unsigned int output : request.outputs) {
                forgetTexture(*handle, output); // of an earlier run, that nobody came for
                handle->textures[output] =
                    textureOf(own::paint(handle->program, request.values, output),
                              handle->program.outputs[output].format, *handle->context);
                const auto completed = handle->context->completed;
                if (completed) completed(handle, output, request.jobUserData);
            }
        return true;
    });
    handle->isRunning = false;
    return status;
}

unsigned int substanceHandleRelease(SubstanceHandle* handle) {
    if (!handle || handle->isRunning) return 1;
    while (!handle->textures.empty()) forgetTexture(*handle, handle->textures.begin()->first);
    leave(handle->context);
    delete handle;
    return 0;
}

} // extern "C"
