#include "conformance/Running.h"

#include "conformance/Findings.h"
#include "conformance/Recorder.h"
#include "support/Numbers.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace kvSubstance::conformance {

namespace {

constexpr std::uint32_t smallSide = 5; // 32 texels

std::size_t bytesOf(unsigned int width, unsigned int height, unsigned int levels) {
    std::size_t bytes = 0;
    for (unsigned int level = 0; level < levels; ++level)
        bytes += std::size_t(4) * std::max(width >> level, 1u) * std::max(height >> level, 1u);
    return bytes;
}

} // namespace

bool isIntegerType(int type) {
    return type == SubstanceInputInteger || type >= SubstanceInputInteger2;
}

int componentCount(int type) {
    static const int counts[] = {1, 2, 3, 4, 1, 1, 0, 0, 2, 3, 4};
    return type >= SubstanceInputFloat && type <= SubstanceInputInteger4 ? counts[type] : 0;
}

Value valueFromText(int type, const std::string& text) {
    Value value{type, {}};
    std::size_t begin = 0;
    for (int k = 0; k < componentCount(type) && begin <= text.size(); ++k) {
        const std::size_t end = std::min(text.find(',', begin), text.size());
        const std::string part = text.substr(begin, end - begin);
        auto& word = value.words[static_cast<std::size_t>(k)];
        if (isIntegerType(type)) {
            word = static_cast<std::uint32_t>(support::wholeOrZero<int>(part.c_str()));
        } else {
            const auto number = support::wholeOrZero<float>(part.c_str());
            std::memcpy(&word, &number, sizeof number);
        }
        begin = end + 1;
    }
    return value;
}

SubstanceTextureInput testImage() {
    static const std::array<unsigned char, 64> pixels = [] {
        std::array<unsigned char, 64> bytes{};
        for (std::size_t i = 0; i < bytes.size(); ++i)
            bytes[i] = static_cast<unsigned char>(i % 4 == 3 ? 255 : i * 59 % 256);
        return bytes;
    }();
    return {pixels.data(), 4, 4, SubstanceFormatRgba8, 0, 1};
}

bool operator==(const Picture& a, const Picture& b) {
    return a.width == b.width && a.height == b.height && a.levels == b.levels && a.format == b.format &&
           a.pixels == b.pixels;
}

bool operator!=(const Picture& a, const Picture& b) {
    return !(a == b);
}

// ---- The context

EngineContext::EngineContext(const Interface::Engine& engine)
    : engine_(engine) {
    SubstanceDevice device{nullptr};
    expectSuccess(engine.contextInit(&context_, &device), "substanceContextInit");
    engine.contextSetCallback(context_, SubstanceCallbackOutputCompleted, completionRecorder());
}

EngineContext::~EngineContext() {
    if (!isReleased_) engine_.contextRelease(context_);
}

void EngineContext::release() {
    isReleased_ = true;
    expectSuccess(engine_.contextRelease(context_), "substanceContextRelease");
}

// ---- The handle

EngineHandle::EngineHandle(const Interface::Engine& engine, const EngineContext& context,
                           const std::string& assembly, const std::set<unsigned int>& resolutionUids)
    : engine_(engine) {
    expectSuccess(engine.handleInit(&handle_, context.get(),
                                    reinterpret_cast<const unsigned char*>(assembly.data()), assembly.size(),
                                    0),
                  "substanceHandleInit of a linked assembly");
    try {
        readPorts();
        for (const SubstanceInputDesc& input : inputs_)
            if (resolutionUids.count(input.uid) > 0 && input.type == SubstanceInputInteger2)
                set(input.uid, {input.type, {smallSide, smallSide}});
    } catch (...) {
        engine.handleRelease(handle_);
        throw;
    }
}

EngineHandle::~EngineHandle() {
    if (handle_) engine_.handleRelease(handle_);
}

void EngineHandle::release() {
    expectSuccess(engine_.handleRelease(std::exchange(handle_, nullptr)), "substanceHandleRelease");
}

void EngineHandle::readPorts() {
    SubstanceDataDesc desc{};
    expectSuccess(engine_.getDesc(handle_, &desc), "substanceHandleGetDesc");
    for (unsigned int i = 0; i < desc.inputsCount; ++i) {
        SubstanceInputDesc input{};
        expectSuccess(engine_.getInputDesc(handle_, i, &input), "substanceHandleGetInputDesc");
        input.index = i;
        inputs_.push_back(input);
    }
    for (unsigned int i = 0; i < desc.outputsCount; ++i) {
        SubstanceOutputDesc output{};
        expectSuccess(engine_.getOutputDesc(handle_, i, &output), "substanceHandleGetOutputDesc");
        outputs_.push_back(output);
    }
}

unsigned int EngineHandle::inputIndex(unsigned int uid) const {
    for (const SubstanceInputDesc& input : inputs_)
        if (input.uid == uid) return input.index;
    throw Broken{"expected the engine to know the input " + std::to_string(uid) + ", saw none of that uid"};
}

unsigned int EngineHandle::outputIndex(unsigned int uid) const {
    for (std::size_t i = 0; i < outputs_.size(); ++i)
        if (outputs_[i].uid == uid) return static_cast<unsigned int>(i);
    throw Broken{"expected the engine to know the output " + std::to_string(uid) + ", saw none of that uid"};
}

std::set<unsigned int> EngineHandle::inputUids() const {
    std::set<unsigned int> uids;
    for (const SubstanceInputDesc& input : inputs_) uids.insert(input.uid);
    return uids;
}

void EngineHandle::set(unsigned int uid, const Value& value) {
    const SubstanceTextureInput image = testImage();
    const void* const pointer =
        value.type == SubstanceInputImage ? static_cast<const void*>(&image) : value.words.data();
    expectSuccess(engine_.pushSetInput(handle_, SubstancePushInput, inputIndex(uid), value.type, pointer, 0),
                  "substanceHandlePushSetInput with the input's type");
}

void EngineHandle::ask(const std::vector<unsigned int>& uids, void* jobUserData, unsigned int flags) {
    expectSuccess(
        engine_.pushOutputs(handle_, flags, uids.data(), static_cast<unsigned int>(uids.size()), jobUserData),
        "substanceHandlePushOutputs");
}

void EngineHandle::start() {
    expectSuccess(engine_.start(handle_, 0), "substanceHandleStart");
}

SubstanceTexture EngineHandle::fetch(unsigned int outputIndex) {
    SubstanceTexture texture{};
    expectSuccess(engine_.getOutputs(handle_, 0, outputIndex, 1, &texture),
                  "substanceHandleGetOutputs of a computed output");
    expect(texture.buffer && texture.level0Width > 0 && texture.level0Height > 0, "a texture with pixels",
           "none");
    return texture;
}

Picture EngineHandle::take(unsigned int uid) {
    const SubstanceTexture texture = fetch(outputIndex(uid));
    return consume(engine_, engine_.getParentContext(handle_), texture);
}

Picture EngineHandle::render(unsigned int uid) {
    ask({uid});
    start();
    return take(uid);
}

Picture consume(const Interface::Engine& engine, SubstanceContext* context, const SubstanceTexture& texture) {
    Picture picture{texture.level0Width, texture.level0Height, texture.mipmapCount, texture.pixelFormat, {}};
    const bool isKnown = (picture.format | SubstanceFormatSrgb) == SubstanceFormatSrgb;
    if (isKnown)
        picture.pixels.assign(static_cast<const char*>(texture.buffer),
                              bytesOf(picture.width, picture.height, picture.levels));
    expectSuccess(engine.memoryFree(context, texture.buffer), "substanceContextMemoryFree of a texture");
    expect(isKnown, "the pixel format that was linked, 0 or 32", picture.format);
    expect(picture.levels > 0, "at least one level", picture.levels);
    expect(texture.channelsOrder == 0, "channels in the order 0", static_cast<int>(texture.channelsOrder));
    return picture;
}

} // namespace kvSubstance::conformance
