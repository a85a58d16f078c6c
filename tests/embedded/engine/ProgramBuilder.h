// Writes programs for the tests of nodes and engine: a line for each node, parameters by name.
#pragma once

#include "embedded/engine/PlainEvaluator.h"
#include "tests/embedded/program/SamplePrograms.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace embedded {

// Bit by bit, and finite.
inline bool sameNumbers(const Image& image, const Image& expected) {
    const float* const samples = expected.row(0);
    const std::size_t count = expected.sampleCount();
    return image.sameSize(expected) && image.channels() == expected.channels() &&
           std::all_of(samples, samples + count, [](float sample) { return std::isfinite(sample); }) &&
           std::memcmp(image.row(0), samples, count * sizeof(float)) == 0;
}

// A function of x, y and the channel.
template <class Function>
Image painted(int width, int height, int channels, const Function& function) {
    Image image(width, height, channels);
    for (int y = 0; y < height; ++y)
        for (int c = 0; c < channels; ++c)
            for (int x = 0; x < width; ++x) image.row(y, c)[x] = static_cast<float>(function(x, y, c));
    return image;
}

class ProgramBuilder {
public:
    ProgramBuilder(int log2Width, int log2Height) { setSize(log2Width, log2Height); }

    // For the nodes that come after.
    void setSize(double log2Width, double log2Height) {
        size_ = makeValue(ValueType::Integer2, {log2Width, log2Height});
    }

    std::int32_t node(const std::string& kind, const std::vector<std::int32_t>& sources = {},
                      const Parameters& parameters = {}) {
        program.nodes.push_back(makeNode(kind, sources, parameters));
        program.nodes.back().resolution.constant = size_;
        return static_cast<std::int32_t>(program.nodes.size()) - 1;
    }

    // Sources from the choices, parameters from their ranges.
    std::int32_t randomNode(const NodeKind& kind, const std::vector<std::int32_t>& choices,
                            std::mt19937& random) {
        std::vector<std::int32_t> sources;
        for (const PortInfo& port : kind.ports) {
            const bool isConnected = port.required || random() % 2 == 0;
            sources.push_back(isConnected ? choices[random() % choices.size()] : ProgramNode::unconnected);
        }
        Parameters parameters;
        for (const ParameterInfo& info : kind.parameters) {
            if (info.type == ValueType::Image || random() % 3 == 0) continue;
            std::vector<double>& numbers = parameters[info.name];
            numbers.resize(4);
            for (double& number : numbers) {
                const double share = random() / 4294967295.0;
                // Mostly small numbers of the range, where the interesting ones are.
                number = info.minimum + (info.maximum - info.minimum) * share * share * share;
            }
        }
        return node(kind.name, sources, parameters);
    }

    // An image from outside, in its own size. These come before all other inputs.
    std::int32_t picture(Image image) {
        const auto input = static_cast<std::int32_t>(program.inputs.size());
        program.inputs.push_back(makeInput(0, ValueType::Image));
        const std::int32_t shown = node("imageInput", {}, {{"colour", {image.channels() > 1 ? 1.0 : 0.0}}});
        ProgramNode& added = program.nodes.back();
        const auto log2 = [](int side) { return std::log2(static_cast<double>(side)); };
        added.resolution.constant =
            makeValue(ValueType::Integer2, {log2(image.width()), log2(image.height())});
        parameter(added, "image").input = input;
        images_.push_back(std::make_shared<const Image>(std::move(image)));
        return shown;
    }

    InputValues inputValues() const {
        InputValues values = defaultValues(program);
        std::copy(images_.begin(), images_.end(), values.images.begin());
        return values;
    }

    Image imageOf(std::int32_t node) const {
        return evaluatePlainly(program, static_cast<std::size_t>(node), inputValues());
    }

    // Of a node that is made for it.
    Image imageOf(const std::string& kind, const std::vector<std::int32_t>& sources,
                  const Parameters& parameters) {
        return imageOf(node(kind, sources, parameters));
    }

    Program program;

private:
    Value size_;
    std::vector<std::shared_ptr<const Image>> images_;
};

} // namespace embedded
