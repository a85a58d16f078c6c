#include "fuzzers/SmallRender.h"

#include "embedded/engine/TextureEncoding.h"
#include "embedded/program/Assembly.h"
#include "embedded/program/Cost.h"
#include "platform/engine.h"

#include <array>
#include <map>
#include <numeric>
#include <optional>

namespace fuzzing {

using namespace embedded;

namespace {

// Lives as long as the process; the engine keeps its threads and images in it.
SubstanceContext* context();

class Handle {
public:
    explicit Handle(SubstanceHandle* made)
        : handle_(made) {}
    ~Handle() { require(substanceHandleRelease(handle_) == 0, "a handle is released"); }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    // Outputs by uid, each once: what the engine reports.
    void render(const Program& program) {
        reports_.clear();
        std::vector<unsigned int> uids;
        uids.reserve(program.outputs.size());
        for (const ProgramOutput& output : program.outputs) uids.push_back(output.uid);
        const auto count = static_cast<unsigned int>(uids.size());
        require(substanceHandlePushOutputs(handle_, SubstancePushOutputUids, uids.data(), count, this) == 0,
                "outputs are pushed");
        require(substanceHandleStart(handle_, 0) == 0, "a cheap render succeeds");
        std::map<unsigned int, bool> wanted;
        for (const unsigned int uid : uids) wanted[uid] = true;
        require(reports_.size() == wanted.size(), "each output is reported once");
        for (const auto& [index, number] : reports_) require(number == 1, "no output is reported twice");
        for (const auto& report : reports_) readTexture(program, report.first);
    }

    void report(unsigned int index) { ++reports_[index]; }

private:
    void readTexture(const Program& program, unsigned int index) {
        SubstanceTexture texture;
        require(substanceHandleGetOutputs(handle_, 0, index, 1, &texture) == 0, "a texture is fetched");
        const auto format = findPixelFormat(program.outputs.at(index).format);
        require(format && texture.pixelFormat == program.outputs[index].format, "the format is as asked");
        readAll(texture.buffer,
                textureBytes(texture.level0Width, texture.level0Height, *format, texture.mipmapCount));
        require(substanceContextMemoryFree(context(), texture.buffer) == 0, "a buffer is freed");
        require(substanceHandleGetOutputs(handle_, 0, index, 1, &texture) != 0 && !texture.buffer,
                "a texture is fetched once");
    }

    SubstanceHandle* const handle_;
    std::map<unsigned int, int> reports_; // by output index
};

SubstanceContext* context() {
    static SubstanceContext* const made = [] {
        SubstanceContext* fresh = nullptr;
        SubstanceDevice device{};
        require(substanceContextInit(&fresh, &device) == 0, "there is a context");
        const SubstanceOutputCompletedCallback report = [](SubstanceHandle*, unsigned int index, void* run) {
            static_cast<Handle*>(run)->report(index);
        };
        substanceContextSetCallback(fresh, SubstanceCallbackOutputCompleted,
                                    reinterpret_cast<SubstanceCallback>(report));
        return fresh;
    }();
    return made;
}

void checkDescriptors(SubstanceHandle* handle, const Program& program) {
    SubstanceDataDesc counts;
    require(substanceHandleGetDesc(handle, &counts) == 0 && counts.inputsCount == program.inputs.size() &&
                counts.outputsCount == program.outputs.size(),
            "the handle has the program's inputs and outputs");
    SubstanceInputDesc input;
    for (unsigned int i = 0; i < counts.inputsCount; ++i)
        require(substanceHandleGetInputDesc(handle, i, &input) == 0 && input.uid == program.inputs[i].uid,
                "inputs stand in the program's order");
    require(substanceHandleGetInputDesc(handle, counts.inputsCount, &input) != 0, "indexes are checked");
}

bool push(SubstanceHandle* handle, unsigned int index, ValueType type, const void* value) {
    return substanceHandlePushSetInput(handle, SubstancePushInput, index, static_cast<int>(type), value, 0) ==
           0;
}

// Sizes small, images there, and the rest as it is.
void pushFirstValues(SubstanceHandle* handle, const Program& program) {
    static const std::array<unsigned char, std::size_t{3}* 5 * 4> pixels = [] {
        std::array<unsigned char, std::size_t{3} * 5 * 4> made{};
        std::iota(made.begin(), made.end(), static_cast<unsigned char>(190)); // wraps
        return made;
    }();
    const SubstanceTextureInput image{pixels.data(), 3, 5, SubstanceFormatSrgb, 0, 1};
    const std::vector<bool> isSize = sizeInputs(program);
    for (unsigned int i = 0; i < program.inputs.size(); ++i) {
        const ValueType type = program.inputs[i].type;
        const std::array<std::int32_t, 4> sides = smallSize(type);
        const bool pushed = type == ValueType::Image ? push(handle, i, type, &image)
                            : isSize[i]              ? push(handle, i, type, sides.data())
                                                     : true;
        require(pushed, "an input takes a value of its type");
    }
}

// Any bytes are a value, for instance a NaN.
void pushChosenValues(SubstanceHandle* handle, const Program& program, Choices& values) {
    const std::vector<bool> isSize = sizeInputs(program);
    for (unsigned int i = 0; i < program.inputs.size() && !values.empty(); ++i) {
        const ValueType type = program.inputs[i].type;
        if (isSize[i] || values.byte() % 2 == 0) continue;
        if (type == ValueType::Image) {
            require(push(handle, i, type, nullptr), "an image is taken away");
            continue;
        }
        const auto components = values.raw<std::array<std::int32_t, 4>>();
        require(push(handle, i, type, components.data()), "an input takes any value");
    }
}

} // namespace

std::vector<bool> sizeInputs(const Program& program) {
    std::vector<bool> flags(program.inputs.size());
    for (const ProgramNode& node : program.nodes)
        if (node.resolution.input != Binding::constantOnly)
            flags[static_cast<std::size_t>(node.resolution.input)] = true;
    return flags;
}

// One number stands for both sides.
std::array<std::int32_t, 4> smallSize(ValueType type) {
    static_assert(smallLog2Height <= smallLog2Width, "squares have the smaller side");
    if (componentCount(type) == 1) return {smallLog2Height, 0, 0, 0};
    return {smallLog2Width, smallLog2Height, 0, 0};
}

bool isCheap(const Program& program, const std::vector<std::size_t>& outputs) {
    constexpr double mostOperations = 4e6;
    constexpr std::uint64_t mostBytes = 8 << 20;
    constexpr std::size_t mostNodes = 2000;
    const ProgramCost cost = costOf(program, outputs, smallLog2Width, smallLog2Height);
    return cost.operations <= mostOperations && cost.bytes <= mostBytes && cost.nodes <= mostNodes;
}

bool isCheap(const Program& program) {
    std::vector<std::size_t> outputs(program.outputs.size());
    std::iota(outputs.begin(), outputs.end(), std::size_t{0});
    return isCheap(program, outputs);
}

bool renderSmall(const void* assembly, std::size_t size, Choices& values) {
    const std::optional<Program> program = decodeAssembly(assembly, size);
    SubstanceHandle* made = nullptr;
    const unsigned int status =
        substanceHandleInit(&made, context(), static_cast<const unsigned char*>(assembly), size, 0);
    require((status == 0) == program.has_value(), "the engine runs what the verifier accepts");
    require((made != nullptr) == program.has_value(), "an out-parameter is set");
    if (!program) return false;

    Handle handle(made);
    checkDescriptors(made, *program);
    if (!isCheap(*program)) return true;
    pushFirstValues(made, *program);
    handle.render(*program);
    pushChosenValues(made, *program, values);
    handle.render(*program);
    return true;
}

} // namespace fuzzing
