// Computes wanted outputs of a program: what changed since earlier runs, each node once.
#pragma once

#include "embedded/engine/Bands.h"
#include "embedded/engine/GroupRun.h"
#include "embedded/engine/ImageCache.h"
#include "embedded/engine/InputValues.h"
#include "embedded/engine/Statistics.h"
#include "embedded/nodes/ImageMemory.h"
#include "embedded/program/Program.h"

#include <cstdint>
#include <limits>
#include <memory>
#include <vector>

namespace embedded {

// What an evaluation works with.
struct Workshop {
    BandRunner runner;
    std::shared_ptr<ImageMemory> memory;
    std::shared_ptr<ImageCache> cache; // null: nothing is kept between runs
    const void* owner = nullptr;       // of what goes into the cache
    // Images of earlier runs give way when all images would need more bytes than this.
    std::uint64_t budget = 0;
    // A run that needs more bytes than this for itself is refused.
    std::uint64_t limit = std::numeric_limits<std::uint64_t>::max();
    int segmentLength = defaultSegmentLength;
};

struct TextureShape {
    int width;
    int height;
    int levels;
    PixelFormat format;
};

// Takes the textures; outputs are indices into Program::outputs.
class TextureReceiver {
public:
    TextureReceiver() = default;
    virtual ~TextureReceiver() = default;
    TextureReceiver(const TextureReceiver&) = delete;
    TextureReceiver& operator=(const TextureReceiver&) = delete;

    // Where the bytes of a texture shall be written: textureBytes() of them, valid until the evaluation ends.
    virtual unsigned char* begin(std::size_t output, const TextureShape& shape) = 0;
    // All bytes of a texture are there.
    virtual void finish(std::size_t output) = 0;
};

// The program has passed the verifier; the outputs are indices into Program::outputs, each once. Throws
// std::bad_alloc, before any work when the images would need more than the workshop's limit; textures that
// are finished by then stay good.
Statistics evaluate(const Program& program, const std::vector<std::size_t>& outputs,
                    const InputValues& inputs, const Workshop& workshop, TextureReceiver& receiver);

} // namespace embedded
