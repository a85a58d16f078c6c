// A node of a plan ready to run: its kernel, and what the kernel refers to.
#pragma once

#include "embedded/engine/Plan.h"

#include <memory>
#include <vector>

namespace embedded {

class PreparedNode {
public:
    // Images by node of the plan; those that ports with a border read have to be there. They outlive this.
    PreparedNode(const PlanNode& node, const std::vector<std::shared_ptr<const Image>>& images,
                 const Plan& plan, const std::shared_ptr<ImageMemory>& memory);

    const RowKernel& rows() const { return *rowKernel_; }
    ImageKernel& image() const { return *imageKernel_; }

private:
    std::unique_ptr<NodeRun> run_; // kernels refer to it
    std::vector<float> ones_;
    std::unique_ptr<RowKernel> rowKernel_;
    std::unique_ptr<ImageKernel> imageKernel_;
};

} // namespace embedded
