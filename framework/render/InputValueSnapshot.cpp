#include "framework/render/InputValueSnapshot.h"

#include "framework/render/InputInstance.h"

#include <cassert>
#include <cstring>

namespace SubstanceAir {

namespace {

boost::shared_ptr<InputImage> sharedImage(const InputInstanceBase& instance) {
    return instance.desc.isImage() ? static_cast<const InputInstanceImage&>(instance).image() : nullptr;
}

} // namespace

RawValue::RawValue(const void* data, size_t size)
    : count(size) {
    assert(size <= bytes.size());
    std::memcpy(bytes.data(), data, size);
}

InputValueSnapshot::InputValueSnapshot(const InputInstanceBase& instance)
    : uid(instance.desc.uid)
    , type(instance.desc.type)
    , isStateKey(instance.isStateKey)
    , value(instance.rawData(), instance.rawSize())
    , image(sharedImage(instance)) {}

} // namespace SubstanceAir
