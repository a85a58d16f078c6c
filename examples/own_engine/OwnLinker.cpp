// A linker of one's own, behind the functions of platform/linker.h: it makes one program of several.
//
// Three habits run through all functions, and the library relies on each: null pointers are refused and not
// followed; every out-parameter is set before anything can fail; no exception leaves. (C linkage comes with
// the declarations.)
#include "OwnProgram.h"

#include <list>

struct SubstanceLinkerHandle_ {
    SubstanceLinkerContext* context = nullptr;
    own::Program program{}; // all that was pushed, as one
    unsigned int pushes = 0;
    bool hasFailed = false;          // a push: linking then fails
    std::list<std::string> linked{}; // "borrowed until the handle is released": none moves or dies before
};

struct SubstanceLinkerContext_ {
    SubstanceLinkerTextCallback text = nullptr;
    SubstanceLinkerBytesCallback bytes = nullptr;
    // Owned here: handles that were never released die with their context. The library leaves those to it
    // that failed to link.
    std::list<SubstanceLinkerHandle> handles;
};

// The version and the id keep a library from meeting a linker that was made for another engine.
unsigned int substanceLinkerContextInit(SubstanceLinkerContext** context, unsigned int apiVersion,
                                        unsigned int engineId) {
    if (!own::clear(context)) return 1;
    if (apiVersion != SubstanceLinkerApiVersion || engineId != SubstanceLinkerEngineId) return 1;
    return own::guarded([&] { *context = new SubstanceLinkerContext; });
}

unsigned int substanceLinkerContextSetCallback(SubstanceLinkerContext* context, unsigned int kind,
                                               SubstanceLinkerCallback callback) {
    if (!context || (kind != SubstanceLinkerCallbackText && kind != SubstanceLinkerCallbackBytes)) return 1;
    if (kind == SubstanceLinkerCallbackText)
        context->text = reinterpret_cast<SubstanceLinkerTextCallback>(callback);
    else
        context->bytes = reinterpret_cast<SubstanceLinkerBytesCallback>(callback);
    return 0;
}

unsigned int substanceLinkerContextRelease(SubstanceLinkerContext* context) {
    delete context;
    return context ? 0 : 1;
}

unsigned int substanceLinkerHandleInit(SubstanceLinkerHandle** handle, SubstanceLinkerContext* context) {
    if (!own::clear(handle) || !context) return 1;
    return own::guarded([&] { *handle = &context->handles.emplace_back(SubstanceLinkerHandle{context}); });
}

// The library has no other way to read a package: it takes the text apart before it links anything, and keeps
// the assembly to push it again later. Both callbacks come before this returns, on this thread, also (empty)
// for data that cannot be read: the library waits for nothing. The caller's buffer is not needed any more
// afterwards, because the program is a copy.
unsigned int substanceLinkerHandlePushAssemblyMemory(SubstanceLinkerHandle* handle, const void* data,
                                                     size_t size) {
    if (!handle) return 1;
    const unsigned int index = handle->pushes++;
    std::string text, assembly;
    const unsigned int status = own::guarded([&] {
        const own::Program pushed = own::read(data, size, index);
        handle->program.inputs.insert(pushed.inputs.begin(), pushed.inputs.end());
        handle->program.outputs.insert(pushed.outputs.begin(), pushed.outputs.end());
        assembly = own::write(pushed);
        text.assign(static_cast<const char*>(data), size);
    });
    handle->hasFailed = handle->hasFailed || status != 0;
    const auto* const bytes = reinterpret_cast<const unsigned char*>(assembly.data());
    if (handle->context->text) handle->context->text(handle, index, text.c_str());
    if (handle->context->bytes) handle->context->bytes(handle, index, bytes, assembly.size());
    return status;
}

unsigned int substanceLinkerHandleSetOutputFormat(SubstanceLinkerHandle* handle, unsigned int outputUid,
                                                  int format, unsigned int mipmaps) {
    own::Output* const output = handle ? own::find(handle->program.outputs, outputUid) : nullptr;
    if (!output || !own::isFormat(format)) return 1;
    output->format = format;
    output->mipmaps = mipmaps;
    return 0;
}

// The input comes first. Colours add up in this engine, so to feed an input means: whatever alters the output
// alters all that the input did.
unsigned int substanceLinkerConnectOutputToInput(SubstanceLinkerHandle* handle, unsigned int inputUid,
                                                 unsigned int outputUid) {
    if (!handle) return 1;
    auto& inputs = handle->program.inputs;
    const own::Input* const input = own::find(inputs, inputUid);
    const own::Output* const output = own::find(handle->program.outputs, outputUid);
    if (!input || !output || input->type != SubstanceInputImage || input->push <= output->push) return 1;
    return own::guarded([&] {
        const own::Uids altered = input->alters;
        inputs.erase(inputUid);
        for (auto& [uid, other] : inputs)
            if (other.alters.count(outputUid) > 0) other.alters.insert(altered.begin(), altered.end());
    });
}

// Nothing to do: this linker keeps every output, and the library asks for the others too.
unsigned int substanceLinkerHandleSelectOutputs(SubstanceLinkerHandle* handle, unsigned int /*selection*/,
                                                unsigned int outputUid) {
    return handle && handle->program.outputs.count(outputUid) > 0 ? 0 : 1;
}

unsigned int substanceLinkerFuseInputs(SubstanceLinkerHandle* handle, unsigned int firstUid,
                                       unsigned int secondUid) {
    if (!handle) return 1;
    auto& inputs = handle->program.inputs;
    own::Input* const first = own::find(inputs, firstUid);
    const own::Input* const second = own::find(inputs, secondUid);
    if (!first || !second || first == second || first->type != second->type) return 1;
    return own::guarded([&] {
        first->alters.insert(second->alters.begin(), second->alters.end());
        inputs.erase(secondUid);
    });
}

unsigned int substanceLinkerHandleLink(SubstanceLinkerHandle* handle, const unsigned char** data,
                                       size_t* size) {
    const bool hasData = own::clear(data), hasSize = own::clear(size); // both, whatever the first says
    if (!hasData || !hasSize || !handle || handle->hasFailed || handle->pushes == 0) return 1;
    return own::guarded([&] {
        const std::string& linked = handle->linked.emplace_back(own::write(handle->program));
        own::read(linked.data(), linked.size()); // throws what the engine would
        *data = reinterpret_cast<const unsigned char*>(linked.data());
        *size = linked.size();
    });
}

unsigned int substanceLinkerHandleRelease(SubstanceLinkerHandle* handle) {
    if (!handle) return 1;
    handle->context->handles.remove_if([&](const SubstanceLinkerHandle& each) { return &each == handle; });
    return 0;
}
