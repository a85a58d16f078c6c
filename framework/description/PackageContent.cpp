#include "framework/description/PackageContent.h"

#include "platform/linker.h"
#include "support/ProcessEnd.h"

#include <boost/thread/mutex.hpp>

#include <new>

namespace SubstanceAir {

namespace {

// What the linker delivered last. The buffers are the process's, on purpose, because the linker's callbacks
// carry no user data: a package that the linker delivers nothing for reads the content of the one before.
struct LinkerAnswer {
    boost::mutex mutex; // held from before the linker is called until the content has been copied
    PackageContent content;
    bool isOutOfMemory = false; // the content is not what the linker delivered, or meant to
};

// Never destroyed: hosts build packages in static objects too, up to the end of the process.
LinkerAnswer& linkerAnswer() {
    static LinkerAnswer& answer = *new LinkerAnswer;
    return answer;
}

// No exception may pass through the linker: memory that runs out is remembered.
extern "C" void keepDescription(SubstanceLinkerHandle*, unsigned int, const char* text) {
    auto& description = linkerAnswer().content.description;
    description.reset();
    try {
        description = std::make_shared<support::GuardedText>(text);
    } catch (...) {
        linkerAnswer().isOutOfMemory = true;
    }
}

extern "C" void keepAssembly(SubstanceLinkerHandle*, unsigned int, const unsigned char* bytes, size_t count) {
    std::vector<char>& assembly = linkerAnswer().content.assembly;
    assembly.clear();
    if (!bytes) return;
    try {
        assembly.assign(bytes, bytes + count);
    } catch (...) {
        linkerAnswer().isOutOfMemory = true;
    }
}

// Other results are not looked at: a package that could not be read shows in what was delivered.
void noteMemory(unsigned int status) {
    if (status == SubstanceLinkerOutOfMemory) linkerAnswer().isOutOfMemory = true;
}

void pushThroughLinker(const void* data, size_t size) {
    SubstanceLinkerContext* context = nullptr;
    noteMemory(substanceLinkerContextInit(&context, SubstanceLinkerApiVersion, SubstanceLinkerEngineId));
    noteMemory(substanceLinkerContextSetCallback(
        context, SubstanceLinkerCallbackText, reinterpret_cast<SubstanceLinkerCallback>(&keepDescription)));
    noteMemory(substanceLinkerContextSetCallback(context, SubstanceLinkerCallbackBytes,
                                                 reinterpret_cast<SubstanceLinkerCallback>(&keepAssembly)));

    SubstanceLinkerHandle* handle = nullptr;
    noteMemory(substanceLinkerHandleInit(&handle, context));
    noteMemory(substanceLinkerHandlePushAssemblyMemory(handle, data, size));
    substanceLinkerHandleRelease(handle);
    substanceLinkerContextRelease(context);
}

} // namespace

PackageContent splitPackage(const void* data, size_t size) {
    LinkerAnswer& answer = linkerAnswer();
    boost::unique_lock<boost::mutex> lock(answer.mutex, boost::defer_lock);
    if (!support::isProcessEnding()) lock.lock();
    answer.isOutOfMemory = false;
    pushThroughLinker(data, size);
    if (answer.isOutOfMemory) throw std::bad_alloc();
    return answer.content;
}

} // namespace SubstanceAir
