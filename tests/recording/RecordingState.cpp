#include "tests/recording/RecordingState.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace recording {

namespace {

// Prints what is left when the process ends. Made before, and so destroyed after, all static objects of the
// library and of the tests.
struct ExitCheck {
    ~ExitCheck() {
        const std::string left = misuses() + alive();
        if (left.empty()) return;
        std::fprintf(stderr, "not released, or misused, at the end of the process:\n%s", left.c_str());
        std::_Exit(1);
    }
};

#ifdef _MSC_VER
#pragma init_seg(lib)
ExitCheck exitCheck;
#else
__attribute__((init_priority(101))) ExitCheck exitCheck;
#endif

} // namespace

thread_local bool Inside::current = false;

State& state() {
    static State* const instance = new State;
    return *instance;
}

void record(const std::string& line) {
    const bool isHost = std::this_thread::get_id() == state().session.host;
    const std::string whole = (isHost ? "host: " : "worker: ") + line + "\n";
    state().session.trace += whole;
}

void misuse(const std::string& what) {
    state().misuses += "misuse: " + what + "\n";
}

std::string name(const char* kind, const void* object) {
    if (!object) return "null";
    auto& known = state().session.numbers[kind];
    const auto number = known.emplace(object, static_cast<unsigned int>(known.size()) + 1).first->second;
    return kind + std::to_string(number);
}

std::string name(const Object* object) {
    return object ? name(object->kind(), object) : "null";
}

std::string bufferName(const void* buffer) {
    if (!buffer) return "null";
    const auto found = state().buffers.find(buffer);
    return found == state().buffers.end() ? "a foreign buffer"
                                          : "buffer" + std::to_string(found->second.number);
}

std::string uidName(unsigned int uid) {
    const auto found = state().uidNames.find(uid);
    return found == state().uidNames.end() ? std::to_string(uid) : found->second;
}

bool isAlive(const Object* object) {
    return object && !object->released;
}

std::string firstLine(const void* data, size_t size) {
    const char* const text = static_cast<const char*>(data);
    return data ? '"' + std::string(text, std::find(text, text + size, '\n')) + '"' : "null";
}

unsigned int Call::takeFailure() const {
    auto& [callsToGo, how] = state().session.failures[function];
    if (callsToGo == 0 || --callsToGo > 0) return 0;
    if (how == Failing::FromThere) callsToGo = 1;
    return 7;
}

std::string Call::useObject(const Object* object) {
    require(isAlive(object));
    const bool isCallbacks = function.rfind("substanceHandleGet", 0) == 0;
    if (object && (!isAlive(object) || (object->starting && !isCallbacks)))
        misuse(function + " uses " + name(object));
    return name(object);
}

unsigned int Call::end() {
    record(function + "(" + arguments + ")" + (status ? " = " + std::to_string(status) : ""));
    lock.unlock();
    return status;
}

} // namespace recording
