// The C interface of the linker. Objects belong to their context; exceptions end here.
#include "platform/linker.h"

#include "embedded/linker/LinkedProgram.h"
#include "embedded/program/Assembly.h"
#include "embedded/program/Package.h"

#include <algorithm>
#include <memory>
#include <new>
#include <optional>
#include <vector>

struct SubstanceLinkerHandle_ {
    SubstanceLinkerContext* context = nullptr;
    embedded::LinkedProgram program;
    unsigned int pushCount = 0;
    bool failed = false;
    std::vector<std::vector<unsigned char>> results; // all of them: each stays valid as long as the handle
};

struct SubstanceLinkerContext_ {
    SubstanceLinkerTextCallback textCallback = nullptr;
    SubstanceLinkerBytesCallback bytesCallback = nullptr;
    std::vector<std::unique_ptr<SubstanceLinkerHandle>> handles;
};

namespace {

using namespace embedded;

constexpr unsigned int success = 0;
constexpr unsigned int failure = 1;

// For the C interface: true is success, and an exception is a failure.
template <typename Function>
unsigned int guarded(Function function) noexcept {
    try {
        return function() ? success : failure;
    } catch (const std::bad_alloc&) {
        return SubstanceLinkerOutOfMemory;
    } catch (...) {
        return failure;
    }
}

// For what shapes a handle's program. Nobody looks at these results, so a step that was lost for want of
// memory makes the link fail, which is tried again, and not a program without the step, which would stay.
template <typename Function>
unsigned int shaped(SubstanceLinkerHandle& handle, Function function) noexcept {
    const unsigned int status = guarded(function);
    if (status == SubstanceLinkerOutOfMemory) handle.failed = true;
    return status;
}

struct Pushed {
    Package package; // the description of a bare assembly is empty
    Program program;
};

std::optional<Pushed> readPushed(const void* data, std::size_t size) {
    Pushed pushed;
    if (auto package = decodePackage(data, size)) {
        pushed.package = std::move(*package);
    } else if (data) {
        const auto* bytes = static_cast<const unsigned char*>(data);
        pushed.package.assembly.assign(bytes, bytes + size);
    }
    auto program = decodeAssembly(pushed.package.assembly.data(), pushed.package.assembly.size());
    if (!program) return std::nullopt;
    pushed.program = std::move(*program);
    return pushed;
}

void deliver(SubstanceLinkerHandle& handle, const Package& package) {
    static const unsigned char noBytes = 0;
    const unsigned int index = handle.pushCount++;
    const SubstanceLinkerContext& context = *handle.context;
    if (context.textCallback) context.textCallback(&handle, index, package.description.c_str());
    if (context.bytesCallback)
        context.bytesCallback(&handle, index, package.assembly.empty() ? &noBytes : package.assembly.data(),
                              package.assembly.size());
}

bool push(SubstanceLinkerHandle& handle, const void* data, std::size_t size) {
    static const Package unread;
    std::optional<Pushed> pushed;
    try {
        pushed = readPushed(data, size);
    } catch (const std::bad_alloc&) {
        deliver(handle, unread); // the callbacks hear of it all the same
        throw;
    }
    deliver(handle, pushed ? pushed->package : unread); // not a copy, which might fail and deliver nothing
    return pushed && handle.program.append(pushed->program);
}

} // namespace

extern "C" {

unsigned int substanceLinkerContextInit(SubstanceLinkerContext** context, unsigned int apiVersion,
                                        unsigned int engineId) {
    if (!context) return failure;
    *context = nullptr;
    if (apiVersion != SubstanceLinkerApiVersion || engineId != SubstanceLinkerEngineId) return failure;
    return guarded([&] {
        *context = std::make_unique<SubstanceLinkerContext>().release();
        return true;
    });
}

unsigned int substanceLinkerContextSetCallback(SubstanceLinkerContext* context, unsigned int kind,
                                               SubstanceLinkerCallback callback) {
    if (!context) return failure;
    switch (kind) {
    case SubstanceLinkerCallbackText:
        context->textCallback = reinterpret_cast<SubstanceLinkerTextCallback>(callback);
        return success;
    case SubstanceLinkerCallbackBytes:
        context->bytesCallback = reinterpret_cast<SubstanceLinkerBytesCallback>(callback);
        return success;
    default:
        return failure;
    }
}

unsigned int substanceLinkerContextRelease(SubstanceLinkerContext* context) {
    if (!context) return failure;
    delete context;
    return success;
}

unsigned int substanceLinkerHandleInit(SubstanceLinkerHandle** handle, SubstanceLinkerContext* context) {
    if (!handle) return failure;
    *handle = nullptr;
    if (!context) return failure;
    return guarded([&] {
        auto created = std::make_unique<SubstanceLinkerHandle>();
        created->context = context;
        context->handles.push_back(std::move(created));
        *handle = context->handles.back().get();
        return true;
    });
}

unsigned int substanceLinkerHandlePushAssemblyMemory(SubstanceLinkerHandle* handle, const void* data,
                                                     size_t size) {
    if (!handle) return failure;
    const unsigned int status = guarded([&] { return push(*handle, data, size); });
    if (status != success) handle->failed = true;
    return status;
}

unsigned int substanceLinkerHandleSetOutputFormat(SubstanceLinkerHandle* handle, unsigned int outputUid,
                                                  int format, unsigned int mipmaps) {
    if (!handle) return failure;
    return shaped(*handle, [&] { return handle->program.setOutputFormat(outputUid, format, mipmaps); });
}

unsigned int substanceLinkerConnectOutputToInput(SubstanceLinkerHandle* handle, unsigned int inputUid,
                                                 unsigned int outputUid) {
    if (!handle) return failure;
    return shaped(*handle, [&] { return handle->program.connect(inputUid, outputUid); });
}

// Every output is kept anyway: the engine computes what it is asked for.
unsigned int substanceLinkerHandleSelectOutputs(SubstanceLinkerHandle* handle, unsigned int /*selection*/,
                                                unsigned int outputUid) {
    if (!handle) return failure;
    return guarded([&] { return handle->program.hasOutput(outputUid); });
}

unsigned int substanceLinkerFuseInputs(SubstanceLinkerHandle* handle, unsigned int firstUid,
                                       unsigned int secondUid) {
    if (!handle) return failure;
    return shaped(*handle, [&] { return handle->program.fuse(firstUid, secondUid); });
}

unsigned int substanceLinkerHandleLink(SubstanceLinkerHandle* handle, const unsigned char** data,
                                       size_t* size) {
    if (data) *data = nullptr;
    if (size) *size = 0;
    if (!handle || !data || !size || handle->failed) return failure;
    return guarded([&] {
        const auto program = handle->program.result();
        if (!program) return false;
        handle->results.push_back(encodeAssembly(*program));
        *data = handle->results.back().data();
        *size = handle->results.back().size();
        return true;
    });
}

unsigned int substanceLinkerHandleRelease(SubstanceLinkerHandle* handle) {
    if (!handle) return failure;
    auto& handles = handle->context->handles;
    handles.erase(std::find_if(handles.begin(), handles.end(),
                               [&](const auto& owned) { return owned.get() == handle; }));
    return success;
}

} // extern "C"
