// The living outputs of a graph instance: whether they are out of date, and their finished textures.
#pragma once

#include "framework/description/OutputDesc.h"
#include "framework/render/RenderResult.h"

#include <boost/core/noncopyable.hpp>

#include <atomic>
#include <cstdint>
#include <deque>
#include <memory>

namespace SubstanceAir {

// Belongs to the host's thread, but for two things that the render thread shares: the dirty flag, which it
// sets again after a failure, and the queue of results, which has a mutex of its own, process-wide, held for
// one push or pop.
class OutputInstance : private boost::noncopyable {
public:
    explicit OutputInstance(const OutputDesc& description);
    ~OutputInstance(); // frees the results that nobody took

    // The oldest finished texture, which becomes the caller's; null when there is none. One that came late
    // gives way to what came after it: hosts that take one for each request would see old pictures from then
    // on.
    std::unique_ptr<RenderResult> grabResult();
    void appendResult(std::unique_ptr<RenderResult> result);

    const OutputDesc& desc;
    bool enabled = true;            // only enabled outputs are rendered
    std::uint64_t hostData = 0;     // the host's; rendering does not look at it
    std::atomic<bool> dirty = true; // to be rendered; cleared when a job takes the output

private:
    std::unique_ptr<RenderResult> takeOldest(); // null when there is none

    std::deque<std::unique_ptr<RenderResult>> results; // oldest first
};

} // namespace SubstanceAir
