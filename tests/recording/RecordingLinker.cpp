// The linker's side of the double.
#include "tests/recording/RecordingState.h"

#include <tinyxml.h>

#include <algorithm>
#include <cstdlib>

using namespace recording;

namespace {

const std::string packagePrefix = "package:";
const std::string assemblyPrefix = "assembly:";

// A package, or the assembly that it was taken apart into.
struct Package {
    std::string tag; // empty: neither
    std::string descriptionXml;
};

Package recognise(const std::string& bytes) {
    const auto known = state().descriptions.find(bytes);
    if (known != state().descriptions.end()) return {bytes.substr(assemblyPrefix.size()), known->second};
    const size_t lineEnd = bytes.find('\n');
    if (bytes.rfind(packagePrefix, 0) != 0 || lineEnd == std::string::npos) return {};
    const std::string tag = bytes.substr(packagePrefix.size(), lineEnd - packagePrefix.size());
    return {tag, state().descriptions[assemblyPrefix + tag] = bytes.substr(lineEnd + 1)};
}

unsigned int number(const TiXmlElement& element, const char* attribute) {
    const char* const text = element.Attribute(attribute);
    return text ? static_cast<unsigned int>(std::strtoul(text, nullptr, 10)) : 0;
}

// Adds the inputs and outputs below the element and its siblings, in their order, and names their uids.
void addPorts(const TiXmlElement* element, const std::string& tag, Program& program) {
    for (; element; element = element->NextSiblingElement()) {
        const std::string kind = element->Value();
        if (kind != "output" && kind != "input") {
            addPorts(element->FirstChildElement(), tag, program);
            continue;
        }
        const unsigned int uid = number(*element, "uid");
        if (kind == "input")
            program.inputs.push_back({uid, static_cast<int>(number(*element, "type"))});
        else
            program.outputs.push_back(
                {uid, static_cast<int>(number(*element, "format")), number(*element, "mipmaps")});
        const char* const identifier = element->Attribute("identifier");
        state().uidNames[uid] = tag + "." + (identifier ? identifier : "");
    }
}

void addDescription(const Package& package, Program& program) {
    TiXmlDocument document;
    document.Parse((package.descriptionXml + "\n").c_str(), nullptr, TIXML_ENCODING_UTF8);
    addPorts(document.RootElement(), package.tag, program);
}

void removeInput(Program& program, unsigned int uid) {
    auto& inputs = program.inputs;
    inputs.erase(
        std::remove_if(inputs.begin(), inputs.end(), [uid](const auto& input) { return input.uid == uid; }),
        inputs.end());
}

} // namespace

extern "C" {

unsigned int substanceLinkerContextInit(SubstanceLinkerContext** context, unsigned int apiVersion,
                                        unsigned int engineId) {
    Call call(__func__);
    call.require(apiVersion == SubstanceLinkerApiVersion && engineId == SubstanceLinkerEngineId);
    *context = call.create<SubstanceLinkerContext>();
    call.print(*context, apiVersion, engineId);
    return call.end();
}

unsigned int substanceLinkerContextSetCallback(SubstanceLinkerContext* context, unsigned int kind,
                                               SubstanceLinkerCallback callback) {
    Call call(__func__, context, kind, std::string(callback ? "callback" : "null"));
    call.require(kind == SubstanceLinkerCallbackText || kind == SubstanceLinkerCallbackBytes);
    if (call.ok() && kind == SubstanceLinkerCallbackText)
        context->text = reinterpret_cast<SubstanceLinkerTextCallback>(callback);
    else if (call.ok())
        context->bytes = reinterpret_cast<SubstanceLinkerBytesCallback>(callback);
    return call.end();
}

unsigned int substanceLinkerContextRelease(SubstanceLinkerContext* context) {
    Call call(__func__, context);
    for (const auto& object : state().objects) {
        const auto* const handle = dynamic_cast<const SubstanceLinkerHandle*>(object.get());
        if (call.ok() && (object.get() == context || (handle && handle->context == context)))
            object->released = true;
    }
    return call.end();
}

unsigned int substanceLinkerHandleInit(SubstanceLinkerHandle** handle, SubstanceLinkerContext* context) {
    Call call(__func__);
    call.require(isAlive(context));
    *handle = call.create<SubstanceLinkerHandle>();
    if (*handle) (*handle)->context = context;
    call.print(*handle, context);
    return call.end();
}

unsigned int substanceLinkerHandlePushAssemblyMemory(SubstanceLinkerHandle* handle, const void* data,
                                                     size_t size) {
    Call call(__func__, handle, firstLine(data, size), size);
    if (!handle) return call.end();

    Package package;
    if (call.ok() && data) package = recognise(std::string(static_cast<const char*>(data), size));
    std::string assembly;
    if (package.tag.empty()) {
        call.require(false);
        handle->failed = true;
    } else {
        assembly = assemblyPrefix + package.tag;
        addDescription(package, handle->program);
        handle->label += (handle->label.empty() ? "linked:" : "+") + package.tag;
    }
    const unsigned int index = handle->pushes++;
    const auto text = handle->context->text;
    const auto bytes = handle->context->bytes;
    const std::vector<Delivery> deliveries = state().session.deliveries;
    const unsigned int status = call.end();

    const auto* const content = reinterpret_cast<const unsigned char*>(assembly.data());
    for (const Delivery delivery : deliveries) {
        if (delivery == Delivery::Text && text) text(handle, index, package.descriptionXml.c_str());
        if (delivery == Delivery::NullText && text) text(handle, index, nullptr);
        if (delivery == Delivery::Bytes && bytes) bytes(handle, index, content, assembly.size());
        if (delivery == Delivery::NullBytes && bytes) bytes(handle, index, nullptr, 0);
    }
    return status;
}

unsigned int substanceLinkerHandleSetOutputFormat(SubstanceLinkerHandle* handle, unsigned int outputUid,
                                                  int format, unsigned int mipmaps) {
    Call call(__func__, handle, Uid{outputUid}, format, mipmaps);
    bool found = false;
    if (call.ok())
        for (EngineOutput& output : handle->program.outputs) {
            if (output.uid != outputUid) continue;
            output = {outputUid, format, mipmaps};
            found = true;
        }
    call.require(found);
    return call.end();
}

unsigned int substanceLinkerConnectOutputToInput(SubstanceLinkerHandle* handle, unsigned int inputUid,
                                                 unsigned int outputUid) {
    Call call(__func__, handle, Uid{inputUid}, Uid{outputUid});
    if (call.ok()) removeInput(handle->program, inputUid);
    return call.end();
}

unsigned int substanceLinkerHandleSelectOutputs(SubstanceLinkerHandle* handle, unsigned int selection,
                                                unsigned int outputUid) {
    return Call(__func__, handle, selection, Uid{outputUid}).end();
}

unsigned int substanceLinkerFuseInputs(SubstanceLinkerHandle* handle, unsigned int firstUid,
                                       unsigned int secondUid) {
    Call call(__func__, handle, Uid{firstUid}, Uid{secondUid});
    if (call.ok()) removeInput(handle->program, secondUid);
    return call.end();
}

unsigned int substanceLinkerHandleLink(SubstanceLinkerHandle* handle, const unsigned char** data,
                                       size_t* size) {
    Call call(__func__, handle);
    *data = nullptr;
    *size = 0;
    call.require(handle && !handle->failed && handle->pushes > 0);
    if (!call.ok()) return call.end();
    // The number behind the printed line tells apart what was linked differently from the same assemblies.
    handle->linked = handle->label + "\n" + std::to_string(state().linked.size());
    state().linked[handle->linked] = handle->program;
    *data = reinterpret_cast<const unsigned char*>(handle->linked.data());
    *size = handle->linked.size();
    return call.end();
}

unsigned int substanceLinkerHandleRelease(SubstanceLinkerHandle* handle) {
    Call call(__func__, handle);
    if (call.ok()) {
        handle->released = true;
        std::string().swap(handle->linked); // who still reads it reads freed memory
    }
    return call.end();
}

} // extern "C"
