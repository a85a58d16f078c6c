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
#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <mutex>
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
std::mutex loading; // packages are built one at a time

// A sample, small by default.
std::vector<char> compileSample(const std::string& name) {
    std::ifstream file(KVSUBSTANCE_SAMPLES "/" + name + ".xml");
    std::string source((std::istreambuf_iterator<char>(file)), {});
    const std::string large = R"(type="integer2" default="9,9")";
    const size_t at = source.find(large);
    if (at != std::string::npos) source.replace(at, large.size(), R"(type="integer2" default="5,5")");
    const embedded::CompileResult result = embedded::compilePackage(source);
    if (result.package.empty()) throw std::runtime_error(name + " cannot be compiled");
    return {result.package.begin(), result.package.end()};
}

struct Listener {
    void changed() { ++calls; }
    kvRTB::SignalBase receiver;
    int calls = 0;
};

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
        const Image expected = getTextureFromSubstance(fresh.get());
        const Image image = getTextureFromSubstance(lasting.get());
        if (!expected || !image || image->getSize().x != expected->getSize().x ||
            image->getSize().y != expected->getSize().y)
            return false;
        const long bytes = 4L * image->getSize().x * image->getSize().y;
        return std::equal(image->getBytes(), image->getBytes() + bytes, expected->getBytes());
    }

private:
    int below(int bound) { return std::uniform_int_distribution<int>(0, bound - 1)(random); }

    void step() {
        switch (below(12)) {
        case 0:
            return render(lasting);
        case 1:
            return reload();
        case 2:
            return makeAndDrop();
        case 3:
            saved = lasting->getStateString();
            return;
        case 4:
            return lasting->applyStateString(saved);
        case 5:
            return below(10) == 0 ? lasting->reset() : editSystem();
        case 6:
            for (const auto& output : lasting->getGraphInstances()[0]->outputs) output->grabResult();
            return;
        case 7:
            return listen();
        default:
            return edit(lasting);
        }
    }

    void render(const kv::Reference<Substance>& material) {
        images[static_cast<size_t>(below(4))] = getTextureFromSubstance(material.get());
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

    // Whole or cut.
    void reload() {
        const std::lock_guard<std::mutex> lock(loading);
        const size_t size =
            below(2) == 0 ? topBytes.size() : static_cast<size_t>(below(static_cast<int>(topBytes.size())));
        const PackageDesc package(topBytes.data(), size, nullptr);
        if (!package.graphs().empty()) const SubstanceAir::GraphInstance graph(package.graphs().front());
    }

    void listen() {
        Listener listener;
        const kvRTB::FunctionVoidMember<Listener> callback(&listener, &Listener::changed);
        lasting->getModifiedSignal().connect(callback, listener.receiver);
        edit(lasting);
    }

    std::mt19937 random;
    const std::vector<char> bottomBytes;
    PackageDesc bottomPackage;
    const std::vector<char> topBytes;
    PackageDesc topPackage;
    SubstanceAir::PackageStackDesc stack;
    const kv::Reference<Substance> lasting;
    kvString::CString saved;
    Image images[4];
};

using Usage = std::array<long, 3>;
constexpr std::array<const char*, 3> usageNames = {"resident KiB", "threads", "handles"};
constexpr Usage mostGrowth = {16 * 1024, 1, 0}; // after the warm-up; a render thread comes and goes

Usage measure() {
    Usage usage{};
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        if (word == "VmRSS:") status >> usage[0];
        if (word == "Threads:") status >> usage[1];
    }
    status.close();
    const std::filesystem::directory_iterator all("/proc/self/fd"), none;
    usage[2] = std::distance(all, none);
    return usage;
}

// Prints a line for each interval. False when something has grown.
bool watch(std::chrono::milliseconds duration) {
    const Clock::time_point start = Clock::now();
    Usage warm{};
    for (int interval = 1; interval <= intervals; ++interval) {
        std::this_thread::sleep_until(start + duration * interval / intervals);
        const Usage usage = measure();
        const auto seconds = std::chrono::duration<double>(Clock::now() - start).count();
        std::printf("%6.0f s  %7ld KiB  %2ld threads  %2ld handles  %9ld operations  %7ld textures\n",
                    seconds, usage[0], usage[1], usage[2], operations.load(), textures.load());
        std::fflush(stdout);
        for (size_t i = 0; i < usage.size(); ++i) {
            if (interval <= warmUpIntervals) warm[i] = std::max(warm[i], usage[i]);
            if (usage[i] <= warm[i] + mostGrowth[i]) continue;
            std::printf("soak: %s grew from %ld to %ld, and may grow by %ld\n", usageNames[i], warm[i],
                        usage[i], mostGrowth[i]);
            return false;
        }
    }
    return true;
}

int soak(int seconds, unsigned int seed) {
    std::printf("soak: %d s, seed %u; bounds after %d s: %ld KiB more, 1 thread more, no handle more\n",
                seconds, seed, seconds * warmUpIntervals / intervals, mostGrowth[0]);
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
    if (!isSteady) return 1;
    for (const auto& host : all)
        if (!host->isTextureRight()) {
            std::printf("soak: a texture is not what its material's values give\n");
            return 1;
        }
    std::printf("soak: %ld operations and %ld textures on %d threads, nothing grew\n", operations.load(),
                textures.load(), hosts);
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    try {
        const int seconds = argc > 1 ? std::stoi(argv[1]) : 600;
        const unsigned int seed =
            argc > 2 ? static_cast<unsigned int>(std::stoul(argv[2])) : std::random_device()();
        setenv("KVSUBSTANCE_ENGINE_MEMORY", "32", 1); // MiB of images, which the engine keeps: soon reached
        return soak(seconds, seed);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "soak: %s; expected: soak [SECONDS [SEED]]\n", failure.what());
        return 2;
    }
}
