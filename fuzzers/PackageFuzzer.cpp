// Any bytes as a package. The linker reports each push once, and nothing readable of what it refuses; what
// it links out of accepted packages, however connected, fused and formatted, the engine runs. The library
// loads the same bytes within its bound of memory, and stacks what has graphs.
//
// The package stands at the front of an input; its end, read backwards, chooses what is done with it.
#include "embedded/program/Assembly.h"
#include "framework/description/PackageDesc.h"
#include "framework/render/GraphInstance.h"
#include "framework/render/PackageStackDesc.h"
#include "fuzzers/MemoryPeak.h"
#include "fuzzers/RendererReset.h"
#include "fuzzers/SmallRender.h"
#include "platform/linker.h"

#include <algorithm>
#include <optional>
#include <vector>

namespace {

using namespace fuzzing;
using Bytes = std::vector<unsigned char>;

// What the callbacks of the push in progress told.
struct Delivery {
    std::vector<unsigned int> texts;
    std::vector<unsigned int> assemblies;
    std::string text;
    Bytes assembly;
};
Delivery delivery;

class Linking {
public:
    Linking() {
        require(substanceLinkerContextInit(&context_, SubstanceLinkerApiVersion, SubstanceLinkerEngineId) ==
                    0,
                "there is a linker");
        const SubstanceLinkerTextCallback text = [](SubstanceLinkerHandle*, unsigned int index,
                                                    const char* received) {
            delivery.texts.push_back(index);
            delivery.text = received;
        };
        const SubstanceLinkerBytesCallback bytes = [](SubstanceLinkerHandle*, unsigned int index,
                                                      const unsigned char* received, std::size_t count) {
            delivery.assemblies.push_back(index);
            delivery.assembly.assign(received, received + count);
        };
        substanceLinkerContextSetCallback(context_, SubstanceLinkerCallbackText,
                                          reinterpret_cast<SubstanceLinkerCallback>(text));
        substanceLinkerContextSetCallback(context_, SubstanceLinkerCallbackBytes,
                                          reinterpret_cast<SubstanceLinkerCallback>(bytes));
        require(substanceLinkerHandleInit(&handle_, context_) == 0, "there is a linker handle");
    }
    ~Linking() {
        substanceLinkerHandleRelease(handle_);
        substanceLinkerContextRelease(context_);
    }
    Linking(const Linking&) = delete;
    Linking& operator=(const Linking&) = delete;

    SubstanceLinkerHandle* handle() const { return handle_; }

    void push(const void* data, std::size_t size) {
        delivery = Delivery();
        const bool isAccepted = substanceLinkerHandlePushAssemblyMemory(handle_, data, size) == 0;
        const std::vector<unsigned int> once = {pushes_++};
        require(delivery.texts == once && delivery.assemblies == once, "a push is reported once");
        const auto program = embedded::decodeAssembly(delivery.assembly.data(), delivery.assembly.size());
        require(!isAccepted || program, "what is accepted is delivered");
        hasFailed_ = hasFailed_ || !isAccepted;
        if (!program) return;
        for (const auto& input : program->inputs) inputUids_.push_back(input.uid);
        for (const auto& output : program->outputs) outputUids_.push_back(output.uid);
    }

    void change(Choices& choices) {
        const auto uidOf = [&choices](const std::vector<unsigned int>& uids) {
            const unsigned int index = choices.byte();
            return index < uids.size() ? uids[index] : index;
        };
        switch (choices.below(5)) {
        case 0:
            substanceLinkerConnectOutputToInput(handle_, uidOf(inputUids_), uidOf(outputUids_));
            break;
        case 1:
            substanceLinkerFuseInputs(handle_, uidOf(inputUids_), uidOf(inputUids_));
            break;
        case 2:
            substanceLinkerHandleSetOutputFormat(handle_, uidOf(outputUids_),
                                                 static_cast<int>(choices.below(70)), choices.byte());
            break;
        case 3:
            substanceLinkerHandleSelectOutputs(handle_, 0, uidOf(outputUids_));
            break;
        default:
            link(choices);
        }
    }

    void link(Choices& choices) {
        const unsigned char* data = nullptr;
        std::size_t size = 0;
        const bool isLinked = substanceLinkerHandleLink(handle_, &data, &size) == 0;
        require(!isLinked || !hasFailed_, "a failed push makes linking fail");
        require(isLinked == (data != nullptr), "an out-parameter is set");
        if (isLinked) require(renderSmall(data, size, choices), "the engine runs what is linked");
    }

private:
    SubstanceLinkerContext* context_ = nullptr;
    SubstanceLinkerHandle* handle_ = nullptr;
    unsigned int pushes_ = 0;
    bool hasFailed_ = false;
    std::vector<unsigned int> inputUids_;
    std::vector<unsigned int> outputUids_;
};

// The bytes twice, or the bytes and the assembly in them, or only once.
void linkBytes(const Bytes& bytes, Choices choices) {
    Linking linking;
    linking.push(bytes.data(), bytes.size());
    const unsigned int second = choices.below(3);
    const Bytes assembly = delivery.assembly;
    if (second == 1) linking.push(bytes.data(), bytes.size());
    if (second == 2) linking.push(assembly.data(), assembly.size());
    constexpr int mostChanges = 24;
    for (int i = 0; i < mostChanges && !choices.empty(); ++i) linking.change(choices);
    linking.link(choices);
}

void load(const Bytes& bytes, Choices choices) {
    const SubstanceAir::OutputFormatOptions options{choices.byte(), choices.below(3)};
    std::optional<SubstanceAir::PackageDesc> package;
    {
        const MemoryPeak peak;
        package.emplace(bytes.data(), bytes.size(), &options);
        requireLoadingBound(peak, bytes.size());
    }
    if (package->graphs().empty()) return;
    const auto& graphs = package->graphs();
    const SubstanceAir::PackageStackDesc stack(graphs.front(), graphs.back(), {{}, choices.below(2)});
    std::vector<boost::shared_ptr<SubstanceAir::GraphInstance>> instances;
    SubstanceAir::instantiateGraphs(instances, stack);
    require(instances.size() == 1, "a stack has one graph");
    Linking linking;
    if (stack.pushToLinker(linking.handle())) linking.link(choices);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Bytes bytes(data, data + size);
    constexpr std::size_t mostChoices = 256;
    Bytes backwards(bytes.rbegin(), bytes.rend());
    backwards.resize(std::min(size, mostChoices));
    const Choices choices(backwards.data(), backwards.size());
    linkBytes(bytes, choices);
    load(bytes, choices);
    resetRenderer();
    return 0;
}
