// A linker that delivers whatever is pushed as a description text, as it is, beside a fixed assembly, and
// that links nothing. It stands in the place of the embedded one where the text is what is to be tried.
#include "platform/linker.h"

#include <array>
#include <memory>
#include <string>
#include <vector>

struct SubstanceLinkerHandle_ {
    const SubstanceLinkerContext* context;
    unsigned int pushes = 0;
};

struct SubstanceLinkerContext_ {
    SubstanceLinkerTextCallback text = nullptr;
    SubstanceLinkerBytesCallback bytes = nullptr;
};

extern "C" {

unsigned int substanceLinkerContextInit(SubstanceLinkerContext** context, unsigned int, unsigned int) {
    *context = std::make_unique<SubstanceLinkerContext>().release();
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

unsigned int substanceLinkerHandlePushAssemblyMemory(SubstanceLinkerHandle* handle, const void* data,
                                                     size_t size) {
    const std::string text(static_cast<const char*>(data), size);
    const std::array<unsigned char, 4> assembly = {1, 2, 3, 4};
    const unsigned int index = handle->pushes++;
    if (handle->context->text) handle->context->text(handle, index, text.c_str());
    if (handle->context->bytes) handle->context->bytes(handle, index, assembly.data(), assembly.size());
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

unsigned int substanceLinkerHandleLink(SubstanceLinkerHandle*, const unsigned char** data, size_t* size) {
    *data = nullptr;
    *size = 0;
    return 1;
}

unsigned int substanceLinkerHandleRelease(SubstanceLinkerHandle* handle) {
    delete handle;
    return 0;
}

} // extern "C"
