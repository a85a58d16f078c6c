// A finished texture.
#pragma once

#include "platform/engine.h"

#include <boost/core/noncopyable.hpp>

#include <memory>

namespace SubstanceAir {

// Owns the engine's buffer and returns it to the engine when it dies, on whichever thread.
class RenderResult : private boost::noncopyable {
public:
    // The keeper is whatever has to live until the buffer is freed.
    RenderResult(const SubstanceTexture& finished, SubstanceContext* allocator,
                 std::shared_ptr<const void> contextKeeper) noexcept;
    ~RenderResult();

    const SubstanceTexture texture;
    SubstanceContext* const context; // which allocated the buffer
    bool isLate = false;             // of a job that an earlier run should have rendered

private:
    const std::shared_ptr<const void> keeper;
};

} // namespace SubstanceAir
