// The value of an input at the moment a job was made from its graph.
#pragma once

#include <boost/shared_ptr.hpp>

#include <vector>

namespace SubstanceAir {

class InputImage;
class InputInstanceBase;

// Keeps nothing of the instance but copies, so that it may outlive it.
struct InputValueSnapshot {
    explicit InputValueSnapshot(const InputInstanceBase& instance);

    unsigned int uid;
    unsigned int type; // an InputType
    bool isStateKey;
    std::vector<unsigned char> value;    // the raw data
    boost::shared_ptr<InputImage> image; // keeps alive what an image's raw data points to
};

} // namespace SubstanceAir
