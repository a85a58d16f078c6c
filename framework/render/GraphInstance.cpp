#include "framework/render/GraphInstance.h"

#include "framework/render/Renderer.h"
#include "framework/render/RendererAccess.h"

#include <atomic>

namespace SubstanceAir {

namespace {

std::uint64_t nextIdentity() {
    static std::atomic<std::uint64_t> last{0};
    return ++last;
}

} // namespace

GraphInstance::GraphInstance(const GraphDesc& description)
    : desc(description)
    , identity(nextIdentity()) {
    inputs.reserve(desc.inputs.size());
    named.reserve(desc.inputs.size());
    placesByIdentifier.reserve(desc.inputs.size());
    for (const OutputDesc& output : desc.outputs) outputs.push_back(std::make_unique<OutputInstance>(output));
    for (const auto& input : desc.inputs) {
        inputs.push_back(input->instantiate(*this));
        if (!input->identifier.empty() && placesByIdentifier.emplace(input->identifier, named.size()).second)
            named.push_back({input->identifier, inputs.back().get()});
    }
}

GraphInstance::~GraphInstance() {
    {
        const IdleRendererAccess renderer;
        if (renderer) renderer->forgetGraph(*this);
    }
    outputs.clear(); // before the inputs
}

std::vector<unsigned char> GraphInstance::keyBytes() const {
    std::vector<unsigned char> bytes;
    writeKeyBytes(bytes);
    return bytes;
}

void GraphInstance::writeKeyBytes(std::vector<unsigned char>& bytes) const {
    bytes.clear();
    for (const auto& input : inputs) {
        if (!input->isStateKey) continue;
        const auto* const first = static_cast<const unsigned char*>(input->rawData());
        bytes.insert(bytes.end(), first, first + input->rawSize());
    }
}

InputInstanceBase* GraphInstance::findInput(std::string_view identifier) const {
    size_t place = expectedPlace.load(std::memory_order_relaxed);
    if (place >= named.size() || named[place].identifier != identifier) {
        const auto found = placesByIdentifier.find(identifier);
        if (found == placesByIdentifier.end()) return nullptr;
        place = found->second;
    }
    expectedPlace.store(place + 1, std::memory_order_relaxed);
    return named[place].instance;
}

} // namespace SubstanceAir
