// Any sequence of calls on small materials that share a stack of two packages, while the linker and the
// engine fail, stay silent, repeat themselves or give unusable textures where the input says. Nothing is used
// after its end, everything is given back once, and afterwards, with engine and linker in order again, every
// material gets a texture of its last values.
#include "bridge/Bridge.h"
#include "framework/description/PackageDesc.h"
#include "framework/render/PackageStackDesc.h"
#include "fuzzers/Model.h"
#include "tests/ReadFile.h"
#include "tests/recording/RecordingState.h"

#include <boost/make_shared.hpp>

#include <array>
#include <iterator>
#include <sstream>
#include <thread>

namespace {

using namespace fuzzing;
using namespace kvSubstance;
using SubstanceAir::PackageDesc;

// What may fail, without the "substance" that all names begin with.
std::vector<std::string> functions() {
    std::istringstream names(
        "LinkerContextInit LinkerContextSetCallback LinkerHandleInit LinkerHandlePushAssemblyMemory "
        "LinkerHandleSetOutputFormat LinkerConnectOutputToInput LinkerHandleSelectOutputs LinkerFuseInputs "
        "LinkerHandleLink ContextInit ContextSetCallback HandleInit HandleGetDesc HandleGetInputDesc "
        "HandleGetOutputDesc HandleGetOutputs HandlePushSetInput HandlePushOutputs HandleStart");
    return {std::istream_iterator<std::string>(names), {}};
}

// What the engine does in a start in place of its work.
enum OddStart { Silent, FailsLate, FailsHalfWay, Backwards, Threaded, ForNobody, Unasked, OddStarts };

unsigned int startOddly(unsigned int how, const recording::Start& start) {
    std::vector<recording::Report> told;
    for (const recording::Report& each : start.reports) {
        if (how == Silent || (how == FailsHalfWay && !told.empty())) break;
        told.push_back(each);
        if (how == Backwards) told.push_back(each); // and twice
        if (how == ForNobody) told.push_back({each.output, nullptr});
        for (unsigned int output = 0; output < start.handle->program.outputs.size(); ++output)
            if (how == Unasked) told.push_back({output, each.job});
    }
    if (how == Backwards) std::reverse(told.begin(), told.end());
    const auto tell = [&] {
        for (const recording::Report& each : told) start.report(each);
    };
    if (how == Threaded)
        std::thread(tell).join();
    else
        tell();
    return how == FailsLate || how == FailsHalfWay ? 7 : 0;
}

void setTexture(Choices& choices) {
    recording::Texture texture;
    const unsigned int shape = choices.byte();
    texture.width = shape % 5;
    texture.height = shape / 5 % 5;
    texture.hasBuffer = shape / 25 % 4 != 0;
    texture.format = static_cast<int>(choices.below(3)) - 1;
    recording::setTexture(texture);
}

void setValue(SubstanceInput& input, Choices& choices) {
    const auto numbers = choices.raw<std::array<signed char, 4>>();
    for (int k = 0; k < (input.getType() & 7); ++k) {
        const signed char number = numbers.at(static_cast<std::size_t>(k));
        if (input.getType() & 0x20)
            input.setValueI(number, k);
        else
            input.setValueF(static_cast<float>(number) / 4, k);
    }
}

void setImage(SubstanceAir::GraphInstance& graph, unsigned int side) {
    static constexpr std::array<unsigned char, 8> pixels = {1, 2, 3, 4, 5, 6, 7, 8};
    auto& mask = dynamic_cast<SubstanceAir::InputInstanceImage&>(*graph.findInput("mask"));
    const SubstanceTextureInput image{pixels.data(), static_cast<unsigned short>(side), 1, 0, 0, 1};
    mask.setImage(side == 0 ? nullptr : boost::make_shared<SubstanceAir::InputImage>(image));
}

class World {
public:
    World(PackageDesc& bottom, PackageDesc& top)
        : bottom_(bottom)
        , top_(top)
        , stack_(bottom.graphs().at(0), top.graphs().at(0), SubstanceAir::ConnectionList()) {}

    void step(Choices& choices) {
        const unsigned int kind = choices.below(16);
        if (kind == 0) {
            static const std::vector<std::string> names = functions();
            const std::string& name = names.at(choices.below(names.size()));
            return recording::fail("substance" + name, 1 + choices.below(16));
        }
        if (kind == 1)
            return recording::onNextStart([how = choices.below(OddStarts)](const recording::Start& start) {
                return startOddly(how, start);
            });
        if (kind == 2) return setTexture(choices);
        kv::Reference<Substance>& slot = materials_.at(choices.below(materials_.size()));
        if (kind == 3) return create(slot);
        if (slot) change(kind, slot, choices);
    }

    // With nothing failing any more. Textures hold as text what they were computed from.
    void checkThatTexturesCome() {
        recording::Texture texture;
        texture.width = 512;
        texture.format = 0;
        texture.pixels.clear();
        recording::setTexture(texture);
        int value = 1000; // more than setValue gives
        for (const auto& material : materials_) {
            if (!material) continue;
            for (const auto& output : material->getGraphInstances().front()->outputs) output->enabled = true;
            SubstanceInput* const pick = material->getInput("pick"); // alters all outputs
            pick->setValueF(static_cast<float>(++value), 0);
            syncValueFromSubstanceInputToInputInstanceBase(material, pick);
            const auto image = getTextureFromSubstance(material.get());
            require(static_cast<bool>(image), "a texture comes once nothing fails");
            const std::string text(reinterpret_cast<const char*>(image->getBytes()), 4 * texture.width);
            require(text.find("top.pick Float, " + std::to_string(value)) != std::string::npos,
                    "the texture is of the last values");
        }
    }

private:
    // As createSubstance does it, but for the stack, which all share: there each stays to the process's end.
    void create(kv::Reference<Substance>& slot) {
        std::vector<boost::shared_ptr<SubstanceAir::GraphInstance>> graphs;
        SubstanceAir::instantiateGraphs(graphs, stack_);
        slot = materialOf(graphs.at(0));
        slot->setPackageDesc(&stack_, &bottom_, &top_);
    }

    void change(unsigned int kind, kv::Reference<Substance>& slot, Choices& choices) {
        const kv::Reference<Substance> material = slot; // held for the length of the step, as hosts do
        const auto& ids = material->getInputIds();
        SubstanceInput* const input = material->getInput(ids[choices.below(ids.size())]);
        SubstanceAir::GraphInstance& graph = *material->getGraphInstances().front();
        SubstanceAir::OutputInstance& output = *graph.outputs.at(choices.below(graph.outputs.size()));
        switch (kind) {
        case 4:
        case 5:
            setValue(*input, choices);
            return syncValueFromSubstanceInputToInputInstanceBase(material, input);
        case 6:
            return setValue(*input, choices);
        case 7:
            return syncValueFromSubstanceInputToInputInstanceBase(material, input->getIndexIdentifier(0));
        case 8:
            if (choices.byte() % 2) saved_ = material->getStateString();
            return material->applyStateString(saved_);
        case 9:
            return material->reset();
        case 10:
            output.enabled = !output.enabled;
            return;
        case 11:
            held_ = output.grabResult();
            return;
        case 12:
            return setImage(graph, choices.below(3));
        case 13:
            slot.reset();
            return;
        default:
            image_ = getTextureFromSubstance(material.get());
        }
    }

    PackageDesc& bottom_;
    PackageDesc& top_;
    SubstanceAir::PackageStackDesc stack_;
    std::array<kv::Reference<Substance>, 3> materials_;
    kvString::CString saved_;
    std::unique_ptr<SubstanceAir::RenderResult> held_;
    kv::TempReference<ilSIDImage> image_;
};

PackageDesc* load(const std::string& name) {
    const std::string description = readFile(KVSUBSTANCE_CALLS_FUZZER "/" + name + ".xml");
    const std::string bytes = recording::packageBytes(description, name);
    return new PackageDesc(bytes.data(), bytes.size(), nullptr);
}

// What the double never forgets by itself would fill the memory.
void endRecording() {
    recording::State& state = recording::state();
    require(recording::misuses().empty(), "engine and linker are used rightly");
    require(state.buffers.empty(), "every texture is freed");
    for (const auto& object : state.objects) require(object->released, "everything is released");
    state.objects.clear();
    state.linked.clear();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    recording::reset();
    static PackageDesc* const bottom = load("bottom"); // longer than all the rest
    static PackageDesc* const top = load("top");
    {
        Choices choices(data, size);
        World world(*bottom, *top);
        while (!choices.empty()) world.step(choices);
        recording::reset();
        world.checkThatTexturesCome();
    }
    resetRenderer();
    endRecording();
    return 0;
}
