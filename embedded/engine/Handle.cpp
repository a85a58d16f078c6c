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
    context_.cache()->giveUpAllOf(this);
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

// Textures in buffers of the context; those that the evaluation leaves unfinished go with it.
class SubstanceHandle_::Textures : public TextureReceiver {
public:
    Textures(SubstanceHandle_& handle, void* jobUserData)
        : handle_(handle)
        , callback_(handle.context_.callback())
        , jobUserData_(jobUserData) {}

    ~Textures() override {
        for (const auto& [output, texture] : unfinished_) handle_.context_.freeBuffer(texture.buffer);
    }

    unsigned char* begin(std::size_t output, const TextureShape& shape) override {
        SubstanceTexture& texture = unfinished_[output];
        texture.level0Width = static_cast<unsigned short>(shape.width);
        texture.level0Height = static_cast<unsigned short>(shape.height);
        texture.pixelFormat = static_cast<unsigned char>(handle_.program_.outputs[output].format);
        texture.mipmapCount = static_cast<unsigned char>(shape.levels);
        texture.buffer = handle_.context_.allocateBuffer(
            textureBytes(shape.width, shape.height, shape.format, shape.levels));
        return static_cast<unsigned char*>(texture.buffer);
    }

    void finish(std::size_t output) override {
        const auto done = unfinished_.find(output);
        handle_.keepTexture(output, done->second);
        unfinished_.erase(done);
        if (callback_) callback_(&handle_, static_cast<unsigned int>(output), jobUserData_);
    }

private:
    SubstanceHandle_& handle_;
    const SubstanceOutputCompletedCallback callback_;
    void* const jobUserData_;
    std::map<std::size_t, SubstanceTexture> unfinished_; // by output
};

void SubstanceHandle_::compute(const Request& request) {
    Workshop workshop;
    workshop.runner = [this](int rows, int rowSamples, const RowFunction& function) {
        pool_->run(rows, rowSamples, function);
    };
    workshop.memory = context_.memory();
    workshop.cache = context_.cache();
    workshop.owner = this;
    workshop.budget = context_.budget();
    workshop.limit = memoryLimit();
    Textures textures(*this, request.jobUserData);
    addToStatistics(evaluate(program_, request.outputs, *request.inputs, workshop, textures));
}

// A texture of an earlier run that nobody fetched gives way.
void SubstanceHandle_::keepTexture(std::size_t output, const SubstanceTexture& texture) {
    SubstanceTexture& place = textures_[output];
    if (place.buffer) context_.freeBuffer(place.buffer);
    place = texture;
}

std::optional<SubstanceTexture> SubstanceHandle_::takeTexture(unsigned int outputIndex) {
    const auto found = textures_.find(outputIndex);
    if (found == textures_.end()) return std::nullopt;
    const SubstanceTexture texture = found->second;
    textures_.erase(found);
    return texture;
}
