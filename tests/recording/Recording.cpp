#include "tests/recording/Recording.h"

#include "tests/recording/RecordingState.h"

namespace recording {

namespace {

std::unique_lock<std::mutex> locked() {
    return std::unique_lock<std::mutex>(state().mutex);
}

template <class T>
void listLiving(std::string& list, const Objects<T>& objects) {
    for (const auto& object : objects)
        if (!object->released) list += "alive: " + state().name(T::kind, object.get()) + "\n";
}

} // namespace

void reset() {
    const auto lock = locked();
    State& s = state();
    s.host = std::this_thread::get_id();
    s.trace.clear();
    s.script = Script();
    s.numbers.clear();
    s.buffersMade = 0;
    s.startBlocked = s.startReleased = false;
}

std::string takeTrace() {
    const auto lock = locked();
    state().numbers.erase("job");
    return std::exchange(state().trace, {});
}

void echoToStandardError() {
    const auto lock = locked();
    state().echo = true;
}

std::string leaks() {
    const auto lock = locked();
    State& s = state();
    std::string list;
    listLiving(list, s.linkerContexts);
    listLiving(list, s.linkerHandles);
    listLiving(list, s.contexts);
    listLiving(list, s.handles);
    for (const auto& buffer : s.buffers) list += "alive: " + s.bufferName(buffer.first) + "\n";
    return list + s.misuses;
}

std::string misuses() {
    const auto lock = locked();
    return state().misuses;
}

unsigned int liveTextures() {
    const auto lock = locked();
    return static_cast<unsigned int>(state().buffers.size());
}

unsigned int freshUids(unsigned int count) {
    const auto lock = locked();
    return std::exchange(state().nextUid, state().nextUid + count);
}

std::string packageBytes(const std::string& descriptionXml, const std::string& tag) {
    return "package:" + tag + "\n" + descriptionXml;
}

void setDeliveries(const std::vector<Delivery>& deliveries) {
    const auto lock = locked();
    state().script.deliveries = deliveries;
}

void fail(const std::string& function, unsigned int call, unsigned int status) {
    const auto lock = locked();
    state().script.failures.emplace(function, std::make_pair(call, status));
}

void setEngineDescription(const std::vector<EngineInput>& inputs, const std::vector<EngineOutput>& outputs) {
    const auto lock = locked();
    state().script.hasDescription = true;
    state().script.description = {inputs, outputs};
}

void setCompletions(const Completions& completions) {
    const auto lock = locked();
    state().script.completions = completions;
}

void setTexture(const Texture& texture) {
    const auto lock = locked();
    state().script.texture = texture;
}

void blockNextStart() {
    const auto lock = locked();
    state().script.blockNextStart = true;
    state().startBlocked = state().startReleased = false;
}

void waitForBlockedStart() {
    auto lock = locked();
    state().startChanged.wait(lock, [] { return state().startBlocked; });
}

void releaseStart() {
    const auto lock = locked();
    state().startReleased = true;
    state().startChanged.notify_all();
}

} // namespace recording
