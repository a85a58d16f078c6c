#include "fuzzers/SmallRender.h"

#include "embedded/engine/TextureEncoding.h"
#include "embedded/program/Assembly.h"
#include "embedded/program/Cost.h"
#include "platform/engine.h"

#include <numeric>
#include <set>

namespace fuzzing {

using namespace embedded;

namespace {

using Reports = std::multiset<unsigned int>; // indexes of outputs

// Lives as long as the process; the engine keeps its threads and images in it.
SubstanceContext* context() {
    static SubstanceContext* const made = [] {
        SubstanceContext* fresh = nullptr;
        SubstanceDevice device{};
        require(substanceContextInit(&fresh, &device) == 0, "there is a context");
        const SubstanceOutputCompletedCallback report = [](auto*, unsigned int index, void* reports) {
            static_cast<Reports*>(reports)->insert(index);
        };
        substanceContextSetCallback(fresh, SubstanceCallbackOutputCompleted,
                                    reinterpret_cast<SubstanceCallback>(report));
        return fresh;
    }();
    return made;
}

void readTexture(SubstanceHandle* handle, unsigned int index, const ProgramOutput& output) {
    SubstanceTexture texture;
    require(substanceHandleGetOutputs(handle, 0, index, 1, &texture) == 0, "a texture is fetched");
    const auto format = findPixelFormat(output.format);
    require(format && texture.pixelFormat == output.format, "the format is as asked");
    const auto* const bytes = static_cast<const unsigned char*>(texture.buffer);
    const std::size_t size =
        textureBytes(texture.level0Width, texture.level0Height, *format, texture.mipmapCount);
    volatile unsigned int seen = std::accumulate(bytes, bytes + size, 0u); // for the sanitizers
    static_cast<void>(seen);
    require(substanceContextMemoryFree(context(), texture.buffer) == 0, "a buffer is freed");
}

void render(SubstanceHandle* handle, const Program& program) {
    Reports reports;
    std::vector<unsigned int> uids;
    uids.reserve(program.outputs.size());
    for (const ProgramOutput& output : program.outputs) uids.push_back(output.uid);
    const auto count = static_cast<unsigned int>(uids.size());
    require(substanceHandlePushOutputs(handle, SubstancePushOutputUids, uids.data(), count, &reports) == 0,
            "outputs are pushed");
    require(substanceHandleStart(handle, 0) == 0, "a cheap render succeeds");
    require(reports.size() == std::set<unsigned int>(uids.begin(), uids.end()).size() &&
                reports.size() == std::set<unsigned int>(reports.begin(), reports.end()).size(),
            "each output is reported once");
    for (const unsigned int index : reports) readTexture(handle, index, program.outputs.at(index));
}

void push(SubstanceHandle* handle, const Program& program, std::size_t input, const void* value) {
    const auto index = static_cast<unsigned int>(input);
    const int type = static_cast<int>(program.inputs[input].type);
    require(substanceHandlePushSetInput(handle, SubstancePushInput, index, type, value, 0) == 0,
            "an input takes any value of its type");
}

// Sizes small, images there, and the rest as it is.
void pushFirstValues(SubstanceHandle* handle, const Program& program) {
    Bytes pixels(std::size_t{3} * 5 * 4);
    std::iota(pixels.begin(), pixels.end(), static_cast<unsigned char>(220)); // wraps
    const SubstanceTextureInput image{pixels.data(), 3, 5, SubstanceFormatSrgb, 0, 1};
    for (std::size_t i = 0; i < program.inputs.size(); ++i)
        if (program.inputs[i].type == ValueType::Image) push(handle, program, i, &image);
    for (const auto& [input, size] : smallSizes(program)) push(handle, program, input, size.data());
}

// Any bytes are a value, for instance a NaN. Images are taken away.
void pushChosenValues(SubstanceHandle* handle, const Program& program, Choices& values) {
    const InputSizes sizes = smallSizes(program);
    for (std::size_t i = 0; i < program.inputs.size() && !values.empty(); ++i) {
        if (sizes.count(i) > 0 || values.byte() % 2 == 0) continue;
        const bool isImage = program.inputs[i].type == ValueType::Image;
        push(handle, program, i, isImage ? nullptr : values.raw<std::array<std::int32_t, 4>>().data());
    }
}

} // namespace

std::vector<std::size_t> allOutputs(const Program& program) {
    std::vector<std::size_t> outputs(program.outputs.size());
    std::iota(outputs.begin(), outputs.end(), std::size_t{0});
    return outputs;
}

bool isCheap(const Program& program) {
    constexpr double mostOperations = 4e6;
    constexpr std::uint64_t mostBytes = 8 << 20;
    constexpr std::size_t mostNodes = 2000;
    const ProgramCost cost = costOf(program, allOutputs(program), smallLog2Width, smallLog2Height);
    return cost.operations <= mostOperations && cost.bytes <= mostBytes && cost.nodes <= mostNodes;
}

InputSizes smallSizes(const Program& program) {
    static_assert(smallLog2Height <= smallLog2Width, "squares have the smaller side");
    InputSizes sizes;
    for (const ProgramNode& node : program.nodes) {
        if (node.resolution.input == Binding::constantOnly) continue;
        const auto input = static_cast<std::size_t>(node.resolution.input);
        if (componentCount(program.inputs[input].type) == 1)
            sizes[input] = {smallLog2Height}; // for both sides
        else
            sizes[input] = {smallLog2Width, smallLog2Height};
    }
    return sizes;
}

bool renderSmall(const void* assembly, std::size_t size, Choices& values) {
    const std::optional<Program> program = decodeAssembly(assembly, size);
    SubstanceHandle* handle = nullptr;
    substanceHandleInit(&handle, context(), static_cast<const unsigned char*>(assembly), size, 0);
    require((handle != nullptr) == program.has_value(), "the engine runs what the verifier accepts");
    if (!program) return false;
    if (isCheap(*program)) {
        pushFirstValues(handle, *program);
        render(handle, *program);
        pushChosenValues(handle, *program, values);
        render(handle, *program);
    }
    require(substanceHandleRelease(handle) == 0, "a handle is released");
    return true;
}

} // namespace fuzzing
