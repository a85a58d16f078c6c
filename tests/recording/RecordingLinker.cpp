// The linker's side of the double.
#include "tests/recording/RecordingState.h"

#include <tinyxml.h>

#include <algorithm>

using namespace recording;

namespace {

const std::string assemblyPrefix = "assembly:";

// The assembly that the bytes are, or that the package in them is taken apart into; empty when neither.
std::string assemblyOf(const std::string& bytes) {
    if (state().descriptions.count(bytes)) return bytes;
    const size_t lineEnd = bytes.find('\n');
    if (lineEnd == std::string::npos) return "";
    const std::string assembly = bytes.substr(0, lineEnd);
    state().descriptions[assembly] = bytes.substr(lineEnd + 1);
    return assembly;
}

int number(const TiXmlElement& element, const char* attribute) {
    int value = 0; // what it stays without the attribute
    element.QueryIntAttribute(attribute, &value);
    return value;
}

// Adds the inputs and outputs below the element and its siblings, in their order, and names their uids.
void addPorts(const TiXmlElement* element, const std::string& tag, Program& program) {
    for (; element; element = element->NextSiblingElement()) {
        const std::string kind = element->Value();
        if (kind != "output" && kind != "input") {
            addPorts(element->FirstChildElement(), tag, program);
            continue;
        }
        const auto uid = static_cast<unsigned int>(number(*element, "uid"));
        if (kind == "input")
            program.inputs.push_back({uid, number(*element, "type")});
        else
            program.outputs.push_back(
                {uid, number(*element, "format"), static_cast<unsigned int>(number(*element, "mipmaps"))});
        const char* const identifier = element->Attribute("identifier");
        state().uidNames[uid] = tag + "." + (identifier ? identifier : "");
    }
}

void removeInput(Program& program, unsigned int uid) {
    const auto isIt = [uid](const EngineInput& input) { return input.uid == uid; };
    auto& inputs = program.inputs;
    inputs.erase(std::remove_if(inputs.begin(), inputs.end(), isIt), inputs.end());
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
    return Call(__func__, context, kind).run([&] {
        if (kind == SubstanceLinkerCallbackText)
            context->text = reinterpret_cast<SubstanceLinkerTextCallback>(callback);
        else
            context->bytes = reinterpret_cast<SubstanceLinkerBytesCallback>(callback);
    });
}

unsigned int substanceLinkerContextRelease(SubstanceLinkerContext* context) {
    Call call(__func__, context);
    if (context)
        for (SubstanceLinkerHandle* const handle : context->handles) handle->released = true;
    return call.release(context);
}

unsigned int substanceLinkerHandleInit(SubstanceLinkerHandle** handle, SubstanceLinkerContext* context) {
    Call call(__func__);
    call.require(isAlive(context));
    *handle = call.create<SubstanceLinkerHandle>();
    call.print(*handle, context);
    return call.run([&] {
        (*handle)->context = context;
        context->handles.push_back(*handle);
    });
}

unsigned int substanceLinkerHandlePushAssemblyMemory(SubstanceLinkerHandle* handle, const void* data,
                                                     size_t size) {
    Call call(__func__, handle);
    call.print(firstLine(data, size), size);
    if (!handle) return call.end();

    std::string assembly, description;
    if (call.ok() && data) assembly = assemblyOf(std::string(static_cast<const char*>(data), size));
    call.require(!assembly.empty());
    if (call.ok()) {
        const std::string tag = assembly.substr(assemblyPrefix.size());
        description = state().descriptions[assembly];
        TiXmlDocument document;
        document.Parse((description + "\n").c_str(), nullptr, TIXML_ENCODING_UTF8);
        addPorts(document.RootElement(), tag, handle->program);
        handle->label += (handle->label.empty() ? "linked:" : "+") + tag;
    }
    handle->failed = handle->failed || !call.ok();
    const unsigned int index = handle->pushes++;
    const SubstanceLinkerContext& context = *handle->context;
    const unsigned int status = call.end();

    const auto* const bytes = reinterpret_cast<const unsigned char*>(assembly.data());
    const Inside callsBack(false);
    context.text(handle, index, description.c_str());
    context.bytes(handle, index, bytes, assembly.size());
    return status;
}

unsigned int substanceLinkerHandleSetOutputFormat(SubstanceLinkerHandle* handle, unsigned int outputUid,
                                                  int format, unsigned int mipmaps) {
    return Call(__func__, handle, Uid{outputUid}, format, mipmaps).run([&] {
        for (EngineOutput& output : handle->program.outputs)
            if (output.uid == outputUid) output = {outputUid, format, mipmaps};
    });
}

unsigned int substanceLinkerConnectOutputToInput(SubstanceLinkerHandle* handle, unsigned int inputUid,
                                                 unsigned int outputUid) {
    return Call(__func__, handle, Uid{inputUid}, Uid{outputUid}).run([&] {
        removeInput(handle->program, inputUid);
    });
}

unsigned int substanceLinkerHandleSelectOutputs(SubstanceLinkerHandle* handle, unsigned int selection,
                                                unsigned int outputUid) {
    return Call(__func__, handle, selection, Uid{outputUid}).end();
}

unsigned int substanceLinkerFuseInputs(SubstanceLinkerHandle* handle, unsigned int firstUid,
                                       unsigned int secondUid) {
    return Call(__func__, handle, Uid{firstUid}, Uid{secondUid}).run([&] {
        removeInput(handle->program, secondUid);
    });
}

unsigned int substanceLinkerHandleLink(SubstanceLinkerHandle* handle, const unsigned char** data,
                                       size_t* size) {
    *data = nullptr;
    *size = 0;
    Call call(__func__, handle);
    call.require(handle && !handle->failed);
    return call.run([&] {
        // The number behind the printed line tells apart what was linked differently from the same
        // assemblies.
        handle->linked = handle->label + "\n" + std::to_string(state().linked.size());
        state().linked[handle->linked] = handle->program;
        *data = reinterpret_cast<const unsigned char*>(handle->linked.data());
        *size = handle->linked.size();
    });
}

unsigned int substanceLinkerHandleRelease(SubstanceLinkerHandle* handle) {
    Call call(__func__, handle);
    if (handle) std::string().swap(handle->linked); // who still reads it reads freed memory
    return call.release(handle);
}

} // extern "C"
