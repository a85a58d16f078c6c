#include "embedded/engine/NodePreparation.h"

#include "embedded/nodes/Resample.h"

namespace embedded {

PreparedNode::PreparedNode(const PlanNode& node, const std::vector<std::shared_ptr<const Image>>& images,
                           const Plan& plan, const std::shared_ptr<ImageMemory>& memory)
    : run_(std::make_unique<NodeRun>()) {
    run_->width = node.width;
    run_->height = node.height;
    run_->channels = node.channels;
    run_->parameters = node.parameters;
    run_->memory = memory;
    for (const PlanSource& source : node.sources) {
        run_->sourceChannels.push_back(source.connected() ? plan.nodes[source.node].channels : 0);
        ImageView view;
        if (source.connected() && source.border != 0) {
            const Image& image = *images[source.node];
            if (source.channels == 4 && image.channels() < 4)
                ones_.resize(static_cast<std::size_t>(image.width()), 1.0f); // all have the node's size
            view = ImageView(image, source.channels, ones_.data());
        }
        run_->images.push_back(view);
    }
    if (node.isResampling())
        imageKernel_ = prepareResampling(run_->images[0], node.width, node.height);
    else if (node.kind->kernel->prepareRows)
        rowKernel_ = node.kind->kernel->prepareRows(*run_);
    else
        imageKernel_ = node.kind->kernel->prepareImage(*run_);
}

} // namespace embedded
