// The engine's side of the double.
#include "tests/ClassicText.h"
#include "tests/recording/RecordingState.h"

#include <algorithm>
#include <iomanip>

using namespace recording;

namespace {

constexpr size_t bytesPerPixel = 4; // of the only format whose pixels anybody reads

template <class T>
void printComponents(std::ostream& stream, const void* value, int count) {
    for (int i = 0; i < count; ++i) stream << (i ? "," : ", ") << static_cast<const T*>(value)[i];
}

// The type and the value, all of which is read, as the engine would.
std::string showValue(int type, const void* value) {
    static const char* const names[] = {"Float", "Float2", "Float3",   "Float4",   "Integer", "Image",
                                        "",      "",       "Integer2", "Integer3", "Integer4"};
    ClassicText stream;
    stream << names[type];
    if (!value) {
        stream << ", null";
    } else if (type == SubstanceInputImage) {
        const auto& image = *static_cast<const SubstanceTextureInput*>(value);
        stream << ", image " << image.level0Width << "x" << image.level0Height << " format "
               << +image.pixelFormat << std::hex << std::setfill('0') << " pixels ";
        const auto* const pixels = static_cast<const unsigned char*>(image.pixels);
        for (size_t i = 0; i < image.level0Width * image.level0Height * bytesPerPixel; ++i)
            stream << std::setw(2) << +pixels[i];
    } else if (type <= SubstanceInputFloat4) {
        printComponents<float>(stream, value, type + 1);
    } else {
        const int count = type == SubstanceInputInteger ? 1 : type - SubstanceInputInteger2 + 2;
        printComponents<int>(stream, value, count);
    }
    return stream.str();
}

std::string allValues(const SubstanceHandle& handle) {
    std::string all;
    for (const auto& [index, value] : handle.values) all += (all.empty() ? "" : "; ") + value;
    return all;
}

std::string indexName(unsigned int index, unsigned int uid) {
    return std::to_string(index) + ":" + uidName(uid);
}

SubstanceTexture makeTexture(const SubstanceHandle& handle, const EngineOutput& output,
                             const std::string& computed) {
    const Texture& wanted = state().session.texture;
    SubstanceTexture texture{};
    texture.level0Width = wanted.width;
    texture.level0Height = wanted.height;
    texture.pixelFormat = static_cast<unsigned char>(wanted.format < 0 ? output.format : wanted.format);
    texture.mipmapCount = static_cast<unsigned char>(std::max(output.mipmaps, 1u));
    if (!wanted.hasBuffer) return texture;

    const size_t size = wanted.width * wanted.height * bytesPerPixel;
    auto* const pixels = new unsigned char[size];
    for (size_t i = 0; i < size; ++i)
        pixels[i] = wanted.pixels.empty() ? static_cast<unsigned char>(i < computed.size() ? computed[i] : 0)
                                          : wanted.pixels[i % wanted.pixels.size()];
    texture.buffer = pixels;
    state().buffers[pixels] = {handle.context, ++state().session.buffersMade};
    return texture;
}

} // namespace

void Start::report(const Report& finished) const {
    {
        const Inside inside;
        const std::lock_guard<std::mutex> lock(state().mutex);
        const auto& outputs = handle->program.outputs;
        record("outputCompleted(" + name(handle) + ", " +
               (finished.output < outputs.size() ? indexName(finished.output, outputs[finished.output].uid)
                                                 : std::to_string(finished.output) + ":unknown") +
               ", " + name("job", finished.job) + ")");
    }
    const Inside callsBack(false);
    handle->context->completed(handle, finished.output, finished.job);
}

unsigned int Start::reportAll() const {
    for (const Report& each : reports) report(each);
    return 0;
}

extern "C" {

unsigned int substanceContextInit(SubstanceContext** context, SubstanceDevice* device) {
    Call call(__func__);
    *context = call.create<SubstanceContext>();
    call.print(*context, std::string(device ? "device" : "null"));
    return call.end();
}

unsigned int substanceContextSetCallback(SubstanceContext* context, unsigned int kind,
                                         SubstanceCallback callback) {
    return Call(__func__, context, kind).run([&] {
        context->completed = reinterpret_cast<SubstanceOutputCompletedCallback>(callback);
    });
}

unsigned int substanceContextRelease(SubstanceContext* context) {
    return Call(__func__, context).release(context);
}

// A released context still takes its buffers back.
unsigned int substanceContextMemoryFree(SubstanceContext* context, void* buffer) {
    Call call(__func__);
    call.print(name(context), bufferName(buffer));
    const auto found = state().buffers.find(buffer);
    const bool isOurs = found != state().buffers.end() && found->second.context == context;
    call.require(isOurs);
    if (isOurs) {
        state().buffers.erase(found);
        delete[] static_cast<unsigned char*>(buffer);
    } else {
        misuse("substanceContextMemoryFree of " + bufferName(buffer));
    }
    return call.end();
}

unsigned int substanceHandleInit(SubstanceHandle** handle, SubstanceContext* context,
                                 const unsigned char* assembly, size_t size, unsigned int flags) {
    Call call(__func__);
    const std::string bytes = assembly ? std::string(reinterpret_cast<const char*>(assembly), size) : "";
    const auto linked = state().linked.find(bytes);
    call.require(isAlive(context) && linked != state().linked.end());
    *handle = call.create<SubstanceHandle>();
    call.print(*handle, context, firstLine(assembly, size), flags);
    return call.run([&] {
        (*handle)->context = context;
        (*handle)->program = linked->second;
    });
}

unsigned int substanceHandleGetDesc(SubstanceHandle* handle, SubstanceDataDesc* desc) {
    *desc = {};
    return Call(__func__, handle).run([&] {
        desc->inputsCount = static_cast<unsigned int>(handle->program.inputs.size());
        desc->outputsCount = static_cast<unsigned int>(handle->program.outputs.size());
    });
}

unsigned int substanceHandleGetInputDesc(SubstanceHandle* handle, unsigned int index,
                                         SubstanceInputDesc* desc) {
    *desc = {};
    return Call(__func__, handle, index).run([&] {
        const EngineInput& input = handle->program.inputs.at(index);
        *desc = {input.uid, input.type, index};
    });
}

unsigned int substanceHandleGetOutputDesc(SubstanceHandle* handle, unsigned int index,
                                          SubstanceOutputDesc* desc) {
    *desc = {};
    Call call(__func__, handle, index);
    return call.run([&] {
        const auto& outputs = handle->program.outputs;
        call.require(index < outputs.size());
        if (call.ok()) *desc = {outputs[index].uid, outputs[index].format};
    });
}

unsigned int substanceHandleGetOutputs(SubstanceHandle* handle, unsigned int flags, unsigned int outputIndex,
                                       unsigned int count, SubstanceTexture* texture) {
    *texture = {};
    Call call(__func__, handle, flags, outputIndex, count);
    call.require(flags == 0 && count == 1);
    return call.run([&] {
        const auto computed = handle->computed.extract(outputIndex);
        call.require(!computed.empty());
        if (call.ok())
            *texture = makeTexture(*handle, handle->program.outputs.at(outputIndex), computed.mapped());
        call.print(bufferName(texture->buffer));
    });
}

SubstanceContext* substanceHandleGetParentContext(SubstanceHandle* handle) {
    return Call(__func__, handle).end() == 0 ? handle->context : nullptr;
}

unsigned int substanceHandlePushSetInput(SubstanceHandle* handle, unsigned int flags, unsigned int inputIndex,
                                         int type, const void* value, unsigned int reserved) {
    Call call(__func__, handle, flags);
    return call.run([&] {
        const EngineInput& input = handle->program.inputs.at(inputIndex);
        call.require(input.type == type && (value || type == SubstanceInputImage));
        const std::string shown = call.ok() ? showValue(type, value) : "unread";
        if (flags == SubstancePushInput && call.ok())
            handle->values[inputIndex] = uidName(input.uid) + " " + shown;
        call.print(indexName(inputIndex, input.uid), shown, reserved);
    });
}

unsigned int substanceHandlePushOutputs(SubstanceHandle* handle, unsigned int flags,
                                        const unsigned int* outputUids, unsigned int count,
                                        void* jobUserData) {
    Call call(__func__, handle, flags);
    call.require(flags == SubstancePushOutputUids || flags == SubstancePushOutputUidsHint);
    return call.run([&] {
        std::string names;
        for (unsigned int i = 0; i < count; ++i) names += (i ? " " : "") + uidName(outputUids[i]);
        call.print("{" + names + "}", count, name("job", jobUserData));
        const auto& outputs = handle->program.outputs;
        for (unsigned int index = 0; flags == SubstancePushOutputUids && index < outputs.size(); ++index)
            if (std::find(outputUids, outputUids + count, outputs[index].uid) != outputUids + count) {
                handle->queue.push_back({index, jobUserData});
                handle->asked[index] = uidName(outputs[index].uid) + " of " + allValues(*handle);
            }
    });
}

unsigned int substanceHandleStart(SubstanceHandle* handle, unsigned int flags) {
    Call call(__func__, handle, flags);
    Start start{handle, {}};
    start.reports.swap(handle->queue);
    handle->computed.clear();
    handle->asked.swap(handle->computed);
    std::function<unsigned int(const Start&)> script;
    const unsigned int failure = call.run([&] {
        handle->starting = true;
        script.swap(state().session.onStart);
    });
    if (failure) return failure;

    const unsigned int status = script ? script(start) : start.reportAll();
    const std::lock_guard<std::mutex> lock(state().mutex);
    handle->starting = false;
    state().session.numbers.erase("job");
    return status;
}

unsigned int substanceHandleRelease(SubstanceHandle* handle) {
    return Call(__func__, handle).release(handle);
}

} // extern "C"
