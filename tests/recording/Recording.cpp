#include "tests/recording/Recording.h"

#include "tests/recording/RecordingState.h"

namespace recording {

namespace {

using Lock = std::lock_guard<std::mutex>;

template <class T>
void setScript(T Script::*part, const T& value) {
    const Lock lock(state().mutex);
    state().script.*part = value;
}

} // namespace

void reset() {
    const Lock lock(state().mutex);
    State& s = state();
    s.host = std::this_thread::get_id();
    s.trace.clear();
    s.script = Script();
    s.numbers.clear();
    s.buffersMade = 0;
}

std::string takeTrace() {
    const Lock lock(state().mutex);
    state().numbers.erase("job");
    return std::exchange(state().trace, {});
}

void echoToStandardError() {
    const Lock lock(state().mutex);
    state().echo = true;
}

std::string misuses() {
    const Lock lock(state().mutex);
    return state().misuses;
}

unsigned int liveTextures() {
    const Lock lock(state().mutex);
    return static_cast<unsigned int>(state().buffers.size());
}

unsigned int freshUids(unsigned int count) {
    const Lock lock(state().mutex);
    return std::exchange(state().nextUid, state().nextUid + count);
}

std::string withFreshUids(std::string xml) {
    const unsigned int first = freshUids(10);
    for (size_t at = 0; (at = xml.find('#', at)) != std::string::npos;)
        xml.replace(at, 2, std::to_string(first + static_cast<unsigned int>(xml[at + 1] - '0')));
    return xml;
}

std::string packageBytes(const std::string& descriptionXml, const std::string& tag) {
    return "package:" + tag + "\n" + descriptionXml;
}

void setDeliveries(const std::vector<Delivery>& deliveries) {
    setScript(&Script::deliveries, deliveries);
}

void fail(const std::string& function, unsigned int call) {
    const Lock lock(state().mutex);
    state().script.failures[function] = call;
}

void setEngineInputs(const std::vector<EngineInput>& inputs) {
    setScript(&Script::engineInputs, inputs);
}

void setTexture(const Texture& texture) {
    setScript(&Script::texture, texture);
}

void onNextStart(const std::function<unsigned int(const Start&)>& script) {
    setScript(&Script::onStart, script);
}

} // namespace recording
