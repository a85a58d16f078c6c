// Runs the evaluator and keeps the textures it makes.
#pragma once

#include "embedded/engine/Evaluator.h"
#include "embedded/engine/TextureEncoding.h"
#include "tests/embedded/engine/ProgramBuilder.h"

#include <map>
#include <vector>

namespace embedded {

using Bytes = std::vector<unsigned char>;

struct RenderedTexture {
    TextureShape shape;
    Bytes bytes;
    bool finished = false;
};

class RenderedTextures : public TextureReceiver {
public:
    unsigned char* begin(std::size_t output, const TextureShape& shape) override {
        RenderedTexture& texture = textures[output];
        texture.shape = shape;
        texture.bytes.resize(textureBytes(shape.width, shape.height, shape.format, shape.levels));
        return texture.bytes.data();
    }
    void finish(std::size_t output) override { textures.at(output).finished = true; }

    std::map<std::size_t, RenderedTexture> textures;
};

inline Workshop plainWorkshop() {
    Workshop workshop;
    workshop.runner = runInOneBand;
    workshop.memory = std::make_shared<ImageMemory>(0);
    return workshop;
}

// The numbers of a texture in a float format, as the image they were; opaque colours without alpha.
inline Image imageOf(const RenderedTexture& texture, int channels) {
    const TextureShape& shape = texture.shape;
    return painted(shape.width, shape.height, channels, [&](int x, int y, int c) {
        const int place = shape.format.channels * (y * shape.width + x) + c;
        float number = 0;
        std::memcpy(&number, texture.bytes.data() + sizeof number * static_cast<std::size_t>(place),
                    sizeof number);
        return number;
    });
}

} // namespace embedded
