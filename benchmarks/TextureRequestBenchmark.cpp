// A texture request after an edit, with an engine that delivers at once: what remains is the library's.
//
// The floor is what such a request cannot do without: the start of a thread, a handshake over condition
// variables that gives it work and one that tells of its end, and the thread's join; by the standard library.
// Times are those of the wall clock, as there are two threads.
#include "benchmarks/IdlePlatform.h"
#include "benchmarks/LibraryBenchmarks.h"
#include "benchmarks/PackageText.h"
#include "bridge/Bridge.h"

#include <condition_variable>
#include <mutex>
#include <stdexcept>
#include <thread>

namespace benchmarks {

namespace {

constexpr int Inputs = 20;
constexpr unsigned int UidsPerMaterial = 1000;

// Every material has packages of its own.
unsigned int freshUids() {
    static unsigned int last = 1000000;
    return last += UidsPerMaterial;
}

kv::vector<char> packageBytes(const std::string& text) {
    return {text.c_str(), text.c_str() + text.size() + 1};
}

// Only the floats and outputs of the top are the engine's, too.
kv::Reference<kvSubstance::Substance> makeMaterial(int outputs) {
    const unsigned int uid = freshUids();
    EngineProgram program;
    for (int i = 0; i < outputs; ++i) program.outputUids.push_back(uid + static_cast<unsigned int>(i));
    for (int i = 0; i < Inputs; ++i)
        if (inputTypeAt(i) == SubstanceAir::Float)
            program.inputUids.push_back(uid + static_cast<unsigned int>(outputs + i));
    setEngineProgram(program);
    return kvSubstance::createSubstance(packageBytes(packageText(freshUids(), 0, 1)),
                                        packageBytes(packageText(uid, Inputs, outputs)));
}

Piece requestTexture(int outputs) {
    const auto material = makeMaterial(outputs);
    kvSubstance::getTextureFromSubstance(material.get()); // with the program that was set for it
    kvSubstance::SubstanceInput* const input = material->getInput("parameter_0");
    return {[material, input, value = 0.0f]() mutable {
                const auto before = material->getCachedTexture();
                value = value < 1000 ? value + 1 : 0;
                input->setValueF(value, 0);
                kvSubstance::syncValueFromSubstanceInputToInputInstanceBase(material, input);
                const auto texture = kvSubstance::getTextureFromSubstance(material.get());
                if (!texture || texture.get() == before.get()) throw std::runtime_error("no new texture");
            },
            {}};
}

Piece startHandshakeJoin(int) {
    return {[] {
                std::mutex mutex;
                std::condition_variable wake;
                std::condition_variable done;
                bool pending = false;
                std::thread thread([&] {
                    std::unique_lock<std::mutex> lock(mutex);
                    wake.wait(lock, [&] { return pending; });
                    pending = false;
                    done.notify_one();
                });
                {
                    std::unique_lock<std::mutex> lock(mutex);
                    pending = true;
                    wake.notify_one();
                    done.wait(lock, [&] { return !pending; });
                }
                thread.join();
            },
            {}};
}

} // namespace

void addTextureRequest() {
    add({"request a texture", "outputs", {1, 10}, requestTexture, startHandshakeJoin, 1.5, 0, Clock::Wall});
}

} // namespace benchmarks
