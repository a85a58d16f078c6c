#include "conformance/Recorder.h"

#include <mutex>
#include <utility>

namespace kvSubstance::conformance {

namespace {

struct State {
    std::mutex mutex;
    std::vector<Delivery> deliveries;
    std::vector<Completion> completions;
    std::function<void(const Completion&)> during;
};

State& state() {
    static State instance;
    return instance;
}

void record(Delivery delivery) {
    const std::lock_guard<std::mutex> lock(state().mutex);
    state().deliveries.push_back(std::move(delivery));
}

void onText(SubstanceLinkerHandle* handle, unsigned int index, const char* text) {
    record({handle, index, true, text ? text : "", std::this_thread::get_id()});
}

void onBytes(SubstanceLinkerHandle* handle, unsigned int index, const unsigned char* bytes, size_t count) {
    std::string content;
    if (bytes) content.assign(bytes, bytes + count);
    record({handle, index, false, std::move(content), std::this_thread::get_id()});
}

void onCompleted(SubstanceHandle* handle, unsigned int outputIndex, void* jobUserData) {
    const Completion completion{handle, outputIndex, jobUserData};
    std::function<void(const Completion&)> during;
    {
        const std::lock_guard<std::mutex> lock(state().mutex);
        state().completions.push_back(completion);
        during = state().during;
    }
    if (during) during(completion);
}

} // namespace

SubstanceLinkerCallback textRecorder() {
    return reinterpret_cast<SubstanceLinkerCallback>(onText);
}

SubstanceLinkerCallback bytesRecorder() {
    return reinterpret_cast<SubstanceLinkerCallback>(onBytes);
}

SubstanceCallback completionRecorder() {
    return reinterpret_cast<SubstanceCallback>(onCompleted);
}

std::vector<Delivery> takeDeliveries() {
    const std::lock_guard<std::mutex> lock(state().mutex);
    return std::exchange(state().deliveries, {});
}

std::vector<Completion> takeCompletions() {
    const std::lock_guard<std::mutex> lock(state().mutex);
    return std::exchange(state().completions, {});
}

DuringCompletions::DuringCompletions(std::function<void(const Completion&)> function) {
    const std::lock_guard<std::mutex> lock(state().mutex);
    state().during = std::move(function);
}

DuringCompletions::~DuringCompletions() {
    const std::lock_guard<std::mutex> lock(state().mutex);
    state().during = nullptr;
}

} // namespace kvSubstance::conformance
