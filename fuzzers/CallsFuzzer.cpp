// Any sequence of calls on small materials that share a stack of two packages, while the linker and the
// engine fail, stay silent, repeat themselves or give unusable textures where the input says. Nothing is used
// after its end, everything is given back once, and afterwards, with engine and linker in order again, every
// material gets a texture of its last values.
#include "bridge/Bridge.h"
#include "bridge/InputCreation.h"
#include "framework/description/PackageDesc.h"
#include "framework/render/GraphInstance.h"
#include "framework/render/PackageStackDesc.h"
#include "framework/render/RenderJob.h"
#include "fuzzers/Fuzzing.h"
#include "fuzzers/RendererReset.h"
#include "tests/recording/RecordingState.h"

#include <boost/make_shared.hpp>

#include <algorithm>
#include <array>
#include <memory>
#include <thread>
#include <vector>

namespace {

using namespace fuzzing;
using namespace kvSubstance;
using recording::Start;

const char* const bottomDescription =
    "<sbsdescription asmuid='1'><graphs count='1'><graph pkgurl='pkg:/bottom' label='Bottom'><outputs>"
    "<output uid='11' identifier='diffuse'/><output uid='12' identifier='height' format='65'/></outputs>"
    "<inputs><input uid='13' identifier='$seed' type='4' default='1' alteroutputs='11,12'/>"
    "<input uid='14' identifier='scale' type='0' default='2' alteroutputs='11'>"
    "<inputgui widget='slider' label='Scale'><guislider min='0' max='4'/></inputgui></input>"
    "</inputs></graph></graphs></sbsdescription>";

// The input "pick" alters all outputs.
const char* const topDescription =
    "<sbsdescription asmuid='2'><graphs count='1'><graph pkgurl='pkg:/top' label='Top'><outputs>"
    "<output uid='20' identifier='before' format='64'/><output uid='21' identifier='Output'/>"
    "<output uid='22' identifier='after' mipmaps='3'/></outputs><inputs>"
    "<input uid='23' identifier='$seed' type='4' default='1' alteroutputs='20,21,22'/>"
    "<input uid='24' identifier='$resolution' type='8' default='2,2' alteroutputs='20,21,22'/>"
    "<input uid='25' identifier='diffuse' type='5' alteroutputs='21'/>"
    "<input uid='26' identifier='mask' type='5' alteroutputs='21,22'/>"
    "<input uid='27' identifier='pick' type='0' default='0' alteroutputs='20,21,22'>"
    "<inputgui widget='slider' label='Pick'/></input>"
    "<input uid='28' identifier='tint' type='2' default='1,0,0' alteroutputs='21'>"
    "<inputgui widget='color' label='Tint'/></input>"
    "<input uid='29' identifier='offset' type='1' alteroutputs='20'><inputgui widget='angle'/></input>"
    "<input uid='30' identifier='many' type='3' alteroutputs='22'/>"
    "<input uid='31' identifier='counts' type='10' alteroutputs='20,22'/>"
    "<input uid='32' identifier='three' type='9'/>"
    "</inputs></graph></graphs></sbsdescription>";

const std::array<const char*, 19> functions = {"substanceLinkerContextInit",
                                               "substanceLinkerContextSetCallback",
                                               "substanceLinkerHandleInit",
                                               "substanceLinkerHandlePushAssemblyMemory",
                                               "substanceLinkerHandleSetOutputFormat",
                                               "substanceLinkerConnectOutputToInput",
                                               "substanceLinkerHandleSelectOutputs",
                                               "substanceLinkerFuseInputs",
                                               "substanceLinkerHandleLink",
                                               "substanceContextInit",
                                               "substanceContextSetCallback",
                                               "substanceHandleInit",
                                               "substanceHandleGetDesc",
                                               "substanceHandleGetInputDesc",
                                               "substanceHandleGetOutputDesc",
                                               "substanceHandleGetOutputs",
                                               "substanceHandlePushSetInput",
                                               "substanceHandlePushOutputs",
                                               "substanceHandleStart"};

// What the engine does in its next start in place of its work.
std::function<unsigned int(const Start&)> oddStart(unsigned int kind) {
    switch (kind) {
    case 0: // stays silent
        return [](const Start&) { return 0u; };
    case 1: // fails when it is done
        return [](const Start& start) {
            start.reportAll();
            return 7u;
        };
    case 2: // fails half way
        return [](const Start& start) {
            if (!start.reports.empty()) start.report(start.reports.front());
            return 7u;
        };
    case 3: // backwards and twice
        return [](const Start& start) {
            for (auto report = start.reports.rbegin(); report != start.reports.rend(); ++report) {
                start.report(*report);
                start.report(*report);
            }
            return 0u;
        };
    case 4: // from a thread of its own
        return [](const Start& start) {
            std::thread([&start] { start.reportAll(); }).join();
            return 0u;
        };
    case 5: // for nobody
        return [](const Start& start) {
            for (const auto& report : start.reports) start.report({report.output, nullptr});
            return start.reportAll();
        };
    default: // what nobody asked for
        return [](const Start& start) {
            for (const auto& report : start.reports)
                for (unsigned int output = 0; output < start.handle->program.outputs.size(); ++output)
                    start.report({output, report.job});
            return 0u;
        };
    }
}

bool isOf(const SubstanceAir::GraphInstance& graph, const SubstanceAir::RenderJob& job) {
    return std::any_of(job.outputs.begin(), job.outputs.end(), [&](const auto* output) {
        return output->desc.identifier == "Output" &&
               std::any_of(graph.outputs.begin(), graph.outputs.end(),
                           [&](const auto& own) { return own.get() == output; });
    });
}

// Gives the textures of each start their number as pixels, and notes in which one the graph's texture was
// asked for with that value of "pick".
class Watch {
public:
    Watch(const SubstanceAir::GraphInstance& graph, float pick)
        : graph_(graph)
        , pick_(pick) {
        watchNext();
    }
    ~Watch() { recording::onNextStart(nullptr); }
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;

    unsigned int pixelsOfPick() const { return pixelsOfPick_; }

private:
    void watchNext() {
        recording::onNextStart([this](const Start& start) {
            recording::Texture texture;
            texture.format = 0;
            texture.pixels = {static_cast<unsigned char>(++starts_)};
            recording::setTexture(texture);
            for (const auto& report : start.reports) note(*static_cast<SubstanceAir::RenderJob*>(report.job));
            start.reportAll();
            watchNext();
            return 0u;
        });
    }

    void note(const SubstanceAir::RenderJob& job) {
        if (!isOf(graph_, job)) return;
        for (const SubstanceAir::InputValueSnapshot& input : job.inputs) {
            float value = 0;
            if (input.uid != pickUid) continue;
            std::memcpy(&value, input.value.data(), sizeof value);
            if (value == pick_) pixelsOfPick_ = starts_;
        }
    }

    static constexpr unsigned int pickUid = 27;
    const SubstanceAir::GraphInstance& graph_;
    const float pick_;
    unsigned int starts_ = 0;
    unsigned int pixelsOfPick_ = 0;
};

class World {
public:
    World()
        : stack_(graphOf(bottomPackage()), graphOf(topPackage()), SubstanceAir::ConnectionList()) {}

    void step(Choices& choices) {
        const unsigned int kind = choices.below(16);
        if (kind == 0) return fail(choices);
        if (kind == 1) return recording::onNextStart(oddStart(choices.below(7)));
        if (kind == 2) return setTexture(choices);
        if (kind == 3) return create(choices.below(slots));
        kv::Reference<Substance>& slot = materials_[choices.below(slots)];
        if (!slot) return;
        // Keeps the material for the length of the step, as hosts do.
        const kv::Reference<Substance> material = slot;
        change(kind, material, slot, choices);
    }

    // With nothing failing any more. Each start of the engine gives pixels of its own, so that a texture
    // tells which values it was made from.
    void checkThatTexturesCome() {
        for (const auto& material : materials_) {
            if (!material) continue;
            SubstanceAir::GraphInstance& graph = *material->getGraphInstances().front();
            for (const auto& output : graph.outputs) output->enabled = true;
            SubstanceInput* const pick = material->getInput("pick");
            pick->setValueF(pick->getValueF(0) == 5.0f ? 6.0f : 5.0f, 0);
            syncValueFromSubstanceInputToInputInstanceBase(material, pick);
            const Watch watch(graph, pick->getValueF(0));
            const auto image = getTextureFromSubstance(material.get());
            require(static_cast<bool>(image), "a texture comes once nothing fails");
            require(image->getBytes()[0] == watch.pixelsOfPick(), "the texture is of the last values");
        }
    }

private:
    static constexpr unsigned int slots = 3;

    // Read once: it takes longer than all the rest.
    static SubstanceAir::PackageDesc& bottomPackage() {
        static SubstanceAir::PackageDesc& package = load(bottomDescription, "bottom");
        return package;
    }
    static SubstanceAir::PackageDesc& topPackage() {
        static SubstanceAir::PackageDesc& package = load(topDescription, "top");
        return package;
    }
    static SubstanceAir::PackageDesc& load(const char* description, const char* tag) {
        const std::string bytes = recording::packageBytes(description, tag);
        return *new SubstanceAir::PackageDesc(bytes.data(), bytes.size(), nullptr);
    }

    static const SubstanceAir::GraphDesc& graphOf(const SubstanceAir::PackageDesc& package) {
        require(!package.graphs().empty(), "the packages load");
        return package.graphs().front();
    }

    static void fail(Choices& choices) {
        const char* const function = functions[choices.below(static_cast<unsigned>(functions.size()))];
        recording::fail(function, 1 + choices.below(16));
    }

    static void setTexture(Choices& choices) {
        recording::Texture texture;
        const unsigned int shape = choices.byte();
        texture.width = shape % 5;
        texture.height = shape / 5 % 5;
        texture.hasBuffer = shape / 25 % 4 != 0;
        texture.format = static_cast<int>(choices.below(3)) - 1;
        recording::setTexture(texture);
    }

    // As createSubstance does it, but for the stack, which all share: there each stays to the process's end.
    void create(unsigned int slot) {
        const kv::Reference<Substance> material(new Substance);
        SubstanceAir::instantiateGraphs(material->getGraphInstances(), stack_);
        for (const auto& input : material->getGraphInstances().front()->inputs)
            createInput(*material, *input);
        material->setPackageURL("pkg:/stack");
        material->setPackageDesc(&stack_, &bottomPackage(), &topPackage());
        materials_[slot] = material;
    }

    void change(unsigned int kind, const kv::Reference<Substance>& material, kv::Reference<Substance>& slot,
                Choices& choices) {
        const auto& ids = material->getInputIds();
        SubstanceInput* const input =
            material->getInput(ids[choices.below(static_cast<unsigned>(ids.size()))]);
        SubstanceAir::GraphInstance& graph = *material->getGraphInstances().front();
        SubstanceAir::OutputInstance& output =
            *graph.outputs[choices.below(static_cast<unsigned>(graph.outputs.size()))];
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
            return setImage(graph, choices);
        case 13:
            slot.reset();
            return;
        default:
            image_ = getTextureFromSubstance(material.get());
        }
    }

    static void setValue(SubstanceInput& input, Choices& choices) {
        const auto i = choices.raw<std::array<signed char, 4>>();
        const std::array<float, 4> f = {static_cast<float>(i[0]) / 4, static_cast<float>(i[1]) / 4,
                                        static_cast<float>(i[2]) / 4, static_cast<float>(i[3]) / 4};
        const bool isInteger = (input.getType() & 0x20) != 0;
        switch (input.getType() & 7) {
        case 1:
            return isInteger ? input.setValueI(i[0], 0) : input.setValueF(f[0], 0);
        case 2:
            return isInteger ? input.setValue2I(i[0], i[1]) : input.setValue2F(f[0], f[1]);
        case 3:
            return isInteger ? input.setValue3I(i[0], i[1], i[2]) : input.setValue3F(f[0], f[1], f[2]);
        default:
            return isInteger ? input.setValue4I(i[0], i[1], i[2], i[3])
                             : input.setValue4F(f[0], f[1], f[2], f[3]);
        }
    }

    static void setImage(SubstanceAir::GraphInstance& graph, Choices& choices) {
        static constexpr std::array<unsigned char, 8> pixels = {1, 2, 3, 4, 5, 6, 7, 8};
        auto* const mask = dynamic_cast<SubstanceAir::InputInstanceImage*>(graph.findInput("mask"));
        require(mask != nullptr, "the mask is an image");
        const auto side = static_cast<unsigned short>(choices.below(3));
        const SubstanceTextureInput image{pixels.data(), side, 1, 0, 0, 1};
        mask->setImage(side == 0 ? nullptr : boost::make_shared<SubstanceAir::InputImage>(image));
    }

    SubstanceAir::PackageStackDesc stack_;
    std::array<kv::Reference<Substance>, slots> materials_;
    kvString::CString saved_;
    std::unique_ptr<SubstanceAir::RenderResult> held_;
    kv::TempReference<ilSIDImage> image_;
};

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
    {
        Choices choices(data, size);
        World world;
        while (!choices.empty()) world.step(choices);
        recording::reset();
        world.checkThatTexturesCome();
    }
    resetRenderer();
    endRecording();
    return 0;
}
