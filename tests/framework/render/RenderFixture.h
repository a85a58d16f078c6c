// A small package and what tests of the renderer do with it.
#pragma once

#include "framework/description/PackageDesc.h"
#include "framework/render/GraphInstance.h"
#include "framework/render/RenderJob.h"
#include "framework/render/RenderThread.h"
#include "framework/render/Renderer.h"
#include "framework/render/RendererAccess.h"
#include "tests/Packages.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <memory>
#include <sstream>
#include <string>

namespace SubstanceAir {

// One graph with the outputs Output and height and the inputs picture, amount and $seed, in the order of
// their uids; the engine has them in another order. The amount alters Output, the others both.
inline PackageDesc testPackage(const std::string& tag) {
    const std::string description = packages::descriptionOf("#0", "pkg://test", R"(<outputs count='2'>
            <output uid='#1' identifier='Output' format='0' mipmaps='1'/>
            <output uid='#2' identifier='height' format='32' mipmaps='0'/>
        </outputs><inputs count='3'>
            <input uid='#5' identifier='$seed' type='4' default='3' alteroutputs='#1,#2'/>
            <input uid='#4' identifier='amount' type='0' default='0.5' alteroutputs='#1'/>
            <input uid='#3' identifier='picture' type='5' alteroutputs='#1,#2'/></inputs>)");
    const std::string bytes = packages::bytes(packages::withFreshUids(description), tag);
    return PackageDesc(bytes.data(), bytes.size(), nullptr);
}

class TestGraph : public GraphInstance {
public:
    explicit TestGraph(const PackageDesc& package)
        : GraphInstance(package.graphs().at(0)) {}

    OutputInstance& output() { return *outputs[0]; }
    OutputInstance& height() { return *outputs[1]; }
    auto& picture() { return dynamic_cast<InputInstanceImage&>(*findInput("picture")); }
    auto& amount() { return dynamic_cast<InputInstanceNumerical<float>&>(*findInput("amount")); }
    auto& seed() { return dynamic_cast<InputInstanceNumerical<int>&>(*findInput("$seed")); }

    // Takes the results: for each output their number, and whether it is out of date.
    std::string take() {
        std::string text;
        for (const auto& each : outputs) {
            int count = 0;
            while (each->grabResult()) ++count;
            text += each->desc.identifier + " " + std::to_string(count) + (each->dirty ? " dirty; " : "; ");
        }
        return text;
    }
};

inline void pushJobs(std::initializer_list<GraphInstance*> graphs) {
    RendererAccess access;
    for (GraphInstance* const graph : graphs)
        if (auto job = makeRenderJob(*graph)) access->pushJob(std::move(job));
}

inline void render(std::initializer_list<GraphInstance*> graphs) {
    startRenderThread();
    pushJobs(graphs);
    requestRender();
    waitRenderDone();
    stopRenderThread();
}

// The lines that contain one of the words, without the name of the thread.
inline std::string linesWith(const std::string& trace, std::initializer_list<const char*> words) {
    std::istringstream lines(trace);
    std::string kept;
    for (std::string line; std::getline(lines, line);)
        for (const char* const word : words)
            if (line.find(word) != std::string::npos) {
                kept += line.substr(line.find(": ") + 2) + "\n";
                break;
            }
    return kept;
}

// A graph that was never rendered. The renderer and the engine context are there already, so that traces are
// the same in any order of tests.
class RendererTest : public testing::Test {
protected:
    void SetUp() override {
        {
            const PackageDesc warmup = testPackage("warmup");
            TestGraph first(warmup);
            render({&first});
        }
        packages::beginTest();
    }
    void TearDown() override { EXPECT_EQ(packages::faults(), ""); }

    const PackageDesc package = testPackage("p");
    TestGraph graph{package};
};

} // namespace SubstanceAir
