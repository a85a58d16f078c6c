#include "tests/recording/Recording.h"

#include "tests/recording/RecordingState.h"

namespace recording {

namespace {

// The state, with the mutex held to the end of the expression.
struct Locked {
    State* operator->() const { return &state(); }
    const std::lock_guard<std::mutex> lock{state().mutex};
};

} // namespace

void reset() {
    Locked()->session = Session();
}

std::string takeTrace() {
    const Locked locked;
    locked->session.numbers.erase("job");
    return std::exchange(locked->session.trace, {});
}

bool isInsideDouble() {
    return Inside::current;
}

std::string misuses() {
    return Locked()->misuses;
}

unsigned int liveTextures() {
    return static_cast<unsigned int>(Locked()->buffers.size());
}

std::string alive() {
    const Locked locked;
    std::string left;
    for (const auto& object : locked->objects)
        if (!object->released) left += "alive: " + name(object.get()) + "\n";
    for (const auto& buffer : locked->buffers) left += "alive: " + bufferName(buffer.first) + "\n";
    return left;
}

void fail(const std::string& function, unsigned int call, Failing how) {
    Locked()->session.failures[function] = {call, how};
}

void setTexture(const Texture& texture) {
    Locked()->session.texture = texture;
}

void onNextStart(const std::function<unsigned int(const Start&)>& script) {
    Locked()->session.onStart = script;
}

} // namespace recording

namespace packages {

std::string bytes(const std::string& descriptionXml, const std::string& tag) {
    return "assembly:" + tag + "\n" + descriptionXml;
}

unsigned int freshUids(unsigned int count) {
    const recording::Locked locked;
    return std::exchange(locked->nextUid, locked->nextUid + count);
}

void beginTest() {
    recording::reset();
}

std::string faults() {
    const unsigned int textures = recording::liveTextures();
    return recording::misuses() + (textures > 0 ? std::to_string(textures) + " live textures\n" : "");
}

} // namespace packages
