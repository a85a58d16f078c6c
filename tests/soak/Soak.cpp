// Random operations of several hosts' threads for a long time: memory, threads and handles stay what they are
// once everything has been used. Kept apart are the packages and stacks of materials made from bytes, which
// live as long as the process: materials that come and go share one stack.
//
//   soak [SECONDS [SEED]]
#include "bridge/Bridge.h"
#include "bridge/InputCreation.h"
#include "embedded/compiler/Compiler.h"
#include "framework/description/PackageDesc.h"
#include "framework/render/GraphInstance.h"
#include "framework/render/PackageStackDesc.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace kvSubstance;
using SubstanceAir::PackageDesc;
using Clock = std::chrono::steady_clock;
using Image = kv::TempReference<ilSIDImage>;

constexpr int hosts = 3;
constexpr int intervals = 20;
constexpr int warmUpIntervals = 5;

std::atomic<bool> isOver{false};
std::atomic<long> operations{0};
std::atomic<long> textures{0};

// A sample, small by default.
std::vector<char> compileSample(const std::string& name) {
    std::ifstream file(KVSUBSTANCE_SAMPLES "/" + name + ".xml");
    std::string source((std::istreambuf_iterator<char>(file)), {});
    const size_t at = source.find(R"(default="9,9")"); // the resolution
    if (at != std::string::npos) source.replace(at, 13, R"(default="5,5")");
    const embedded::CompileResult result = embedded::compilePackage(source);
    if (result.package.empty()) throw std::runtime_error(name + " cannot be compiled");
    return {result.package.begin(), result.package.end()};
}

// What one thread does, with materials of its own.
class Host {
public:
    Host(const char* bottom, const char* top, unsigned int seed)
        : random(seed)
        , bottomBytes(compileSample(bottom))
        , bottomPackage(bottomBytes.data(), bottomBytes.size(), nullptr)
        , topBytes(compileSample(top))
        , topPackage(topBytes.data(), topBytes.size(), nullptr)
        , stack(bottomPackage.graphs().at(0), topPackage.graphs().at(0), SubstanceAir::ConnectionList())
        , lasting(createSubstance(&bottomPackage, &topPackage)) {}

    void run() {
        while (!isOver) {
            step();
            ++operations;
        }
    }

    // The values that the host's edits have led to show in the texture.
    bool isTextureRight() {
        const kvString::CString state = lasting->getStateString();
        lasting->applyStateString(state);
        const kv::Reference<Substance> fresh = createSubstance(&bottomPackage, &topPackage);
        fresh->applyStateString(state);
        return !pixels(lasting).empty() && pixels(lasting) == pixels(fresh);
    }

private:
    static std::vector<unsigned char> pixels(const kv::Reference<Substance>& material) {
        const Image image = getTextureFromSubstance(material.get());
        if (!image) return {};
        return {image->getBytes(), image->getBytes() + 4L * image->getSize().x * image->getSize().y};
    }
    int below(int bound) { return std::uniform_int_distribution<int>(0, bound - 1)(random); }

    void step() {
        const int kind = below(10);
        if (kind == 0) return makeAndDrop();
        if (kind == 1) return editSystem();
        if (kind == 2) return lasting->applyStateString(saved);
        if (kind == 3) saved = lasting->getStateString();
        if (kind < 6) return render(lasting);
        edit(lasting);
    }

    void render(const kv::Reference<Substance>& material) {
        image = getTextureFromSubstance(material.get());
        ++textures;
    }

    void edit(const kv::Reference<Substance>& material) {
        const auto& ids = material->getInputIds();
        SubstanceInput* const input =
            material->getInput(ids[static_cast<unsigned>(below(static_cast<int>(ids.size())))]);
        if (input->getIdentifier().asChar()[0] == '$') return;
        const int component = below(input->getType() & 7);
        if (input->getType() & 0x20)
            input->setValueI(below(8), component);
        else
            input->setValueF(static_cast<float>(below(101)) / 100, component);
        syncValueFromSubstanceInputToInputInstanceBase(material, input);
    }

    // Only of the material that has its stack for itself: materials that share one, and part, leave their
    // engine handle to those that stay.
    void editSystem() {
        SubstanceInput* const size = lasting->getInput("$resolution");
        size->setValue2I(4 + below(4), 4 + below(4));
        syncValueFromSubstanceInputToInputInstanceBase(lasting, size);
    }

    void makeAndDrop() {
        const kv::Reference<Substance> material(new Substance);
        SubstanceAir::instantiateGraphs(material->getGraphInstances(), stack);
        for (const auto& input : material->getGraphInstances().front()->inputs)
            createInput(*material, *input);
        material->setPackageDesc(&stack, &bottomPackage, &topPackage);
        for (int i = below(4); i > 0; --i) edit(material);
        if (below(2) == 0) render(material);
    }

    std::mt19937 random;
    const std::vector<char> bottomBytes;
    PackageDesc bottomPackage;
    const std::vector<char> topBytes;
    PackageDesc topPackage;
    SubstanceAir::PackageStackDesc stack;
    const kv::Reference<Substance> lasting;
    kvString::CString saved;
    Image image; // outlives the next edits
};

struct Usage {
    const char* name;
    long mostGrowth; // after the warm-up
    long now = 0;
    long warm = 0;
};

void measure(Usage& resident, Usage& threads, Usage& handles) {
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        if (word == "VmRSS:") status >> resident.now;
        if (word == "Threads:") status >> threads.now;
    }
    status.close();
    const std::filesystem::directory_iterator all("/proc/self/fd"), none;
    handles.now = std::distance(all, none);
}

// Prints a line for each interval. False when something has grown.
bool watch(std::chrono::milliseconds duration) {
    const Clock::time_point start = Clock::now();
    Usage usages[] = {{"KiB", 16 * 1024}, {"threads", 1}, {"handles", 0}}; // a render thread comes and goes
    for (int interval = 1; interval <= intervals; ++interval) {
        std::this_thread::sleep_until(start + duration * interval / intervals);
        measure(usages[0], usages[1], usages[2]);
        std::printf("%3d of %d", interval, intervals);
        bool hasGrown = false;
        for (Usage& usage : usages) {
            if (interval <= warmUpIntervals) usage.warm = std::max(usage.warm, usage.now);
            const bool isTooMuch = usage.now > usage.warm + usage.mostGrowth;
            std::printf("  %7ld %s%s", usage.now, usage.name, isTooMuch ? ", which is too much" : "");
            hasGrown = hasGrown || isTooMuch;
        }
        std::printf("  %9ld operations  %7ld textures\n", operations.load(), textures.load());
        std::fflush(stdout);
        if (hasGrown) return false;
    }
    return true;
}

void soak(int seconds, unsigned int seed) {
    std::printf("soak: %d s, seed %u\n", seconds, seed);
    std::vector<std::unique_ptr<Host>> all;
    const char* const samples[hosts][2] = {{"bottoms/brick_wall", "tops/moss_overgrowth"},
                                           {"bottoms/marble", "tops/edge_wear"},
                                           {"bottoms/wood", "tops/snow_cover"}};
    for (const auto& [bottom, top] : samples)
        all.push_back(std::make_unique<Host>(bottom, top, seed + static_cast<unsigned>(all.size())));
    std::vector<std::thread> threads;
    threads.reserve(hosts);
    for (const auto& host : all) threads.emplace_back([&host] { host->run(); });
    const bool isSteady = watch(std::chrono::seconds(seconds));
    isOver = true;
    for (std::thread& thread : threads) thread.join();
    if (!isSteady) throw std::runtime_error("something has grown");
    for (const auto& host : all)
        if (!host->isTextureRight())
            throw std::runtime_error("a texture is not what its material's values give");
    std::printf("soak: %ld operations and %ld textures on %d threads, nothing grew\n", operations.load(),
                textures.load(), hosts);
}

} // namespace

int main(int argc, char** argv) {
    try {
        const int seconds = argc > 1 ? std::stoi(argv[1]) : 600;
        const unsigned int seed =
            argc > 2 ? static_cast<unsigned int>(std::stoul(argv[2])) : std::random_device()();
        setenv("KVSUBSTANCE_ENGINE_MEMORY", "32", 1); // MiB of images, which the engine keeps: soon reached
        soak(seconds, seed);
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "soak: %s\n", failure.what());
        return 1;
    }
}
