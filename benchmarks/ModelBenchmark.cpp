// How the time to restore and to synchronise a material grows with its number of inputs. Both are to grow in
// proportion: ten times the inputs in at most thirteen times the time.
#include "bridge/Synchronisation.h"
#include "framework/description/GraphDesc.h"
#include "framework/render/GraphInstance.h"
#include "material/Substance.h"

#include <benchmark/benchmark.h>

#include <boost/make_shared.hpp>

#include <cstdio>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace {

using kvSubstance::Substance;

constexpr int FewInputs = 1000;
constexpr int ManyInputs = 10000;
constexpr double LargestRatio = 13;

// A material of float inputs over one graph instance, without packages.
struct Scene {
    SubstanceAir::GraphDesc desc;
    kv::Reference<Substance> material{new Substance};

    explicit Scene(int numInputs) {
        for (int i = 0; i < numInputs; ++i) {
            auto input = std::make_unique<SubstanceAir::InputDescNumerical<float>>();
            input->uid = 1000u + static_cast<unsigned int>(i);
            input->identifier = "input_" + std::to_string(i);
            material->newInput(input->uid, input->identifier.c_str(), kvSubstance::TypeFloat1);
            desc.inputs.push_back(std::move(input));
        }
        material->getGraphInstances().push_back(boost::make_shared<SubstanceAir::GraphInstance>(desc));
    }
    ~Scene() { material.reset(); } // before the description, which its graph instance refers to

    kvString::CString stateWith(float value) {
        for (const auto& identifier : material->getInputIds())
            material->getInput(identifier)->setValueF(value, 0);
        return material->getStateString();
    }
};

// Every line of the state changes a value.
void applyState(benchmark::State& state) {
    Scene scene(static_cast<int>(state.range(0)));
    const kvString::CString states[] = {scene.stateWith(0.25f), scene.stateWith(0.75f)};
    size_t turn = 0;
    for (auto _ : state) scene.material->applyStateString(states[turn++ % 2]);
}

void writeState(benchmark::State& state) {
    Scene scene(static_cast<int>(state.range(0)));
    for (auto _ : state) benchmark::DoNotOptimize(scene.material->getStateString());
}

// Every input has changed since it was synchronised last; the edits themselves are not timed.
void synchroniseEach(benchmark::State& state) {
    Scene scene(static_cast<int>(state.range(0)));
    std::vector<kvSubstance::SubstanceInput*> inputs;
    for (const auto& identifier : scene.material->getInputIds())
        inputs.push_back(scene.material->getInput(identifier));
    float value = 0;
    for (auto _ : state) {
        state.PauseTiming();
        value += 1;
        for (kvSubstance::SubstanceInput* const input : inputs) input->setValueF(value, 0);
        state.ResumeTiming();
        for (kvSubstance::SubstanceInput* const input : inputs)
            kvSubstance::syncValueFromSubstanceInputToInputInstanceBase(scene.material, input);
    }
}

BENCHMARK(applyState)->Arg(FewInputs)->Arg(ManyInputs)->Repetitions(9)->ReportAggregatesOnly();
BENCHMARK(writeState)->Arg(FewInputs)->Arg(ManyInputs)->Repetitions(9)->ReportAggregatesOnly();
BENCHMARK(synchroniseEach)->Arg(FewInputs)->Arg(ManyInputs)->Repetitions(9)->ReportAggregatesOnly();

// Prints the usual table and keeps the medians.
class Reporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs)
            if (run.aggregate_name == "median")
                medians[run.run_name.function_name][run.run_name.args] = run.GetAdjustedCPUTime();
        ConsoleReporter::ReportRuns(runs);
    }

    // False when one grows faster than it may.
    bool printRatios() const {
        bool isFine = true;
        for (const auto& [name, times] : medians) {
            const auto few = times.find(std::to_string(FewInputs));
            const auto many = times.find(std::to_string(ManyInputs));
            if (few == times.end() || many == times.end()) continue;
            const double ratio = many->second / few->second;
            std::printf("%-16s %d inputs take %5.2f times as long as %d (at most %.0f)\n", name.c_str(),
                        ManyInputs, ratio, FewInputs, LargestRatio);
            isFine = isFine && ratio <= LargestRatio;
        }
        return isFine;
    }

private:
    std::map<std::string, std::map<std::string, double>> medians; // by name, then by number of inputs
};

} // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
    Reporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return reporter.printRatios() ? 0 : 1;
}
