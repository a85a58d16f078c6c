#include "tools/GraphSession.h"

#include "bridge/InputCreation.h"
#include "bridge/RenderQueue.h"
#include "embedded/compiler/Suggestion.h"
#include "tools/Failure.h"

#include <algorithm>
#include <tuple>

namespace tool {
namespace {

constexpr SubstanceAir::OutputFormatOptions asDescribed{SubstanceAir::AllFormatClasses, 0};

kv::Reference<kvSubstance::Substance> makeMaterial(const SubstanceAir::GraphDesc& graph) {
    const kv::Reference<kvSubstance::Substance> material(new kvSubstance::Substance);
    const boost::shared_ptr<SubstanceAir::GraphInstance> instance(new SubstanceAir::GraphInstance(graph));
    for (const auto& input : instance->inputs) kvSubstance::createInput(*material, *input);
    material->setPackageURL(graph.packageUrl.c_str());
    material->getGraphInstances().push_back(instance);
    return material;
}

} // namespace

GraphSession::GraphSession(const PackageFile& packageFile, const SubstanceAir::GraphDesc& graph,
                           const ValueOptions& options)
    : file(packageFile)
    , package(packageFile.bytes.data(), packageFile.bytes.size(), &asDescribed)
    , held(makeMaterial(package.graphs()[static_cast<size_t>(&graph - packageFile.graphs.data())])) {
    if (graph.outputs.empty())
        throw Failure(file.name + ": the graph " + graph.packageUrl + " has no outputs");
    applyOptions(options, held, {&graph, nullptr}, file.name);
}

void GraphSession::selectOutput(const std::string& identifier) {
    std::vector<std::string> identifiers;
    bool isFound = false;
    for (const auto& output : graphs().front()->outputs) {
        output->enabled = output->desc.identifier == identifier;
        isFound |= output->enabled;
        identifiers.push_back(output->desc.identifier);
    }
    if (!isFound)
        throw Failure(file.name + ": there is no output " + embedded::quoted(identifier) +
                      embedded::suggestion(identifier, identifiers));
}

std::vector<RenderedOutput> GraphSession::render() {
    const SubstanceAir::GraphInstance& graph = *graphs().front();
    kvSubstance::RenderQueue queue;
    queue.push(*graphs().front());
    queue.run();
    Receipt receipt;
    receipt.packages = {markOf(file)};
    receipt.graph = graph.desc.packageUrl;
    receipt.values = valuesOf(graphs());
    std::vector<RenderedOutput> rendered;
    for (const auto& output : graph.outputs) {
        if (!output->enabled) continue;
        const auto result = output->grabResult();
        auto texture = result ? copyTexture(result->texture) : std::nullopt;
        if (!texture)
            throw Failure(file.name + ": the engine could not render the output " +
                          embedded::quoted(output->desc.identifier));
        receipt.output = output->desc.identifier;
        Receipt finished = completed(receipt, *texture);
        rendered.push_back({&output->desc, std::move(*texture), std::move(finished)});
    }
    std::sort(rendered.begin(), rendered.end(), [](const RenderedOutput& a, const RenderedOutput& b) {
        return std::tie(a.output->channel, a.output->identifier) <
               std::tie(b.output->channel, b.output->identifier);
    });
    return rendered;
}

const SubstanceAir::OutputDesc& chiefOutput(const SubstanceAir::GraphDesc& graph) {
    // Outputs without a known usage count as diffuse, too, so that gray ones come last.
    const auto fits = [](const SubstanceAir::OutputDesc& output) {
        return output.channel == 0 && (output.format & SubstanceFormatSrgb) != 0;
    };
    const auto found = std::find_if(graph.outputs.begin(), graph.outputs.end(), fits);
    return found == graph.outputs.end() ? graph.outputs.front() : *found;
}

} // namespace tool
