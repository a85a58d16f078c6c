#include "embedded/program/Cost.h"

#include "embedded/nodes/NodeKind.h"
#include "embedded/program/PixelFormat.h"
#include "embedded/program/ProgramFacts.h"
#include "embedded/program/Verifier.h"

#include <algorithm>
#include <string_view>

namespace embedded {
namespace {

struct NodeShape {
    std::uint64_t width = 1;
    std::uint64_t height = 1;
    int channels = 1;
    std::int32_t sizeInput = Binding::constantOnly; // which decides about the size

    std::uint64_t pixels() const { return width * height; }
    // What follows an input may be smaller than said, for instance where one number gives both sides.
    bool mayDifferInSize(const NodeShape& other) const {
        return width != other.width || height != other.height || sizeInput != other.sizeInput;
    }
};

// No fewer than the result has when the program runs.
int mostChannels(const ProgramNode& node, const std::vector<NodeShape>& shapes) {
    constexpr int gray = 1;
    constexpr int colour = 4;
    const NodeKind& kind = *findNodeKind(node.kind);
    switch (kind.result) {
    case ResultChannels::Gray:
        return gray;
    case ResultChannels::Colour:
        return colour;
    case ResultChannels::ByParameter:
        for (std::size_t i = 0; i < node.parameters.size(); ++i)
            if (std::string_view(kind.parameters[i].name) == "colour")
                if (const auto value = knownParameters(node)[i]) return value->integers[0] ? colour : gray;
        return colour;
    case ResultChannels::Widest:
        break;
    }
    int most = gray;
    for (std::size_t i = 0; i < node.sources.size(); ++i)
        if (kind.ports[i].channels == PortChannels::Any && node.sources[i] != ProgramNode::unconnected)
            most = std::max(most, shapes[static_cast<std::size_t>(node.sources[i])].channels);
    return most;
}

// As Cost.h says. A node for an image from outside counts as well: what it passes on may be one.
bool isCheapGenerator(const ProgramNode& node) {
    const NodeKind& kind = *findNodeKind(node.kind);
    const auto isImage = [](const ParameterInfo& info) { return info.type == ValueType::Image; };
    const auto isConnected = [](std::int32_t source) { return source != ProgramNode::unconnected; };
    return kind.costPerPixel <= cheapGenerator &&
           (std::any_of(kind.parameters.begin(), kind.parameters.end(), isImage) ||
            std::none_of(node.sources.begin(), node.sources.end(), isConnected));
}

class Costing {
public:
    Costing(const Program& program, int log2Width, int log2Height)
        : program_(program)
        , log2Width_(log2Width)
        , log2Height_(log2Height) {}

    ProgramCost run(const std::vector<std::size_t>& outputs) && {
        std::vector<std::int32_t> results;
        results.reserve(outputs.size());
        for (const std::size_t output : outputs) results.push_back(program_.outputs[output].node);
        const std::vector<bool> isNeeded = neededNodes(program_, results);
        countReaders(isNeeded, results);
        for (std::size_t i = 0; i < program_.nodes.size(); ++i) {
            addShape(program_.nodes[i]);
            if (isNeeded[i]) addNode(program_.nodes[i]);
        }
        for (const std::size_t output : outputs) addOutput(program_.outputs[output]);
        return cost_;
    }

private:
    void countReaders(const std::vector<bool>& isNeeded, const std::vector<std::int32_t>& results) {
        readers_.resize(program_.nodes.size());
        for (const std::int32_t node : results) ++readers_[static_cast<std::size_t>(node)];
        for (std::size_t i = 0; i < program_.nodes.size(); ++i) {
            if (!isNeeded[i]) continue;
            for (const std::int32_t source : program_.nodes[i].sources)
                if (source != ProgramNode::unconnected) ++readers_[static_cast<std::size_t>(source)];
        }
    }

    void addShape(const ProgramNode& node) {
        const bool isDriven = node.resolution.input != Binding::constantOnly;
        const auto& constant = node.resolution.constant.integers;
        const auto side = [](std::int32_t log2) {
            return std::uint64_t{1} << std::clamp<std::int32_t>(log2, 0, maxResolution);
        };
        shapes_.push_back({side(isDriven ? log2Width_ : constant[0]),
                           side(isDriven ? log2Height_ : constant[1]), mostChannels(node, shapes_),
                           node.resolution.input});
    }

    void addNode(const ProgramNode& node) {
        const NodeShape& shape = shapes_.back();
        ++cost_.nodes;
        const std::size_t repeats = isCheapGenerator(node) ? readers_[shapes_.size() - 1] - 1 : 0;
        cost_.repeats += repeats;
        addPixels(findNodeKind(node.kind)->costPerPixel, shape.pixels() * (1 + repeats));
        cost_.bytes += shape.pixels() * static_cast<std::uint64_t>(shape.channels) * sizeof(float);
        cost_.pixels = std::max(cost_.pixels, shape.pixels());
        const NodeKind& kind = *findNodeKind(node.kind);
        for (std::size_t i = 0; i < node.sources.size(); ++i) {
            if (node.sources[i] == ProgramNode::unconnected) continue;
            const NodeShape& source = shapes_[static_cast<std::size_t>(node.sources[i])];
            const bool readsGray = kind.ports[i].channels == PortChannels::Gray || shape.channels == 1;
            if (readsGray && source.channels > 1) addConversion(source.pixels());
            if (source.mayDifferInSize(shape)) addConversion(std::max(source.pixels(), shape.pixels()));
        }
    }

    void addOutput(const ProgramOutput& output) {
        NodeShape level = shapes_[static_cast<std::size_t>(output.node)];
        const PixelFormat format = findPixelFormat(output.format).value_or(PixelFormat{});
        if (format.channels == 1 && level.channels > 1) addConversion(level.pixels());
        for (std::uint32_t i = 1; i < output.mipmaps && level.pixels() > 1; ++i) {
            level.width = std::max<std::uint64_t>(1, level.width / 2);
            level.height = std::max<std::uint64_t>(1, level.height / 2);
            addConversion(level.pixels());
        }
    }

    void addConversion(std::uint64_t pixels) {
        constexpr double costPerPixel = 20;
        ++cost_.conversions;
        addPixels(costPerPixel, pixels);
    }

    void addPixels(double costPerPixel, std::uint64_t pixels) {
        cost_.operations += costPerPixel * static_cast<double>(pixels);
        cost_.computedPixels += pixels;
    }

    const Program& program_;
    const int log2Width_;
    const int log2Height_;
    std::vector<NodeShape> shapes_;    // by node
    std::vector<std::size_t> readers_; // by node: how many times it is read by needed nodes, or shown
    ProgramCost cost_;
};

} // namespace

ProgramCost costOf(const Program& program, const std::vector<std::size_t>& outputs, int log2Width,
                   int log2Height) {
    return Costing(program, log2Width, log2Height).run(outputs);
}

} // namespace embedded
