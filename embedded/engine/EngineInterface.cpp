// The C functions of platform/engine.h over the engine's objects. No exception crosses them.
#include "embedded/engine/Context.h"
#include "embedded/engine/Handle.h"
#include "embedded/program/Assembly.h"
#include "platform/engine.h"

#include <exception>
#include <utility>

namespace {

constexpr unsigned int success = 0;
constexpr unsigned int failure = 1;

unsigned int statusOf(bool done) {
    return done ? success : failure;
}

// The function's status, or failure when it throws, for want of memory as a rule.
template <typename Function>
unsigned int guarded(Function function) noexcept {
    try {
        return function();
    } catch (...) {
        return failure;
    }
}

// Gives the context back its handle if there comes to be none.
class Attachment {
public:
    explicit Attachment(SubstanceContext& context)
        : context_(context)
        , pool_(context.attachHandle()) {}
    ~Attachment() {
        const bool attached = pool_ != nullptr;
        pool_.reset();
        if (attached && !kept_) context_.detachHandle();
    }
    Attachment(const Attachment&) = delete;
    Attachment& operator=(const Attachment&) = delete;

    const std::shared_ptr<embedded::WorkerPool>& pool() const { return pool_; }
    void keep() { kept_ = true; }

private:
    SubstanceContext& context_;
    std::shared_ptr<embedded::WorkerPool> pool_;
    bool kept_ = false;
};

} // namespace

unsigned int substanceContextInit(SubstanceContext** context, SubstanceDevice* device) {
    if (!context) return failure;
    *context = nullptr;
    if (!device) return failure;
    return guarded([&] {
        *context = SubstanceContext_::create();
        return success;
    });
}

unsigned int substanceContextSetCallback(SubstanceContext* context, unsigned int kind,
                                         SubstanceCallback callback) {
    if (!context || kind != SubstanceCallbackOutputCompleted) return failure;
    return statusOf(context->setCallback(reinterpret_cast<SubstanceOutputCompletedCallback>(callback)));
}

unsigned int substanceContextRelease(SubstanceContext* context) {
    return statusOf(context && context->release());
}

unsigned int substanceContextMemoryFree(SubstanceContext* context, void* buffer) {
    return statusOf(context && buffer && context->freeBuffer(buffer));
}

unsigned int substanceHandleInit(SubstanceHandle** handle, SubstanceContext* context,
                                 const unsigned char* assembly, size_t size, unsigned int flags) {
    if (!handle) return failure;
    *handle = nullptr;
    if (!context || !assembly || flags != 0) return failure;
    return guarded([&] {
        auto program = embedded::decodeAssembly(assembly, size);
        if (!program) return failure;
        Attachment attachment(*context);
        if (!attachment.pool()) return failure;
        *handle = new SubstanceHandle_(*context, attachment.pool(), std::move(*program));
        attachment.keep();
        return success;
    });
}

unsigned int substanceHandleGetDesc(SubstanceHandle* handle, SubstanceDataDesc* desc) {
    if (!desc) return failure;
    *desc = {};
    if (!handle) return failure;
    desc->inputsCount = static_cast<unsigned int>(handle->program().inputs.size());
    desc->outputsCount = static_cast<unsigned int>(handle->program().outputs.size());
    return success;
}

unsigned int substanceHandleGetInputDesc(SubstanceHandle* handle, unsigned int index,
                                         SubstanceInputDesc* desc) {
    if (!desc) return failure;
    *desc = {};
    if (!handle || index >= handle->program().inputs.size()) return failure;
    const embedded::ProgramInput& input = handle->program().inputs[index];
    *desc = {input.uid, static_cast<int>(input.type), index};
    return success;
}

unsigned int substanceHandleGetOutputDesc(SubstanceHandle* handle, unsigned int index,
                                          SubstanceOutputDesc* desc) {
    if (!desc) return failure;
    *desc = {};
    if (!handle || index >= handle->program().outputs.size()) return failure;
    const embedded::ProgramOutput& output = handle->program().outputs[index];
    *desc = {output.uid, output.format};
    return success;
}

unsigned int substanceHandleGetOutputs(SubstanceHandle* handle, unsigned int flags, unsigned int outputIndex,
                                       unsigned int count, SubstanceTexture* texture) {
    if (!texture) return failure;
    *texture = {};
    if (!handle || flags != 0 || count != 1) return failure;
    const auto taken = handle->takeTexture(outputIndex);
    if (taken) *texture = *taken;
    return statusOf(taken.has_value());
}

SubstanceContext* substanceHandleGetParentContext(SubstanceHandle* handle) {
    return handle ? &handle->context() : nullptr;
}

unsigned int substanceHandlePushSetInput(SubstanceHandle* handle, unsigned int flags, unsigned int inputIndex,
                                         int type, const void* value, unsigned int reserved) {
    if (!handle) return failure;
    if (flags == SubstancePushInputHint) return success;
    if (flags != SubstancePushInput || reserved != 0) return failure;
    return guarded([&] { return statusOf(handle->setInput(inputIndex, type, value)); });
}

unsigned int substanceHandlePushOutputs(SubstanceHandle* handle, unsigned int flags,
                                        const unsigned int* outputUids, unsigned int count,
                                        void* jobUserData) {
    if (!handle) return failure;
    if (flags == SubstancePushOutputUidsHint) return success;
    if (flags != SubstancePushOutputUids || (!outputUids && count > 0)) return failure;
    return guarded([&] {
        handle->pushOutputs(outputUids, count, jobUserData);
        return success;
    });
}

unsigned int substanceHandleStart(SubstanceHandle* handle, unsigned int flags) {
    if (!handle || flags != 0 || handle->running()) return failure;
    return guarded([&] {
        handle->start();
        return success;
    });
}

unsigned int substanceHandleRelease(SubstanceHandle* handle) {
    if (!handle || handle->running()) return failure;
    SubstanceContext& context = handle->context();
    delete handle;
    context.detachHandle();
    return success;
}
