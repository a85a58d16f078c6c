// The value of an input at the moment a job was made from its graph.
#pragma once

#include <boost/shared_ptr.hpp>

#include <array>
#include <cstddef>

namespace SubstanceAir {

class InputImage;
class InputInstanceBase;

// The raw data of any input: up to four components of four bytes, or a pointer.
class RawValue {
public:
    RawValue(const void* data, size_t size); // copies

    const void* data() const { return bytes.data(); }

    friend bool operator==(const RawValue& a, const RawValue& b) {
        return a.count == b.count && a.bytes == b.bytes;
    }

private:
    alignas(std::max_align_t) std::array<unsigned char, 16> bytes{}; // zeros behind the data
    size_t count;
};

// Keeps nothing of the instance but copies, so that it may outlive it.
struct InputValueSnapshot {
    explicit InputValueSnapshot(const InputInstanceBase& instance);

    unsigned int uid;
    unsigned int type; // an InputType
    bool isStateKey;
    RawValue value;
    boost::shared_ptr<InputImage> image; // keeps alive what an image's raw data points to
};

} // namespace SubstanceAir
