// How the time to restore and to synchronise a material grows with its number of inputs. Both are to grow in
// proportion: ten times the inputs in at most thirteen times the time.
#include "bridge/Synchronisation.h"
#include "framework/description/GraphDesc.h"
#include "framework/render/GraphInstance.h"
#include "material/Substance.h"

#include <benchmark/benchmark.h>

#include <boost/make_shared.hpp>

#include <algorithm>
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

// A material of float inputs over one graph instance, without packages; made in the order in which loading
// makes its parts.
struct Scene {
    SubstanceAir::GraphDesc desc;
    kv::Reference<Substance> material{new Substance};

    explicit Scene(int numInputs) {
        for (int i = 0; i < numInputs; ++i) {
            auto input = std::make_unique<SubstanceAir::InputDescNumerical<float>>();
            input->uid = 1000u + static_cast<unsigned int>(i);
            input->identifier = "input_" + std::to_string(i);
            desc.inputs.push_back(std::move(input));
        }
        material->getGraphInstances().push_back(boost::make_shared<SubstanceAir::GraphInstance>(desc));
        for (const auto& input : desc.inputs)
            material->newInput(input->uid, input->identifier.c_str(), kvSubstance::TypeFloat1);
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

// The shortest repetition is the one that other work on the machine disturbed least.
double shortest(const std::vector<double>& times) {
    return *std::min_element(times.begin(), times.end());
}

void inBothSizes(benchmark::internal::Benchmark* benchmark) {
    benchmark->Arg(FewInputs)->Arg(ManyInputs)->Repetitions(15)->ReportAggregatesOnly();
    benchmark->ComputeStatistics("shortest", shortest);
}

BENCHMARK(applyState)->Apply(inBothSizes);
BENCHMARK(writeState)->Apply(inBothSizes);
BENCHMARK(synchroniseEach)->Apply(inBothSizes);

// Prints the usual table and keeps the shortest times.
class Reporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs)
            if (run.aggregate_name == "shortest")
                shortestTimes[run.run_name.function_name][run.run_name.args] = run.GetAdjustedCPUTime();
        ConsoleReporter::ReportRuns(runs);
    }

    // False when one grows faster than it may.
    bool printRatios() const {
        bool isFine = true;
        for (const auto& [name, times] : shortestTimes) {
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
    std::map<std::string, std::map<std::string, double>> shortestTimes; // by name, then by number of inputs
};

} // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
    Reporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return reporter.printRatios() ? 0 : 1;
}
