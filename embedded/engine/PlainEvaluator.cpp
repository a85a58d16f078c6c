#include "embedded/engine/PlainEvaluator.h"

#include "embedded/engine/NodeResolution.h"
#include "embedded/nodes/NodeKernel.h"
#include "embedded/nodes/Resample.h"

#include <deque>

namespace embedded {
namespace {

// A source in the size that a port reads it in; gray for ports that read gray.
Image shaped(const Image& source, const ResolvedNode& node, std::size_t port) {
    if (node.portChannels(port) == 1) return resampled(withChannels(source, 1), node.width, node.height);
    return resampled(source, node.width, node.height);
}

class PlainNode {
public:
    PlainNode(const ResolvedNode& node, const std::vector<const Image*>& sources)
        : ones_(static_cast<std::size_t>(node.width), 1.0f)
        , result_(node.width, node.height, node.channels) {
        run_.width = node.width;
        run_.height = node.height;
        run_.channels = node.channels;
        run_.parameters = node.parameters;
        for (std::size_t i = 0; i < sources.size(); ++i) addSource(node, sources[i], i);
        if (node.kind->kernel->prepareRows)
            computeRows(*node.kind->kernel->prepareRows(run_));
        else
            computePasses(*node.kind->kernel->prepareImage(run_));
    }

    Image takeResult() { return std::move(result_); }

private:
    void addSource(const ResolvedNode& node, const Image* source, std::size_t port) {
        run_.sourceChannels.push_back(source ? source->channels() : 0);
        const bool reads = port < node.kind->ports.size() && node.kind->ports[port].border != 0;
        const Image* image = source ? &images_.emplace_back(shaped(*source, node, port)) : nullptr;
        run_.images.push_back(image && reads ? ImageView(*image, node.portChannels(port), ones_.data())
                                             : ImageView());
        const int channels = node.portChannels(port) == 1 ? 1 : 4;
        rows_.push_back(image && !reads ? ImageView(*image, channels, ones_.data()) : ImageView());
    }

    void computeRows(const RowKernel& kernel) {
        const auto scratch = kernel.makeScratch();
        for (int y = 0; y < run_.height; ++y) {
            std::vector<SourceRow> sources(rows_.size());
            for (std::size_t i = 0; i < rows_.size(); ++i)
                for (int c = 0; c < rows_[i].channels(); ++c) sources[i].channels[c] = rows_[i].row(y, c);
            float* channels[4] = {};
            for (int c = 0; c < run_.channels; ++c) channels[c] = result_.row(y, c);
            kernel.compute({y, 0, run_.width}, sources.data(), scratch.get(), channels);
        }
    }

    void computePasses(ImageKernel& kernel) {
        for (int pass = 0; pass < kernel.passCount(); ++pass)
            kernel.computeRows(pass, 0, kernel.rowCount(pass), result_);
    }

    NodeRun run_;
    std::vector<float> ones_;
    std::deque<Image> images_;
    std::vector<ImageView> rows_; // what ports without border read
    Image result_;
};

Image compute(const Program& program, std::size_t index, const InputValues& inputs) {
    const ProgramNode& node = program.nodes[index];
    std::deque<Image> images;
    std::vector<const Image*> sources;
    std::vector<int> channels;
    for (const std::int32_t source : node.sources) {
        const bool connected = source != ProgramNode::unconnected;
        if (connected) images.push_back(compute(program, static_cast<std::size_t>(source), inputs));
        sources.push_back(connected ? &images.back() : nullptr);
        channels.push_back(connected ? images.back().channels() : 0);
    }
    const ResolvedNode resolved = resolveNode(node, channels, inputs);
    if (resolved.takesPicture) sources.push_back(resolved.picture.get());
    return PlainNode(resolved, sources).takeResult();
}

} // namespace

Image evaluatePlainly(const Program& program, std::size_t node, const InputValues& inputs) {
    return compute(program, node, inputs);
}

} // namespace embedded
