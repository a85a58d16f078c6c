// One graph of a package by itself: a material of its values, and all its outputs as the engine makes them.
// Image inputs have no image.
#pragma once

#include "framework/description/PackageDesc.h"
#include "material/Substance.h"
#include "tools/PackageFile.h"
#include "tools/Picture.h"
#include "tools/Receipt.h"
#include "tools/ValueOptions.h"

#include <string>
#include <vector>

namespace tool {

struct RenderedOutput {
    const SubstanceAir::OutputDesc* output; // the session's
    Texture texture;
    Receipt receipt;
};

class GraphSession {
public:
    // The graph is one of the file's, which outlives the session.
    GraphSession(const PackageFile& packageFile, const SubstanceAir::GraphDesc& graph,
                 const ValueOptions& options);

    const GraphInstances& graphs() const { return held->getGraphInstances(); }

    // Leaves only this output to be rendered. Throws Failure when there is none of that name.
    void selectOutput(const std::string& identifier);

    // By usage, the base colour first. Throws Failure with the reason when an output cannot be rendered.
    std::vector<RenderedOutput> render();

private:
    const PackageFile& file;
    SubstanceAir::PackageDesc package; // what the material's graph refers to
    kv::Reference<kvSubstance::Substance> held;
};

// The output that shows best what the graph is: its base colour, if it has one.
const SubstanceAir::OutputDesc& chiefOutput(const SubstanceAir::GraphDesc& graph);

} // namespace tool
