// Setting a value, which calls the listeners of the input.
//
// The floor calls the same listeners through a vector of std::function, which knows no disconnection, no
// locks and no nested emissions.
#include "benchmarks/LibraryBenchmarks.h"
#include "material/SubstanceInput.h"

#include <benchmark/benchmark.h>

#include <functional>
#include <memory>

namespace benchmarks {

namespace {

using kvSubstance::SubstanceInput;

struct Listener {
    kvRTB::SignalBase tracking;
    int calls = 0;

    void changed() { benchmark::DoNotOptimize(++calls); }
};

using Listeners = std::vector<Listener>;

Piece setValue(int count) {
    const auto listeners = std::make_shared<Listeners>(static_cast<std::size_t>(count));
    const kv::Reference<SubstanceInput> input(
        new SubstanceInput(nullptr, 1, "input", kvSubstance::TypeFloat1));
    for (Listener& listener : *listeners)
        input->getModifiedSignal().connect(kvRTB::FunctionVoidMember<Listener>(&listener, &Listener::changed),
                                           listener.tracking);
    return {[listeners, input, value = 0.0f]() mutable {
                value = 1 - value;
                input->setValueF(value, 0);
            },
            {}};
}

Piece callDirectly(int count) {
    const auto listeners = std::make_shared<Listeners>(static_cast<std::size_t>(count));
    std::vector<std::function<void()>> callbacks;
    callbacks.reserve(listeners->size());
    for (Listener& listener : *listeners) callbacks.emplace_back([&listener] { listener.changed(); });
    return {[listeners, callbacks, value = 0.0f]() mutable {
                benchmark::DoNotOptimize(value = 1 - value);
                for (const auto& callback : callbacks) callback();
            },
            {}};
}

} // namespace

void addEditing() {
    add({"set a value", "listeners", {1, 1000}, setValue, callDirectly});
}

} // namespace benchmarks
