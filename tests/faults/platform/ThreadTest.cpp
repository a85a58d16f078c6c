// Several threads of a host at once, within the rules: a material belongs to one thread at a time, packages
// are built one at a time, anything else goes side by side.
#include "tests/recording/Host.h"

#include "framework/description/PackageDesc.h"
#include "tests/bridge/TestPackages.h"

#include <atomic>
#include <cstdlib>
#include <functional>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

namespace recording {

namespace {

// Runs them side by side, all from the same moment on.
void runTogether(const std::vector<std::function<void()>>& functions) {
    std::atomic<size_t> arrived{0};
    std::vector<std::thread> threads;
    threads.reserve(functions.size());
    for (const auto& function : functions)
        threads.emplace_back([&] {
            ++arrived;
            while (arrived < functions.size()) std::this_thread::yield();
            function();
        });
    for (std::thread& thread : threads) thread.join();
}

} // namespace

// A thread edits one material, with new state keys and through listeners, while another renders a second one,
// a third makes, renders and destroys packages, materials and graphs, and a fourth takes results as they
// arrive. Requests wait for each other.
TEST_F(HostTest, EditingLoadingAndGrabbingGoOnDuringRenders) {
    const auto edited = loadMaterial("1");
    const auto rendered = loadMaterial("2");
    SubstanceAir::OutputInstance& before = *rendered->getGraphInstances()[0]->outputs[0];
    const auto bytes = kvSubstance::plainPackage();
    constexpr int rounds = 100;
    std::atomic<bool> isRendering{true};
    size_t taken = 0;
    runTogether({[&] {
                     for (int i = 0; i < 5 * rounds; ++i) {
                         setValue(edited, "scale", i);
                         setValue(edited, "$seed", i);
                         edited->applyStateString(edited->getStateString());
                     }
                 },
                 [&] {
                     for (int i = 0; i < rounds; ++i) {
                         setValue(rendered, "amount", i);
                         setValue(rendered, "$seed", i % 3);
                         hosting::render(rendered);
                     }
                     isRendering = false;
                 },
                 [&] {
                     for (int i = 0; i < rounds; ++i) {
                         const SubstanceAir::PackageDesc package(bytes.data(), bytes.size(), nullptr);
                         const SubstanceAir::GraphInstance graph(package.graphs().at(0));
                         const std::string number = std::to_string(10 + i);
                         const auto made = loadMaterial(number);
                         EXPECT_EQ(render(made), pictureOf(3, 1, "0.5", number));
                     }
                 },
                 [&] {
                     while (isRendering)
                         if (before.grabResult()) ++taken;
                 }});
    EXPECT_LE(taken, static_cast<size_t>(rounds)); // the request takes the rest
    EXPECT_EQ(picture(rendered->getCachedTexture()), pictureOf(0, 1, "99", "2"));
    setValue(edited, "scale", 2);
    setValue(edited, "$seed", 2);
    EXPECT_EQ(render(edited), pictureOf(2, 2, "0.5", "1"));
}

#ifdef GTEST_HAS_DEATH_TEST // these need a process of their own

namespace {

// A host's global objects.
struct Globals {
    std::unique_ptr<SubstanceAir::PackageDesc> bottom, top;
    Material material, ofPackages;
    kv::Reference<kvSubstance::SubstanceInput> input;
    Image image;
    std::unique_ptr<SubstanceAir::RenderResult> result;
};

// Made before the library's static objects, and so destroyed after them; and the other way round.
#if defined(_MSC_VER)
#pragma init_seg(lib)
Globals early;
#else
__attribute__((init_priority(102))) Globals early;
#endif

Globals& late() {
    static Globals globals;
    return globals;
}

void fill(Globals& globals, const std::string& number) {
    const auto package = [&number](const std::string& name) {
        const unsigned int uid = packages::freshUids(2);
        const auto bytes = kvSubstance::packageOf(
            name + number, kvSubstance::outputTag(uid, "Output") + kvSubstance::outputTag(uid + 1, "z"), "");
        return std::make_unique<SubstanceAir::PackageDesc>(bytes.data(), bytes.size(), nullptr);
    };
    globals.material = loadMaterial(number);
    globals.input = globals.material->getInput("scale");
    globals.bottom = package("b");
    globals.top = package("t");
    globals.ofPackages = kvSubstance::createSubstance(globals.bottom.get(), globals.top.get());
    kvSubstance::getTextureFromSubstance(globals.material.get());
    globals.image = kvSubstance::getTextureFromSubstance(globals.ofPackages.get());
    globals.result = globals.ofPackages->getGraphInstances().at(0)->outputs.at(1)->grabResult();
    setValue(globals.material, "scale", 2); // and never rendered
    if (!globals.image || !globals.result) std::_Exit(3);
}

[[noreturn]] void useGlobalsAndExit(bool fillEarly, bool fillLate) {
    reset();
    if (fillEarly) fill(early, "1");
    if (fillLate) fill(late(), "2");
    std::exit(0); // where the double looks for what was not given back
}

} // namespace

TEST(ProcessDeathTest, GlobalObjectsMayDieBeforeOrAfterTheLibrary) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    for (const auto& [isEarly, isLate] : {std::pair(true, false), {false, true}, {true, true}})
        EXPECT_EXIT(useGlobalsAndExit(isEarly, isLate), testing::ExitedWithCode(0), "^$");
}

#endif

} // namespace recording
