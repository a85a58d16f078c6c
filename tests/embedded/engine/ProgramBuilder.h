// Writes programs for the tests of nodes and engine: a line for each node, parameters by name.
#pragma once

#include "embedded/engine/PlainEvaluator.h"
#include "tests/embedded/program/SamplePrograms.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <map>
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

class ProgramBuilder {
public:
    using Parameters = std::map<std::string, std::vector<double>>;

    ProgramBuilder(int log2Width, int log2Height) { setSize(log2Width, log2Height); }

    // For the nodes that come after.
    void setSize(int log2Width, int log2Height) {
        size_ =
            makeValue(ValueType::Integer2, {static_cast<double>(log2Width), static_cast<double>(log2Height)});
    }

    std::int32_t node(const std::string& kind, const std::vector<std::int32_t>& sources = {},
                      const Parameters& parameters = {}) {
        ProgramNode node = makeNode(kind, sources);
        for (const auto& [name, numbers] : parameters) {
            Value& constant = parameter(node, name).constant;
            constant = makeValue(constant.type, numbers);
        }
        node.resolution.constant = size_;
        program.nodes.push_back(std::move(node));
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

    // An image from outside, in its own size.
    std::int32_t picture(const Image& image, const Parameters& parameters = {}) {
        auto copy = std::make_shared<Image>(image.width(), image.height(), image.channels());
        std::copy_n(image.row(0), image.sampleCount(), copy->row(0));
        images_.push_back(std::move(copy));
        program.inputs.push_back(makeInput(0, ValueType::Image));
        const Value size = size_;
        const auto log2 = [](int side) { return std::log2(static_cast<double>(side)); };
        size_ = makeValue(ValueType::Integer2, {log2(image.width()), log2(image.height())});
        const std::int32_t shown = node("imageInput", {}, parameters);
        parameter(program.nodes.back(), "image").input = static_cast<std::int32_t>(program.inputs.size()) - 1;
        size_ = size;
        return shown;
    }

    // Pictures have to come before all other inputs.
    InputValues inputValues() const {
        InputValues values = defaultValues(program);
        std::copy(images_.begin(), images_.end(), values.images.begin());
        return values;
    }

    Image imageOf(std::int32_t node) const {
        return evaluatePlainly(program, static_cast<std::size_t>(node), inputValues());
    }

    Program program;

private:
    Value size_;
    std::vector<std::shared_ptr<const Image>> images_;
};

} // namespace embedded
