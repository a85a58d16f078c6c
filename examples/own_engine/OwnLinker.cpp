// A linker of one's own, behind the functions of platform/linker.h.
//
// A package is a description text and nothing else: the program follows from what the text says about inputs,
// outputs and what alters what. So a package is written with an editor; see stripes.xml and varnish.xml.
//
// Three habits run through all functions, and the library relies on each: null pointers are refused and not
// followed; every out-parameter is set before anything can fail; no exception leaves.
#include "OwnDescription.h"
#include "OwnProgram.h"
#include "platform/linker.h"

#include <algorithm>
#include <list>
#include <utility>

struct SubstanceLinkerHandle_ {
    SubstanceLinkerContext* context = nullptr;
    own::Program program; // all that was pushed, as one
    unsigned int pushes = 0;
    bool failed = false;           // a push: linking then fails
    std::list<std::string> linked; // "borrowed until the handle is released": none moves or dies before
};

struct SubstanceLinkerContext_ {
    SubstanceLinkerTextCallback text = nullptr;
    SubstanceLinkerBytesCallback bytes = nullptr;
    // Owned here: handles that were never released die with their context. The library leaves those to it
    // that failed to link.
    std::list<SubstanceLinkerHandle> handles;
};

namespace {

using own::Input;
using own::Output;
using own::Program;

// Behind what was pushed before. The order of pushes is the order of indices.
bool append(Program& whole, const Program& part, unsigned int push) {
    if (whole.inputs.size() + part.inputs.size() > own::maxPorts) return false;
    if (whole.outputs.size() + part.outputs.size() > own::maxPorts) return false;
    const int inputs = static_cast<int>(whole.inputs.size()),
              outputs = static_cast<int>(whole.outputs.size());
    for (Input input : part.inputs) {
        input.push = push;
        whole.inputs.push_back(input);
    }
    for (Output output : part.outputs) {
        output.push = push;
        for (int& source : output.sources) source += source < 0 ? -outputs : inputs;
        whole.outputs.push_back(std::move(output));
    }
    return true;
}

// What read the input reads the other source, and the input is gone.
void replaceInput(Program& program, int input, int source) {
    program.inputs.erase(program.inputs.begin() + input);
    for (Output& output : program.outputs)
        for (int& each : output.sources) {
            if (each == input) each = source;
            if (each > input) --each;
        }
}

// The first from there on that meets the condition; the size when there is none.
template <typename Ports, typename Condition>
int find(const Ports& ports, const Condition& condition, int from = 0) {
    return static_cast<int>(std::find_if(ports.begin() + from, ports.end(), condition) - ports.begin());
}

bool connect(Program& program, std::uint32_t inputUid, std::uint32_t outputUid) {
    const int output = find(program.outputs, [&](const Output& each) { return each.uid == outputUid; });
    if (output == static_cast<int>(program.outputs.size())) return false;
    const int input = find(program.inputs, [&](const Input& each) {
        return each.uid == inputUid && each.type == SubstanceInputImage &&
               each.push > program.outputs[static_cast<std::size_t>(output)].push;
    });
    if (input == static_cast<int>(program.inputs.size())) return false;
    // After a fusion earlier outputs may read the input too; to feed it would make a circle.
    const int firstReader = find(program.outputs, [&](const Output& each) {
        return std::count(each.sources.begin(), each.sources.end(), input) > 0;
    });
    if (firstReader <= output) return false;
    replaceInput(program, input, -1 - output);
    return true;
}

bool fuse(Program& program, std::uint32_t firstUid, std::uint32_t secondUid) {
    const int count = static_cast<int>(program.inputs.size());
    const int first = find(program.inputs, [&](const Input& each) { return each.uid == firstUid; });
    if (first == count) return false;
    const auto isSecond = [&](const Input& each) { return each.uid == secondUid; };
    int second = find(program.inputs, isSecond, first + 1);
    if (second == count) second = find(program.inputs, isSecond);
    if (second == count || second == first) return false;
    if (program.inputs[static_cast<std::size_t>(first)].type !=
        program.inputs[static_cast<std::size_t>(second)].type)
        return false;
    replaceInput(program, second, first);
    return true;
}

} // namespace

extern "C" {

// The version and the id keep a library from meeting a linker that was made for another engine.
unsigned int substanceLinkerContextInit(SubstanceLinkerContext** context, unsigned int apiVersion,
                                        unsigned int engineId) {
    if (!context) return 1;
    *context = nullptr;
    if (apiVersion != SubstanceLinkerApiVersion || engineId != SubstanceLinkerEngineId) return 1;
    return own::guarded([&] { return (*context = new SubstanceLinkerContext) != nullptr; });
}

unsigned int substanceLinkerContextSetCallback(SubstanceLinkerContext* context, unsigned int kind,
                                               SubstanceLinkerCallback callback) {
    if (!context) return 1;
    if (kind == SubstanceLinkerCallbackText)
        context->text = reinterpret_cast<SubstanceLinkerTextCallback>(callback);
    else if (kind == SubstanceLinkerCallbackBytes)
        context->bytes = reinterpret_cast<SubstanceLinkerBytesCallback>(callback);
    else
        return 1;
    return 0;
}

unsigned int substanceLinkerContextRelease(SubstanceLinkerContext* context) {
    delete context;
    return context ? 0 : 1;
}

unsigned int substanceLinkerHandleInit(SubstanceLinkerHandle** handle, SubstanceLinkerContext* context) {
    if (!handle) return 1;
    *handle = nullptr;
    if (!context) return 1;
    return own::guarded([&] {
        *handle = &context->handles.emplace_back();
        (*handle)->context = context;
        return true;
    });
}

// The library has no other way to read a package: it takes the text apart before it links anything, and keeps
// the assembly to push it again later. Both callbacks come before this returns, on this thread, also (empty)
// for data that cannot be read: the library waits for nothing. The caller's buffer is not needed any more
// afterwards, because the program is a copy.
unsigned int substanceLinkerHandlePushAssemblyMemory(SubstanceLinkerHandle* handle, const void* data,
                                                     size_t size) {
    if (!handle) return 1;
    const unsigned int status = own::guarded([&] {
        std::string text, assembly;
        std::optional<Program> program = own::read(data, size); // delivered by an earlier push
        if (!program && data) {
            text.assign(static_cast<const char*>(data), size);
            program = own::readDescription(text);
        }
        const unsigned int index = handle->pushes++;
        const bool isRead = program && append(handle->program, *program, index);
        if (isRead) assembly = own::write(*program);
        if (handle->context->text) handle->context->text(handle, index, isRead ? text.c_str() : "");
        if (handle->context->bytes)
            handle->context->bytes(handle, index, reinterpret_cast<const unsigned char*>(assembly.data()),
                                   assembly.size());
        return isRead;
    });
    handle->failed = handle->failed || status != 0;
    return status;
}

unsigned int substanceLinkerHandleSetOutputFormat(SubstanceLinkerHandle* handle, unsigned int outputUid,
                                                  int format, unsigned int mipmaps) {
    if (!handle || !own::isFormat(format)) return 1;
    unsigned int status = 1;
    for (Output& output : handle->program.outputs) {
        if (output.uid != outputUid) continue;
        output.format = format;
        output.mipmaps = mipmaps;
        status = 0;
    }
    return status;
}

// The input comes first.
unsigned int substanceLinkerConnectOutputToInput(SubstanceLinkerHandle* handle, unsigned int inputUid,
                                                 unsigned int outputUid) {
    return handle && connect(handle->program, inputUid, outputUid) ? 0 : 1;
}

// Nothing to do: this linker keeps every output, and the library asks for the others too.
unsigned int substanceLinkerHandleSelectOutputs(SubstanceLinkerHandle* handle, unsigned int /*selection*/,
                                                unsigned int outputUid) {
    if (!handle) return 1;
    const auto& outputs = handle->program.outputs;
    const auto isIt = [&](const Output& each) { return each.uid == outputUid; };
    return std::any_of(outputs.begin(), outputs.end(), isIt) ? 0 : 1;
}

unsigned int substanceLinkerFuseInputs(SubstanceLinkerHandle* handle, unsigned int firstUid,
                                       unsigned int secondUid) {
    return handle && fuse(handle->program, firstUid, secondUid) ? 0 : 1;
}

unsigned int substanceLinkerHandleLink(SubstanceLinkerHandle* handle, const unsigned char** data,
                                       size_t* size) {
    if (data) *data = nullptr;
    if (size) *size = 0;
    if (!handle || !data || !size || handle->failed || handle->pushes == 0) return 1;
    return own::guarded([&] {
        // A package over itself: inputs of one uid are one, because the library sets each uid once.
        Program program = handle->program;
        for (int last = static_cast<int>(program.inputs.size()) - 1; last > 0; --last) {
            const Input& input = program.inputs[static_cast<std::size_t>(last)];
            const int first = find(program.inputs, [&](const Input& each) {
                return each.uid == input.uid && each.type == input.type;
            });
            if (first < last) replaceInput(program, last, first);
        }
        const std::string& linked = handle->linked.emplace_back(own::write(program));
        *data = reinterpret_cast<const unsigned char*>(linked.data());
        *size = linked.size();
        return true;
    });
}

unsigned int substanceLinkerHandleRelease(SubstanceLinkerHandle* handle) {
    if (!handle) return 1;
    handle->context->handles.remove_if([&](const SubstanceLinkerHandle& each) { return &each == handle; });
    return 0;
}

} // extern "C"
