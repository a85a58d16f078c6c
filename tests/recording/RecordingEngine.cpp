// The engine's side of the double.
#include "tests/recording/RecordingState.h"

#include <algorithm>
#include <cstring>
#include <iomanip>
#include <locale>
#include <sstream>

using namespace recording;

namespace {

constexpr size_t bytesPerPixel = 4; // of the only format whose pixels anybody reads

template <class T>
void printComponents(std::ostream& stream, const void* value, int count) {
    for (int i = 0; i < count; ++i) {
        T component;
        std::memcpy(&component, static_cast<const char*>(value) + i * sizeof(T), sizeof(T));
        stream << (i ? "," : ", ") << component;
    }
}

// The type and the value, all of which is read, as the engine would.
std::string showValue(int type, const void* value) {
    static const char* const names[] = {"Float", "Float2", "Float3",   "Float4",   "Integer", "Image",
                                        "",      "",       "Integer2", "Integer3", "Integer4"};
    std::ostringstream stream;
    stream.imbue(std::locale::classic());
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

// The description's entry of an index; null when there is none.
template <class T>
const T* entry(const std::vector<T>& entries, unsigned int index) {
    return index < entries.size() ? &entries[index] : nullptr;
}

std::string indexName(unsigned int index, unsigned int uid) {
    return std::to_string(index) + ":" + uidName(uid);
}

SubstanceTexture makeTexture(const SubstanceHandle& handle, const EngineOutput& output) {
    const Texture& wanted = state().session.texture;
    SubstanceTexture texture{};
    texture.level0Width = wanted.width;
    texture.level0Height = wanted.height;
    texture.pixelFormat = static_cast<unsigned char>(wanted.format < 0 ? output.format : wanted.format);
    texture.mipmapCount = static_cast<unsigned char>(std::max(output.mipmaps, 1u));
    if (!wanted.hasBuffer) return texture;

    const size_t size = wanted.width * wanted.height * bytesPerPixel;
    auto* const pixels = new unsigned char[size];
    for (size_t i = 0; i < size; ++i) pixels[i] = wanted.pixels[i % wanted.pixels.size()];
    texture.buffer = pixels;
    state().buffers[pixels] = {handle.context, ++state().session.buffersMade};
    return texture;
}

} // namespace

void Start::report(const Report& finished) const {
    {
        const std::lock_guard<std::mutex> lock(state().mutex);
        record("outputCompleted(" + name(handle) + ", " +
               indexName(finished.output, handle->program.outputs[finished.output].uid) + ", " +
               name("job", finished.job) + ")");
    }
    handle->context->completed(handle, finished.output, finished.job);
}

unsigned int Start::reportAll() const {
    for (const Report& each : reports) report(each);
    return 0;
}

extern "C" {

unsigned int substanceContextInit(SubstanceContext** context, SubstanceDevice* device) {
    Call call(__func__);
    call.require(device);
    *context = call.create<SubstanceContext>();
    call.print(*context, std::string(device ? "device" : "null"));
    return call.end();
}

unsigned int substanceContextSetCallback(SubstanceContext* context, unsigned int kind,
                                         SubstanceCallback callback) {
    Call call(__func__, context, kind, std::string(callback ? "callback" : "null"));
    call.require(kind == SubstanceCallbackOutputCompleted && callback);
    if (call.ok()) context->completed = reinterpret_cast<SubstanceOutputCompletedCallback>(callback);
    return call.end();
}

unsigned int substanceContextRelease(SubstanceContext* context) {
    Call call(__func__, context);
    if (call.ok()) context->released = true;
    for (const auto& object : state().objects) {
        const auto* const handle = dynamic_cast<const SubstanceHandle*>(object.get());
        if (isAlive(handle) && handle->context == context)
            misuse("a context was released before " + name(handle));
    }
    return call.end();
}

// A released context still takes its buffers back.
unsigned int substanceContextMemoryFree(SubstanceContext* context, void* buffer) {
    Call call(__func__);
    call.print(name(context), bufferName(buffer));
    const auto found = state().buffers.find(buffer);
    call.require(found != state().buffers.end() && found->second.context == context);
    if (call.ok()) {
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
    if (*handle) {
        (*handle)->context = context;
        (*handle)->program = linked->second;
        const auto& inputs = state().session.engineInputs;
        if (!inputs.empty()) (*handle)->program.inputs = inputs;
    }
    call.print(*handle, context, firstLine(assembly, size), flags);
    return call.end();
}

unsigned int substanceHandleGetDesc(SubstanceHandle* handle, SubstanceDataDesc* desc) {
    Call call(__func__, handle);
    *desc = {};
    if (call.ok())
        *desc = {static_cast<unsigned int>(handle->program.inputs.size()),
                 static_cast<unsigned int>(handle->program.outputs.size())};
    return call.end();
}

unsigned int substanceHandleGetInputDesc(SubstanceHandle* handle, unsigned int index,
                                         SubstanceInputDesc* desc) {
    Call call(__func__, handle, index);
    *desc = {};
    const EngineInput* const input = call.ok() ? entry(handle->program.inputs, index) : nullptr;
    call.require(input);
    if (input) *desc = {input->uid, input->type, index};
    return call.end();
}

unsigned int substanceHandleGetOutputDesc(SubstanceHandle* handle, unsigned int index,
                                          SubstanceOutputDesc* desc) {
    Call call(__func__, handle, index);
    *desc = {};
    const EngineOutput* const output = call.ok() ? entry(handle->program.outputs, index) : nullptr;
    call.require(output);
    if (output) *desc = {output->uid, output->format};
    return call.end();
}

unsigned int substanceHandleGetOutputs(SubstanceHandle* handle, unsigned int flags, unsigned int outputIndex,
                                       unsigned int count, SubstanceTexture* texture) {
    Call call(__func__, handle, flags, outputIndex, count);
    *texture = {};
    call.require(handle && flags == 0 && count == 1 && handle->computed.count(outputIndex) > 0);
    if (call.ok()) {
        handle->computed.erase(outputIndex);
        *texture = makeTexture(*handle, handle->program.outputs[outputIndex]);
    }
    call.print(bufferName(texture->buffer));
    return call.end();
}

SubstanceContext* substanceHandleGetParentContext(SubstanceHandle* handle) {
    return Call(__func__, handle).end() == 0 ? handle->context : nullptr;
}

unsigned int substanceHandlePushSetInput(SubstanceHandle* handle, unsigned int flags, unsigned int inputIndex,
                                         int type, const void* value, unsigned int reserved) {
    Call call(__func__, handle, flags);
    const EngineInput* const input = handle ? entry(handle->program.inputs, inputIndex) : nullptr;
    const bool fits = input && input->type == type && (value || type == SubstanceInputImage);
    call.require(fits);
    call.print(input ? indexName(inputIndex, input->uid) : std::to_string(inputIndex),
               fits ? showValue(type, value) : "unread", reserved);
    return call.end();
}

unsigned int substanceHandlePushOutputs(SubstanceHandle* handle, unsigned int flags,
                                        const unsigned int* outputUids, unsigned int count,
                                        void* jobUserData) {
    Call call(__func__, handle, flags);
    std::string names;
    for (unsigned int i = 0; i < count; ++i) names += (i ? " " : "") + uidName(outputUids[i]);
    call.print("{" + names + "}", count, name("job", jobUserData));
    call.require(flags == SubstancePushOutputUids || flags == SubstancePushOutputUidsHint);
    if (!call.ok() || flags != SubstancePushOutputUids) return call.end();
    const auto& outputs = handle->program.outputs;
    for (unsigned int index = 0; index < outputs.size(); ++index)
        if (std::find(outputUids, outputUids + count, outputs[index].uid) != outputUids + count)
            handle->queue.push_back({index, jobUserData});
    return call.end();
}

unsigned int substanceHandleStart(SubstanceHandle* handle, unsigned int flags) {
    Call call(__func__, handle, flags);
    Start start{handle, {}};
    start.reports.swap(handle->queue);
    handle->computed.clear();
    std::function<unsigned int(const Start&)> script;
    if (call.ok()) {
        for (const Report& each : start.reports) handle->computed.insert(each.output);
        handle->starting = true;
        script.swap(state().session.onStart);
    }
    if (const unsigned int failure = call.end()) return failure;

    const unsigned int status = script ? script(start) : start.reportAll();
    const std::lock_guard<std::mutex> lock(state().mutex);
    handle->starting = false;
    state().session.numbers.erase("job");
    return status;
}

unsigned int substanceHandleRelease(SubstanceHandle* handle) {
    Call call(__func__, handle);
    if (call.ok()) handle->released = true;
    return call.end();
}

} // extern "C"
