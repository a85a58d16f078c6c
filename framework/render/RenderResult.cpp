#include "framework/render/RenderResult.h"

#include "support/ProcessEnd.h"

#include <utility>

namespace SubstanceAir {

RenderResult::RenderResult(const SubstanceTexture& finished, SubstanceContext* allocator,
                           std::shared_ptr<const void> contextKeeper) noexcept
    : texture(finished)
    , context(allocator)
    , keeper(std::move(contextKeeper)) {}

RenderResult::~RenderResult() {
    if (texture.buffer && !support::isProcessEnding()) substanceContextMemoryFree(context, texture.buffer);
}

} // namespace SubstanceAir
