// The engine's side of the double.
#include "tests/recording/RecordingState.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <iomanip>
#include <locale>

using namespace recording;

namespace {

unsigned int bytesPerPixel(int format) {
    return (format & ~SubstanceFormatSrgb) == SubstanceFormatRgba8 ? 4 : 8; // enough for every other format
}

size_t textureSize(unsigned int width, unsigned int height, int format, unsigned int levels) {
    size_t size = 0;
    for (unsigned int level = 0; level < std::max(levels, 1u); ++level)
        size += size_t{std::max(width >> level, width ? 1u : 0u)} *
                std::max(height >> level, height ? 1u : 0u) * bytesPerPixel(format);
    return size;
}

const char* typeName(int type) {
    static const char* const names[] = {"Float", "Float2", "Float3",   "Float4",   "Integer", "Image",
                                        "6",     "7",      "Integer2", "Integer3", "Integer4"};
    return type >= 0 && type <= SubstanceInputInteger4 ? names[type] : "unknown type";
}

template <class T>
void printComponents(std::ostream& stream, const void* value, int count) {
    for (int i = 0; i < count; ++i) {
        T component;
        std::memcpy(&component, static_cast<const char*>(value) + i * sizeof(T), sizeof(T));
        stream << (i ? "," : "") << component;
    }
}

// Reads all of a value, as the engine would.
std::string showValue(int type, const void* value) {
    if (!value) return "null";
    std::ostringstream stream;
    stream.imbue(std::locale::classic());
    if (type == SubstanceInputImage) {
        const auto& image = *static_cast<const SubstanceTextureInput*>(value);
        stream << "image " << image.level0Width << "x" << image.level0Height << " format "
               << +image.pixelFormat << std::hex << std::setfill('0') << " pixels ";
        const auto* const pixels = static_cast<const unsigned char*>(image.pixels);
        const size_t size =
            pixels ? textureSize(image.level0Width, image.level0Height, image.pixelFormat, image.mipmapCount)
                   : 0;
        for (size_t i = 0; i < size; ++i) stream << std::setw(2) << +pixels[i];
    } else if (type <= SubstanceInputFloat4) {
        printComponents<float>(stream, value, type + 1);
    } else {
        printComponents<int>(stream, value,
                             type == SubstanceInputInteger ? 1 : type - SubstanceInputInteger2 + 2);
    }
    return stream.str();
}

// The description's entry of an index; null when there is none.
template <class T>
const T* entry(const std::vector<T>& entries, unsigned int index) {
    return index < entries.size() ? &entries[index] : nullptr;
}

std::string indexName(unsigned int index, unsigned int uid) {
    return std::to_string(index) + ":" + state().uidName(uid);
}

int findOutputIndex(const Program& program, unsigned int uid) {
    for (size_t i = 0; i < program.outputs.size(); ++i)
        if (program.outputs[i].uid == uid) return static_cast<int>(i);
    return -1;
}

// Nothing but the callbacks may use a handle that has been started.
void checkIdle(const SubstanceHandle* handle, const char* function) {
    if (handle && handle->starting)
        state().misuse(std::string(function) + " during a start of " + state().name("handle", handle));
}

SubstanceTexture makeTexture(const SubstanceHandle& handle, unsigned int outputIndex) {
    const Texture& wanted = state().script.texture;
    const EngineOutput& output = handle.program.outputs[outputIndex];
    SubstanceTexture texture{};
    const int format = wanted.format < 0 ? output.format : wanted.format;
    texture.level0Width = wanted.width;
    texture.level0Height = wanted.height;
    texture.pixelFormat = static_cast<unsigned char>(format);
    texture.mipmapCount = static_cast<unsigned char>(std::max(output.mipmaps, 1u));
    if (!wanted.hasBuffer) return texture;

    std::string values = std::to_string(outputIndex);
    for (const auto& value : handle.values) values += "/" + std::to_string(value.first) + "=" + value.second;
    const size_t seed = std::hash<std::string>()(values);
    const size_t size = textureSize(wanted.width, wanted.height, format, texture.mipmapCount);
    auto* const pixels = new unsigned char[size];
    for (size_t i = 0; i < size; ++i)
        pixels[i] = wanted.pixels.empty() ? static_cast<unsigned char>(seed >> i % 8 * 8)
                                          : wanted.pixels[i % wanted.pixels.size()];
    texture.buffer = pixels;
    state().buffers[pixels] = {handle.context, ++state().buffersMade};
    return texture;
}

using Reports = std::vector<std::pair<unsigned int, void*>>; // output index, job user data

Reports planReports(const SubstanceHandle& handle, const Completions& completions) {
    Reports once = handle.queue;
    if (completions.reversed) std::reverse(once.begin(), once.end());
    for (const unsigned int uid : completions.unasked) {
        const int index = findOutputIndex(handle.program, uid);
        if (index >= 0 && !handle.queue.empty())
            once.emplace_back(static_cast<unsigned int>(index), handle.queue.front().second);
    }
    Reports all;
    for (unsigned int i = 0; i < completions.repeats; ++i) all.insert(all.end(), once.begin(), once.end());
    if (all.size() > completions.limit) all.resize(completions.limit);
    return all;
}

void report(SubstanceHandle* handle, const std::pair<unsigned int, void*>& what,
            SubstanceOutputCompletedCallback callback) {
    {
        const std::lock_guard<std::mutex> lock(state().mutex);
        state().record("outputCompleted(" + state().name("handle", handle) + ", " +
                       indexName(what.first, handle->program.outputs[what.first].uid) + ", " +
                       state().name("job", what.second) + ")");
    }
    callback(handle, what.first, what.second);
}

void runReports(SubstanceHandle* handle, const Reports& reports, Caller caller,
                SubstanceOutputCompletedCallback callback) {
    if (!callback) return;
    if (caller == Caller::StartingThread) {
        for (const auto& each : reports) report(handle, each, callback);
        return;
    }
    std::vector<Reports> shares{reports};
    if (caller == Caller::ThreadEach) {
        shares.clear();
        for (const auto& each : reports) shares.push_back({each});
    }
    std::vector<std::thread> threads;
    for (const Reports& share : shares)
        threads.emplace_back([&share, handle, callback] {
            enterEngineThread();
            for (const auto& each : share) report(handle, each, callback);
        });
    for (std::thread& thread : threads) thread.join();
}

} // namespace

extern "C" {

unsigned int substanceContextInit(SubstanceContext** context, SubstanceDevice* device) {
    Call call("substanceContextInit");
    if (!device) call.refuse();
    *context = call.create<SubstanceContext>();
    call.print(state().name("context", *context), device ? "device" : "null");
    return call.end();
}

unsigned int substanceContextSetCallback(SubstanceContext* context, unsigned int kind,
                                         SubstanceCallback callback) {
    Call call("substanceContextSetCallback");
    SubstanceContext* const live = call.object(context);
    call.print(kind, callback ? "callback" : "null");
    if (kind != SubstanceCallbackOutputCompleted) call.refuse();
    if (call.ok()) live->completed = reinterpret_cast<SubstanceOutputCompletedCallback>(callback);
    return call.end();
}

unsigned int substanceContextRelease(SubstanceContext* context) {
    Call call("substanceContextRelease");
    SubstanceContext* const live = call.object(context);
    if (call.ok()) {
        live->released = true;
        for (const auto& handle : state().handles)
            if (handle->context == live && !handle->released)
                state().misuse("a context was released before " + state().name("handle", handle.get()));
    }
    return call.end();
}

// A released context still takes its buffers back.
unsigned int substanceContextMemoryFree(SubstanceContext* context, void* buffer) {
    Call call("substanceContextMemoryFree");
    call.print(state().name("context", context), state().bufferName(buffer));
    const auto found = state().buffers.find(buffer);
    if (found == state().buffers.end() || found->second.context != context) {
        call.refuse();
        state().misuse("substanceContextMemoryFree of " + state().bufferName(buffer));
    }
    if (call.ok()) {
        state().buffers.erase(found);
        delete[] static_cast<unsigned char*>(buffer);
    }
    return call.end();
}

unsigned int substanceHandleInit(SubstanceHandle** handle, SubstanceContext* context,
                                 const unsigned char* assembly, size_t size, unsigned int flags) {
    Call call("substanceHandleInit");
    const std::string contextName = state().name("context", context);
    const std::string bytes = assembly ? std::string(reinterpret_cast<const char*>(assembly), size) : "";
    const auto linked = state().linked.find(bytes);
    SubstanceContext* const known = state().contexts.find(context);
    if (!known || known->released || linked == state().linked.end()) call.refuse();
    *handle = call.create<SubstanceHandle>();
    if (*handle) {
        (*handle)->context = known;
        (*handle)->program = state().script.hasDescription ? state().script.description : linked->second;
    }
    call.print(state().name("handle", *handle), contextName, show(assembly, size), flags);
    return call.end();
}

unsigned int substanceHandleGetDesc(SubstanceHandle* handle, SubstanceDataDesc* desc) {
    Call call("substanceHandleGetDesc");
    const SubstanceHandle* const live = call.object(handle);
    *desc = {};
    if (call.ok())
        *desc = {static_cast<unsigned int>(live->program.inputs.size()),
                 static_cast<unsigned int>(live->program.outputs.size())};
    return call.end();
}

unsigned int substanceHandleGetInputDesc(SubstanceHandle* handle, unsigned int index,
                                         SubstanceInputDesc* desc) {
    Call call("substanceHandleGetInputDesc");
    const SubstanceHandle* const live = call.object(handle);
    call.print(index);
    *desc = {};
    const EngineInput* const input = live ? entry(live->program.inputs, index) : nullptr;
    if (!input) call.refuse();
    if (call.ok()) *desc = {input->uid, input->type, index};
    return call.end();
}

unsigned int substanceHandleGetOutputDesc(SubstanceHandle* handle, unsigned int index,
                                          SubstanceOutputDesc* desc) {
    Call call("substanceHandleGetOutputDesc");
    const SubstanceHandle* const live = call.object(handle);
    call.print(index);
    *desc = {};
    const EngineOutput* const output = live ? entry(live->program.outputs, index) : nullptr;
    if (!output) call.refuse();
    if (call.ok()) *desc = {output->uid, output->format};
    return call.end();
}

unsigned int substanceHandleGetOutputs(SubstanceHandle* handle, unsigned int flags, unsigned int outputIndex,
                                       unsigned int count, SubstanceTexture* texture) {
    Call call("substanceHandleGetOutputs");
    SubstanceHandle* const live = call.object(handle);
    call.print(flags, outputIndex, count);
    *texture = {};
    if (!live || flags != 0 || count != 1 || live->computed.count(outputIndex) == 0) call.refuse();
    if (call.ok()) {
        live->computed.erase(outputIndex);
        *texture = makeTexture(*live, outputIndex);
    }
    call.print(state().bufferName(texture->buffer));
    return call.end();
}

SubstanceContext* substanceHandleGetParentContext(SubstanceHandle* handle) {
    Call call("substanceHandleGetParentContext");
    const SubstanceHandle* const live = call.object(handle);
    call.end();
    return live ? live->context : nullptr;
}

unsigned int substanceHandlePushSetInput(SubstanceHandle* handle, unsigned int flags, unsigned int inputIndex,
                                         int type, const void* value, unsigned int reserved) {
    Call call("substanceHandlePushSetInput");
    SubstanceHandle* const live = call.object(handle);
    checkIdle(live, "substanceHandlePushSetInput");
    const EngineInput* const input = live ? entry(live->program.inputs, inputIndex) : nullptr;
    const bool fits = input && input->type == type && (value || type == SubstanceInputImage);
    const std::string shown = fits ? showValue(type, value) : "unread";
    call.print(flags, input ? indexName(inputIndex, input->uid) : std::to_string(inputIndex), typeName(type),
               shown, reserved);
    if (!fits) call.refuse();
    if (call.ok() && flags == SubstancePushInput) live->values[inputIndex] = shown;
    return call.end();
}

unsigned int substanceHandlePushOutputs(SubstanceHandle* handle, unsigned int flags,
                                        const unsigned int* outputUids, unsigned int count,
                                        void* jobUserData) {
    Call call("substanceHandlePushOutputs");
    SubstanceHandle* const live = call.object(handle);
    checkIdle(live, "substanceHandlePushOutputs");
    std::string names;
    for (unsigned int i = 0; i < count; ++i) names += (i ? " " : "") + state().uidName(outputUids[i]);
    call.print(flags, "{" + names + "}", count, state().name("job", jobUserData));
    if (flags != SubstancePushOutputUids && flags != SubstancePushOutputUidsHint) call.refuse();
    for (unsigned int i = 0; call.ok() && flags == SubstancePushOutputUids && i < count; ++i) {
        const int index = findOutputIndex(live->program, outputUids[i]);
        if (index < 0) continue;
        auto& queue = live->queue;
        queue.erase(
            std::remove_if(queue.begin(), queue.end(),
                           [&](const auto& each) { return each.first == static_cast<unsigned int>(index); }),
            queue.end());
        queue.emplace_back(static_cast<unsigned int>(index), jobUserData);
    }
    return call.end();
}

unsigned int substanceHandleStart(SubstanceHandle* handle, unsigned int flags) {
    Call call("substanceHandleStart");
    SubstanceHandle* const live = call.object(handle);
    checkIdle(live, "substanceHandleStart");
    call.print(flags);
    Reports reports;
    if (call.ok()) reports = planReports(*live, state().script.completions);
    if (live) {
        live->computed.clear();
        for (const auto& each : call.ok() ? live->queue : Reports()) live->computed.insert(each.first);
        live->queue.clear();
    }
    const bool block = call.ok() && std::exchange(state().script.blockNextStart, false);
    const Caller caller = state().script.completions.caller;
    const bool isCutShort = reports.size() == state().script.completions.limit;
    const auto callback = live ? live->context->completed : nullptr;
    if (call.ok()) live->starting = true;
    if (const unsigned int status = call.end()) return status;

    if (block) {
        std::unique_lock<std::mutex> lock(state().mutex);
        state().startBlocked = true;
        state().startChanged.notify_all();
        state().startChanged.wait(lock, [] { return state().startReleased; });
    }
    runReports(live, reports, caller, callback);
    const std::lock_guard<std::mutex> lock(state().mutex);
    live->starting = false;
    state().numbers.erase("job");
    return isCutShort ? 7 : 0;
}

unsigned int substanceHandleRelease(SubstanceHandle* handle) {
    Call call("substanceHandleRelease");
    SubstanceHandle* const live = call.object(handle);
    checkIdle(live, "substanceHandleRelease");
    if (live) live->released = call.ok();
    return call.end();
}

} // extern "C"
