#include "embedded/engine/Handle.h"

#include "embedded/engine/Evaluator.h"
#include "embedded/engine/PhysicalMemory.h"
#include "embedded/engine/TextureDecoding.h"
#include "embedded/engine/TextureEncoding.h"

#include <algorithm>
#include <cstring>
#include <utility>

using namespace embedded;

namespace {

Value readValue(ValueType type, const void* components) {
    Value value;
    value.type = type;
    const auto count = static_cast<std::size_t>(componentCount(type));
    if (isInteger(type)) {
        std::memcpy(value.integers.data(), components, count * sizeof(std::int32_t));
    } else {
        std::memcpy(value.floats.data(), components, count * sizeof(float));
    }
    return value;
}

// The first of the outputs with the uid; their number when there is none.
std::size_t findOutput(const Program& program, std::uint32_t uid) {
    const auto& outputs = program.outputs;
    const auto found = std::find_if(outputs.begin(), outputs.end(),
                                    [uid](const ProgramOutput& output) { return output.uid == uid; });
    return static_cast<std::size_t>(found - outputs.begin());
}

// Three quarters of the machine's memory: the host needs some of it too.
std::uint64_t memoryLimit() {
    return physicalMemory() / 4 * 3;
}

// Sets a flag for its own lifetime.
class FlagGuard {
public:
    explicit FlagGuard(bool& flag)
        : flag_(flag) {
        flag_ = true;
    }
    ~FlagGuard() { flag_ = false; }
    FlagGuard(const FlagGuard&) = delete;
    FlagGuard& operator=(const FlagGuard&) = delete;

private:
    bool& flag_;
};

} // namespace

SubstanceHandle_::SubstanceHandle_(SubstanceContext& context, std::shared_ptr<WorkerPool> pool,
                                   Program program)
    : context_(context)
    , pool_(std::move(pool))
    , program_(std::move(program))
    , inputs_(std::make_shared<const InputValues>(defaultValues(program_))) {}

SubstanceHandle_::~SubstanceHandle_() {
    for (const auto& [output, texture] : textures_) context_.freeBuffer(texture.buffer);
}

bool SubstanceHandle_::setInput(unsigned int index, int type, const void* value) {
    if (index >= program_.inputs.size()) return false;
    const ValueType expected = program_.inputs[index].type;
    if (type != static_cast<int>(expected)) return false;

    auto changed = std::make_shared<InputValues>(*inputs_);
    if (expected == ValueType::Image) {
        auto image = decodeTexture(static_cast<const SubstanceTextureInput*>(value));
        if (!image) return false;
        changed->images[index] = std::move(*image);
    } else {
        if (!value) return false;
        changed->values[index] = readValue(expected, value);
    }
    inputs_ = std::move(changed);
    return true;
}

void SubstanceHandle_::pushOutputs(const unsigned int* uids, unsigned int count, void* jobUserData) {
    Request request{{}, inputs_, jobUserData};
    for (unsigned int i = 0; i < count; ++i) {
        const std::size_t output = findOutput(program_, uids[i]);
        if (output < program_.outputs.size()) request.outputs.push_back(output);
    }
    std::sort(request.outputs.begin(), request.outputs.end());
    request.outputs.erase(std::unique(request.outputs.begin(), request.outputs.end()), request.outputs.end());
    if (!request.outputs.empty()) queue_.push_back(std::move(request));
}

void SubstanceHandle_::start() {
    const FlagGuard guard(running_);
    const std::vector<Request> requests = std::exchange(queue_, {});
    for (const Request& request : requests) compute(request);
}

void SubstanceHandle_::compute(const Request& request) {
    const auto runner = [this](int rows, int rowSamples, const RowFunction& function) {
        pool_->run(rows, rowSamples, function);
    };
    const auto callback = context_.callback();
    evaluate(program_, request.outputs, *request.inputs, memoryLimit(), runner,
             [&](std::size_t output, const Image& image) {
                 keepTexture(output, makeTexture(output, image));
                 if (callback) callback(this, static_cast<unsigned int>(output), request.jobUserData);
             });
}

SubstanceTexture SubstanceHandle_::makeTexture(std::size_t output, const Image& image) {
    const ProgramOutput& description = program_.outputs[output];
    const PixelFormat format = findPixelFormat(description.format).value_or(PixelFormat{});
    const int levels = mipmapLevels(image.width(), image.height(), description.mipmaps);
    SubstanceTexture texture{};
    texture.level0Width = static_cast<unsigned short>(image.width());
    texture.level0Height = static_cast<unsigned short>(image.height());
    texture.pixelFormat = static_cast<unsigned char>(description.format);
    texture.mipmapCount = static_cast<unsigned char>(levels);
    texture.buffer = context_.allocateBuffer(textureBytes(image.width(), image.height(), format, levels));
    try {
        const auto runner = [this](int rows, int rowSamples, const RowFunction& function) {
            pool_->run(rows, rowSamples, function);
        };
        encodeTexture(image, format, levels, runner, static_cast<unsigned char*>(texture.buffer));
    } catch (...) {
        context_.freeBuffer(texture.buffer);
        throw;
    }
    return texture;
}

// A texture of an earlier run that nobody fetched gives way.
void SubstanceHandle_::keepTexture(std::size_t output, const SubstanceTexture& texture) {
    try {
        SubstanceTexture& place = textures_[output];
        if (place.buffer) context_.freeBuffer(place.buffer);
        place = texture;
    } catch (...) {
        context_.freeBuffer(texture.buffer);
        throw;
    }
}

std::optional<SubstanceTexture> SubstanceHandle_::takeTexture(unsigned int outputIndex) {
    const auto found = textures_.find(outputIndex);
    if (found == textures_.end()) return std::nullopt;
    const SubstanceTexture texture = found->second;
    textures_.erase(found);
    return texture;
}
