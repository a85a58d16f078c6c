// A living, editable copy of one graph.
#pragma once

#include "framework/description/GraphDesc.h"
#include "framework/render/InputInstance.h"
#include "framework/render/OutputInstance.h"

#include <boost/core/noncopyable.hpp>
#include <boost/unordered/unordered_flat_map.hpp>

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>
#include <vector>

namespace SubstanceAir {

// Shared between materials and whoever else renders it. Its description outlives it.
class GraphInstance : private boost::noncopyable {
public:
    explicit GraphInstance(const GraphDesc& description);

    // Waits for a render in progress, and takes the outputs out of every job that still waits for one.
    ~GraphInstance();

    const GraphDesc& desc;
    const std::uint64_t identity;                           // never used twice in a process
    std::vector<std::unique_ptr<OutputInstance>> outputs;   // in the description's order
    std::vector<std::unique_ptr<InputInstanceBase>> inputs; // in the description's order

    // The raw values of the state-key inputs, one behind the other.
    std::vector<unsigned char> keyBytes() const;
    void writeKeyBytes(std::vector<unsigned char>& bytes) const; // the same, in place: always as many

    // The first input of that identifier; null when there is none, and for an empty identifier.
    InputInstanceBase* findInput(std::string_view identifier) const;

private:
    // The first of each identifier, in the description's order, and their places. The identifiers are the
    // description's.
    struct NamedInput {
        std::string_view identifier;
        InputInstanceBase* instance;
    };
    std::vector<NamedInput> named;
    boost::unordered_flat_map<std::string_view, size_t, std::hash<std::string_view>> placesByIdentifier;
    mutable std::atomic<size_t> expectedPlace{0}; // hosts synchronise thousands of inputs in their order
};

} // namespace SubstanceAir
