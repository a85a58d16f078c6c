// Any bytes as a package. The linker reports each push once, and nothing readable of what it refuses; what
// it links out of accepted packages, however connected, fused and formatted, the engine runs. The library
// loads the same bytes, and stacks what has graphs.
//
// The package stands at the front of an input; its end, read backwards, chooses what is done with it.
#include "embedded/program/Assembly.h"
#include "framework/description/PackageDesc.h"
#include "framework/render/PackageStackDesc.h"
#include "fuzzers/Model.h"
#include "fuzzers/SmallRender.h"
#include "platform/linker.h"

namespace {

using namespace fuzzing;

// What the callbacks of the push in progress told.
std::vector<unsigned int> reports;
Bytes delivered;

void receiveText(SubstanceLinkerHandle*, unsigned int index, const char*) {
    reports.push_back(index);
}

void receiveBytes(SubstanceLinkerHandle*, unsigned int index, const unsigned char* bytes, std::size_t count) {
    reports.push_back(index);
    delivered.assign(bytes, bytes + count);
}

class Linking {
public:
    Linking() {
        substanceLinkerContextInit(&context_, SubstanceLinkerApiVersion, SubstanceLinkerEngineId);
        substanceLinkerContextSetCallback(context_, SubstanceLinkerCallbackText,
                                          reinterpret_cast<SubstanceLinkerCallback>(receiveText));
        substanceLinkerContextSetCallback(context_, SubstanceLinkerCallbackBytes,
                                          reinterpret_cast<SubstanceLinkerCallback>(receiveBytes));
        require(substanceLinkerHandleInit(&handle_, context_) == 0, "there is a linker handle");
    }
    ~Linking() {
        substanceLinkerHandleRelease(handle_);
        substanceLinkerContextRelease(context_);
    }
    Linking(const Linking&) = delete;
    Linking& operator=(const Linking&) = delete;

    SubstanceLinkerHandle* handle() const { return handle_; }

    void push(const Bytes& bytes) {
        reports.clear();
        const bool isAccepted =
            substanceLinkerHandlePushAssemblyMemory(handle_, bytes.data(), bytes.size()) == 0;
        require(reports == std::vector<unsigned int>(2, pushes_++), "text and assembly are told once");
        const auto program = embedded::decodeAssembly(delivered.data(), delivered.size());
        require(!isAccepted || program, "what is accepted is delivered");
        if (!program) return;
        for (const auto& input : program->inputs) inputs_.push_back(input.uid);
        for (const auto& output : program->outputs) outputs_.push_back(output.uid);
    }

    void change(Choices& choices) {
        const auto uid = [&choices](const std::vector<unsigned int>& uids) {
            const unsigned int index = choices.byte();
            return index < uids.size() ? uids[index] : index;
        };
        const unsigned int kind = choices.below(5);
        if (kind > 3) return link(choices);
        const unsigned int first = uid(kind < 2 ? inputs_ : outputs_);
        if (kind == 0) substanceLinkerConnectOutputToInput(handle_, first, uid(outputs_));
        if (kind == 1) substanceLinkerFuseInputs(handle_, first, uid(inputs_));
        if (kind == 3) substanceLinkerHandleSelectOutputs(handle_, 0, first);
        if (kind != 2) return;
        const int format = static_cast<int>(choices.below(70));
        substanceLinkerHandleSetOutputFormat(handle_, first, format, choices.byte());
    }

    void link(Choices& choices) {
        const unsigned char* data = nullptr;
        std::size_t size = 0;
        const bool isLinked = substanceLinkerHandleLink(handle_, &data, &size) == 0;
        require(isLinked == (data != nullptr), "an out-parameter is set");
        if (isLinked) require(renderSmall(data, size, choices), "the engine runs what is linked");
    }

private:
    SubstanceLinkerContext* context_ = nullptr;
    SubstanceLinkerHandle* handle_ = nullptr;
    unsigned int pushes_ = 0;
    std::vector<unsigned int> inputs_; // uids
    std::vector<unsigned int> outputs_;
};

// The bytes twice, or the bytes and the assembly in them, or only once.
void linkBytes(const Bytes& bytes, Choices choices) {
    Linking linking;
    linking.push(bytes);
    const unsigned int second = choices.below(3);
    if (second > 0) linking.push(second == 1 ? bytes : Bytes(delivered));
    constexpr int mostChanges = 24;
    for (int i = 0; i < mostChanges && !choices.empty(); ++i) linking.change(choices);
    linking.link(choices);
}

void load(const Bytes& bytes, Choices choices) {
    const SubstanceAir::OutputFormatOptions options{choices.byte(), choices.below(3)};
    const SubstanceAir::PackageDesc package(bytes.data(), bytes.size(), &options);
    const auto& graphs = package.graphs();
    if (graphs.empty()) return;
    const SubstanceAir::PackageStackDesc stack(graphs.front(), graphs.back(), {{}, choices.below(2)});
    Linking linking;
    if (stack.pushToLinker(linking.handle())) linking.link(choices);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Bytes bytes(data, data + size);
    const Choices choices = Choices::backwards(data, size);
    linkBytes(bytes, choices);
    load(bytes, choices);
    resetRenderer();
    return 0;
}
