// The linker's side of the double.
#include "tests/recording/RecordingState.h"

#include <algorithm>

using namespace recording;

namespace {

const std::string packagePrefix = "package:";
const std::string assemblyPrefix = "assembly:";

// What the bytes are, a package or an assembly delivered before; with an empty tag when neither.
Package recognise(const std::string& bytes) {
    const auto known = state().assemblies.find(bytes);
    if (known != state().assemblies.end()) return known->second;
    const size_t lineEnd = bytes.find('\n');
    if (bytes.compare(0, packagePrefix.size(), packagePrefix) != 0 || lineEnd == std::string::npos) return {};
    return {bytes.substr(packagePrefix.size(), lineEnd - packagePrefix.size()), bytes.substr(lineEnd + 1)};
}

template <class T>
void removeUid(std::vector<T>& ports, unsigned int uid) {
    ports.erase(std::remove_if(ports.begin(), ports.end(), [&](const T& port) { return port.uid == uid; }),
                ports.end());
}

// Two uids, then the call's end; what follows from them is the caller's.
SubstanceLinkerHandle* beginUidPair(Call& call, SubstanceLinkerHandle* handle, const std::string& first,
                                    unsigned int second) {
    SubstanceLinkerHandle* const live = call.object(handle);
    call.print(first, state().uidName(second));
    return call.ok() ? live : nullptr;
}

} // namespace

extern "C" {

unsigned int substanceLinkerContextInit(SubstanceLinkerContext** context, unsigned int apiVersion,
                                        unsigned int engineId) {
    Call call("substanceLinkerContextInit");
    if (apiVersion != SubstanceLinkerApiVersion || engineId != SubstanceLinkerEngineId) call.refuse();
    *context = call.create<SubstanceLinkerContext>();
    call.print(state().name("linker", *context), apiVersion, engineId);
    return call.end();
}

unsigned int substanceLinkerContextSetCallback(SubstanceLinkerContext* context, unsigned int kind,
                                               SubstanceLinkerCallback callback) {
    Call call("substanceLinkerContextSetCallback");
    SubstanceLinkerContext* const live = call.object(context);
    call.print(kind, callback ? "callback" : "null");
    if (kind != SubstanceLinkerCallbackText && kind != SubstanceLinkerCallbackBytes) call.refuse();
    if (call.ok() && kind == SubstanceLinkerCallbackText)
        live->text = reinterpret_cast<SubstanceLinkerTextCallback>(callback);
    else if (call.ok())
        live->bytes = reinterpret_cast<SubstanceLinkerBytesCallback>(callback);
    return call.end();
}

unsigned int substanceLinkerContextRelease(SubstanceLinkerContext* context) {
    Call call("substanceLinkerContextRelease");
    SubstanceLinkerContext* const live = call.object(context);
    if (call.ok()) {
        live->released = true;
        for (const auto& handle : state().linkerHandles)
            if (handle->context == live) handle->released = true;
    }
    return call.end();
}

unsigned int substanceLinkerHandleInit(SubstanceLinkerHandle** handle, SubstanceLinkerContext* context) {
    Call call("substanceLinkerHandleInit");
    const std::string contextName = state().name("linker", context);
    SubstanceLinkerContext* const known = state().linkerContexts.find(context);
    if (!known || known->released) call.refuse();
    *handle = call.create<SubstanceLinkerHandle>();
    if (*handle) (*handle)->context = known;
    call.print(state().name("link", *handle), contextName);
    return call.end();
}

unsigned int substanceLinkerHandlePushAssemblyMemory(SubstanceLinkerHandle* handle, const void* data,
                                                     size_t size) {
    Call call("substanceLinkerHandlePushAssemblyMemory");
    SubstanceLinkerHandle* const live = call.object(handle);
    call.print(show(data, size), size);
    if (!live) return call.end();

    Package package;
    if (call.ok() && data) package = recognise(std::string(static_cast<const char*>(data), size));
    std::string assembly;
    if (package.tag.empty()) {
        call.refuse();
        live->failed = true;
    } else {
        assembly = assemblyPrefix + package.tag;
        state().assemblies[assembly] = package;
        const Program program = readDescription(package);
        live->program.inputs.insert(live->program.inputs.end(), program.inputs.begin(), program.inputs.end());
        live->program.outputs.insert(live->program.outputs.end(), program.outputs.begin(),
                                     program.outputs.end());
        live->label += (live->label.empty() ? "linked:" : "+") + package.tag;
    }
    const unsigned int index = live->pushes++;
    const SubstanceLinkerContext callbacks = *live->context;
    const std::vector<Delivery> deliveries = state().script.deliveries;
    const unsigned int status = call.end();

    const char* const text = package.descriptionXml.c_str();
    const auto* const bytes = reinterpret_cast<const unsigned char*>(assembly.data());
    for (const Delivery delivery : deliveries) {
        const bool isNull = delivery == Delivery::NullText || delivery == Delivery::NullBytes;
        if (delivery == Delivery::Text || delivery == Delivery::NullText) {
            if (callbacks.text) callbacks.text(handle, index, isNull ? nullptr : text);
        } else if (callbacks.bytes) {
            callbacks.bytes(handle, index, isNull ? nullptr : bytes, isNull ? 0 : assembly.size());
        }
    }
    return status;
}

unsigned int substanceLinkerHandleSetOutputFormat(SubstanceLinkerHandle* handle, unsigned int outputUid,
                                                  int format, unsigned int mipmaps) {
    Call call("substanceLinkerHandleSetOutputFormat");
    SubstanceLinkerHandle* const live = call.object(handle);
    call.print(state().uidName(outputUid), format, mipmaps);
    if (!call.ok()) return call.end();
    bool found = false;
    for (EngineOutput& output : live->program.outputs) {
        if (output.uid != outputUid) continue;
        output = {outputUid, format, mipmaps};
        found = true;
    }
    if (!found) call.refuse();
    return call.end();
}

unsigned int substanceLinkerConnectOutputToInput(SubstanceLinkerHandle* handle, unsigned int inputUid,
                                                 unsigned int outputUid) {
    Call call("substanceLinkerConnectOutputToInput");
    if (auto* const live = beginUidPair(call, handle, state().uidName(inputUid), outputUid))
        removeUid(live->program.inputs, inputUid);
    return call.end();
}

unsigned int substanceLinkerHandleSelectOutputs(SubstanceLinkerHandle* handle, unsigned int selection,
                                                unsigned int outputUid) {
    Call call("substanceLinkerHandleSelectOutputs");
    beginUidPair(call, handle, std::to_string(selection), outputUid);
    return call.end();
}

unsigned int substanceLinkerFuseInputs(SubstanceLinkerHandle* handle, unsigned int firstUid,
                                       unsigned int secondUid) {
    Call call("substanceLinkerFuseInputs");
    if (auto* const live = beginUidPair(call, handle, state().uidName(firstUid), secondUid))
        removeUid(live->program.inputs, secondUid);
    return call.end();
}

unsigned int substanceLinkerHandleLink(SubstanceLinkerHandle* handle, const unsigned char** data,
                                       size_t* size) {
    Call call("substanceLinkerHandleLink");
    SubstanceLinkerHandle* const live = call.object(handle);
    *data = nullptr;
    *size = 0;
    if (live && (live->failed || live->pushes == 0)) call.refuse();
    if (!call.ok()) return call.end();
    // The number behind the printed line tells apart what was linked differently from the same assemblies.
    live->linked = live->label + "\n" + std::to_string(state().linked.size());
    state().linked[live->linked] = live->program;
    *data = reinterpret_cast<const unsigned char*>(live->linked.data());
    *size = live->linked.size();
    return call.end();
}

unsigned int substanceLinkerHandleRelease(SubstanceLinkerHandle* handle) {
    Call call("substanceLinkerHandleRelease");
    if (SubstanceLinkerHandle* const live = call.object(handle)) {
        live->released = call.ok();
        if (live->released) std::string().swap(live->linked);
    }
    return call.end();
}

} // extern "C"
