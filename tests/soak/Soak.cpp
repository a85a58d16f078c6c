// Random operations of several hosts' threads for a long time: memory, threads and handles stay what they are
// once everything has been used. Kept apart are the packages and stacks of materials made from bytes, which
// live as long as the process: materials that come and go share one stack.
//
//   soak [SECONDS [SEED]]
#include "bridge/InputCreation.h"
#include "framework/description/PackageDesc.h"
#include "framework/render/GraphInstance.h"
#include "framework/render/PackageStackDesc.h"
#include "tests/Compiled.h"
#include "tests/ReadFile.h"

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
#include <random>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace kvSubstance;
using hosting::Image;
using hosting::Material;
using SubstanceAir::PackageDesc;
using Clock = std::chrono::steady_clock;

constexpr int hosts = 3;
constexpr int intervals = 20;
constexpr int warmUpIntervals = 5;

std::atomic<bool> isOver{false};
std::atomic<long> operations{0};
std::atomic<long> textures{0};

// A sample, small by default.
PackageDesc load(const std::string& name) {
    std::string source = readFile(KVSUBSTANCE_SAMPLES "/" + name + ".xml");
    const size_t at = source.find(R"(default="9,9")"); // the resolution
    if (at != std::string::npos) source.replace(at, 13, R"(default="5,5")");
    const kv::vector<char> bytes = hosting::compile(source);
    return PackageDesc(bytes.data(), bytes.size(), nullptr);
}

// What one thread does, with materials of its own.
class Host {
public:
    Host(const char* bottom, const char* top, unsigned int seed)
        : random(seed)
        , bottomPackage(load(bottom))
        , topPackage(load(top))
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
        const Material fresh = createSubstance(&bottomPackage, &topPackage);
        fresh->applyStateString(state);
        const std::string pixels = hosting::pixels(hosting::render(lasting));
        return !pixels.empty() && pixels == hosting::pixels(hosting::render(fresh));
    }

private:
    int below(int bound) { return std::uniform_int_distribution<int>(0, bound - 1)(random); }

    void step() {
        const int kind = below(10);
        if (kind == 0) return makeAndDrop();
        // Only of the material that has its stack for itself: materials that share one, and part, leave their
        // engine handle to those that stay.
        if (kind == 1) return hosting::setValue(lasting, "$resolution", static_cast<float>(4 + below(4)));
        if (kind == 2) return lasting->applyStateString(saved);
        if (kind == 3) saved = lasting->getStateString();
        if (kind < 6) return render(lasting);
        edit(lasting);
    }

    // Hosts that keep a material for hours take what stands behind its texture, or it waits there.
    void render(const Material& material) {
        image = hosting::render(material);
        for (const auto& output : material->getGraphInstances().front()->outputs)
            while (output->grabResult()) {
            }
        ++textures;
    }

    void edit(const Material& material) {
        const auto& identifiers = material->getInputIds();
        const int chosen = below(static_cast<int>(identifiers.size()));
        const char* const identifier = identifiers[static_cast<unsigned int>(chosen)].asChar();
        if (*identifier != '$') hosting::setValue(material, identifier, static_cast<float>(below(200)) / 100);
    }

    void makeAndDrop() {
        const Material material(new Substance);
        SubstanceAir::instantiateGraphs(material->getGraphInstances(), stack);
        for (const auto& input : material->getGraphInstances().front()->inputs)
            createInput(*material, *input);
        material->setPackageDesc(&stack, &bottomPackage, &topPackage);
        for (int i = below(4); i > 0; --i) edit(material);
        if (below(2) == 0) render(material);
    }

    std::mt19937 random;
    PackageDesc bottomPackage, topPackage;
    SubstanceAir::PackageStackDesc stack;
    const Material lasting;
    kvString::CString saved;
    Image image; // outlives the next edits
};

// Resident memory in KiB, threads, and handles.
using Usage = std::array<long, 3>;
constexpr Usage mostGrowth = {16 * 1024, 1, 0}; // after the warm-up; a render thread comes and goes

Usage measure() {
    Usage now{};
    {
        std::ifstream status("/proc/self/status");
        for (std::string word; status >> word;) {
            if (word == "VmRSS:") status >> now[0];
            if (word == "Threads:") status >> now[1];
        }
    }
    now[2] = std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
    return now;
}

// Prints a line for each interval. False when something has grown.
bool watch(std::chrono::milliseconds duration) {
    const Clock::time_point start = Clock::now();
    Usage warm{};
    for (int interval = 1; interval <= intervals; ++interval) {
        std::this_thread::sleep_until(start + duration * interval / intervals);
        const Usage now = measure();
        std::printf("%3d of %d  %7ld KiB  %3ld threads  %3ld handles  %9ld operations  %7ld textures\n",
                    interval, intervals, now[0], now[1], now[2], operations.load(), textures.load());
        std::fflush(stdout);
        for (size_t k = 0; k < now.size(); ++k) {
            if (interval <= warmUpIntervals) warm[k] = std::max(warm[k], now[k]);
            if (now[k] > warm[k] + mostGrowth[k]) return false;
        }
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
