#include "embedded/engine/NodeEvaluation.h"

#include "embedded/nodes/NodeKernel.h"
#include "embedded/nodes/Resample.h"

#include <algorithm>
#include <deque>
#include <string_view>

namespace embedded {
namespace {

int sideOf(std::int32_t log2) {
    return 1 << std::clamp<std::int32_t>(log2, 0, maximumLog2Side);
}

int integerParameter(const ResolvedNode& node, std::string_view name) {
    for (std::size_t i = 0; i < node.parameters.size(); ++i)
        if (node.kind->parameters[i].name == name) return node.parameters[i].integers[0];
    return 0;
}

int resultChannels(const ResolvedNode& node, const std::vector<const ResolvedNode*>& sources) {
    switch (node.kind->result) {
    case ResultChannels::Gray:
        return 1;
    case ResultChannels::Colour:
        return 4;
    case ResultChannels::ByParameter:
        return integerParameter(node, "colour") == 0 ? 1 : 4;
    case ResultChannels::Widest:
        break;
    }
    int channels = 1;
    for (std::size_t i = 0; i < sources.size(); ++i)
        if (sources[i] && node.kind->ports[i].channels == PortChannels::Any)
            channels = std::max(channels, sources[i]->channels);
    return channels;
}

// Unsigned addition: seeds wrap around.
std::int32_t addSeeds(std::int32_t a, std::int32_t b) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}

// Images in the shape that a kernel reads: borrowed where they have it, converted copies elsewhere.
class ShapedImages {
public:
    const Image* shape(const Image* image, int width, int height, int channels) {
        if (!image) return nullptr;
        if (image->channels() > channels) image = keep(withChannels(*image, channels)); // less to resample
        if (image->width() != width || image->height() != height)
            image = keep(resampled(*image, width, height));
        if (image->channels() != channels) image = keep(withChannels(*image, channels));
        return image;
    }

private:
    const Image* keep(Image image) { return &copies_.emplace_back(std::move(image)); }

    std::deque<Image> copies_;
};

} // namespace

int ResolvedNode::portChannels(std::size_t port) const {
    switch (kind->ports[port].channels) {
    case PortChannels::Gray:
        return 1;
    case PortChannels::Colour:
        return 4;
    case PortChannels::Any:
        break;
    }
    return channels;
}

ResolvedNode resolveNode(const ProgramNode& node, const std::vector<const ResolvedNode*>& sources,
                         const InputValues& inputs) {
    ResolvedNode resolved;
    resolved.kind = findNodeKind(node.kind);
    const auto size = resolveBinding(node.resolution, ValueType::Integer2, inputs).integers;
    resolved.width = sideOf(size[0]);
    resolved.height = sideOf(size[1]);
    for (std::size_t i = 0; i < node.parameters.size(); ++i) {
        const ParameterInfo& parameter = resolved.kind->parameters[i];
        const Binding& binding = node.parameters[i];
        if (parameter.type == ValueType::Image) {
            resolved.parameters.push_back(Value{ValueType::Image, {}, {}});
            if (binding.input != Binding::constantOnly)
                resolved.image = inputs.images[static_cast<std::size_t>(binding.input)];
            continue;
        }
        Value value = withinRange(resolveBinding(binding, parameter.type, inputs), parameter);
        if (std::string_view(parameter.name) == "seed")
            value.integers[0] = addSeeds(value.integers[0],
                                         resolveBinding(node.seed, ValueType::Integer, inputs).integers[0]);
        resolved.parameters.push_back(value);
    }
    resolved.channels = resultChannels(resolved, sources);
    return resolved;
}

Image evaluateNode(const ResolvedNode& node, const std::vector<const Image*>& sources,
                   const BandRunner& runner) {
    ShapedImages shaped;
    NodeRun run;
    run.width = node.width;
    run.height = node.height;
    run.channels = node.channels;
    run.parameters = node.parameters;
    for (std::size_t i = 0; i < sources.size(); ++i)
        run.sources.push_back(shaped.shape(sources[i], node.width, node.height, node.portChannels(i)));
    run.image = shaped.shape(node.image.get(), node.width, node.height, node.channels);

    const auto kernel = node.kind->kernel->prepare(run);
    Image result(node.width, node.height, node.channels);
    const int rowSamples = node.width * node.channels;
    for (int pass = 0; pass < kernel->passCount(); ++pass)
        runner(kernel->rowCount(pass), rowSamples,
               [&](int begin, int end) { kernel->computeRows(pass, begin, end, result); });
    return result;
}

} // namespace embedded
