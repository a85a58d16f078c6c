#include "bridge/CreateSubstance.h"

#include "bridge/InputCreation.h"
#include "framework/description/PackageDesc.h"
#include "framework/render/GraphInstance.h"
#include "framework/render/PackageStackDesc.h"

#include <limits>
#include <memory>
#include <utility>
#include <vector>

namespace kvSubstance {

using SubstanceAir::PackageDesc;
using SubstanceAir::PackageStackDesc;

namespace {

constexpr size_t MaxPackageSize = std::numeric_limits<int>::max(); // no package of sense is larger

// What materials borrow and nobody deletes. It lives as long as the process, and within reach of leak
// checkers.
using Immortals = std::vector<std::unique_ptr<PackageDesc>>;

Immortals& immortals(size_t room) {
    static Immortals* const kept = new Immortals;
    if (kept->capacity() < kept->size() + room) kept->reserve(2 * kept->size() + room);
    return *kept;
}

// The label is in the platform's encoding, where those of inputs are UTF-8: on purpose, hosts show each with
// the encoding that it came in.
void fillMaterial(Substance& material) {
    const auto graphs = material.getGraphInstances();
    for (const auto& graph : graphs) {
        for (const auto& instance : graph->inputs) createInput(material, *instance);
        material.setPackageURL(graph->desc.packageUrl.c_str());
        material.setLabel(kvString::IString(graph->desc.label.c_str(), kvString::EncodingMultibyte));
    }
}

std::unique_ptr<PackageDesc> readPackage(const kv::vector<char>& content) {
    const SubstanceAir::OutputFormatOptions options{SubstanceAir::AllFormatClasses, 0};
    return std::make_unique<PackageDesc>(content.data(), content.size(), &options);
}

} // namespace

kv::Reference<Substance> createSubstance(PackageDesc* first, PackageDesc* second) {
    if (!first || !second || first->graphs().empty() || second->graphs().empty()) return {};
    std::unique_ptr<PackageStackDesc> stack; // dies after the material, whose graphs refer to it
    const kv::Reference<Substance> material(new Substance);
    stack = std::make_unique<PackageStackDesc>(first->graphs().front(), second->graphs().front(),
                                               SubstanceAir::ConnectionList());
    SubstanceAir::instantiateGraphs(material->getGraphInstances(), *stack);
    fillMaterial(*material);
    material->setPackageDesc(stack.get(), first, second);
    immortals(1).push_back(std::move(stack));
    return material;
}

kv::Reference<Substance> createSubstance(const kv::vector<char>& first, const kv::vector<char>& second) {
    if (first.size() > MaxPackageSize || second.size() > MaxPackageSize) return {};
    auto firstPackage = readPackage(first);
    auto secondPackage = readPackage(second);
    Immortals& kept = immortals(3); // room for the stack, too, so that nothing can fail once it is there
    kv::Reference<Substance> material = createSubstance(firstPackage.get(), secondPackage.get());
    if (material) {
        kept.push_back(std::move(firstPackage));
        kept.push_back(std::move(secondPackage));
    }
    return material;
}

} // namespace kvSubstance
