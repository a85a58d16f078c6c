#include "conformance/Linking.h"

#include "conformance/Findings.h"
#include "conformance/Recorder.h"

namespace kvSubstance::conformance {

Linking::Linking(const Interface::Linker& linker)
    : linker_(linker) {
    expectSuccess(linker.contextInit(&context_, SubstanceLinkerApiVersion, SubstanceLinkerEngineId),
                  "substanceLinkerContextInit");
    linker.contextSetCallback(context_, SubstanceLinkerCallbackText, textRecorder());
    linker.contextSetCallback(context_, SubstanceLinkerCallbackBytes, bytesRecorder());
    try {
        handle_ = newHandle();
    } catch (...) {
        linker.contextRelease(context_);
        throw;
    }
}

Linking::~Linking() {
    linker_.handleRelease(handle_);
    linker_.contextRelease(context_);
}

SubstanceLinkerHandle* Linking::newHandle() {
    SubstanceLinkerHandle* handle = nullptr;
    expectSuccess(linker_.handleInit(&handle, context_), "substanceLinkerHandleInit");
    return handle;
}

unsigned int Linking::tryToPush(const std::string& bytes) {
    return linker_.push(handle_, bytes.data(), bytes.size());
}

void Linking::push(const std::string& bytes) {
    expectSuccess(tryToPush(bytes), "substanceLinkerHandlePushAssemblyMemory of what can be read");
}

std::string Linking::link() {
    const unsigned char* data = nullptr;
    size_t size = 0;
    expectSuccess(linker_.link(handle_, &data, &size), "substanceLinkerHandleLink");
    expect(data && size > 0, "linked bytes", "none");
    return {data, data + size};
}

void Linking::expectNoLink(const char* when) {
    const auto* data = reinterpret_cast<const unsigned char*>("");
    size_t size = 1;
    if (linker_.link(handle_, &data, &size) == 0)
        throw Broken{std::string("expected linking to be refused ") + when + ", saw 0"};
    expect(!data && size == 0, "a null pointer and size 0 from a refused link", "others");
}

} // namespace kvSubstance::conformance
