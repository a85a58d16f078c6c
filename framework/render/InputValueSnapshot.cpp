#include "framework/render/InputValueSnapshot.h"

#include "framework/render/InputInstance.h"

namespace SubstanceAir {

namespace {

std::vector<unsigned char> rawBytes(const InputInstanceBase& instance) {
    const auto* const first = static_cast<const unsigned char*>(instance.rawData());
    return {first, first + instance.rawSize()};
}

boost::shared_ptr<InputImage> sharedImage(const InputInstanceBase& instance) {
    const auto* const input = dynamic_cast<const InputInstanceImage*>(&instance);
    return input ? input->image() : nullptr;
}

} // namespace

InputValueSnapshot::InputValueSnapshot(const InputInstanceBase& instance)
    : uid(instance.desc.uid)
    , type(instance.desc.type)
    , isStateKey(instance.isStateKey)
    , value(rawBytes(instance))
    , image(sharedImage(instance)) {}

} // namespace SubstanceAir
