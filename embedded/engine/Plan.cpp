#include "embedded/engine/Plan.h"

#include "embedded/engine/Luminance.h"
#include "embedded/engine/NodeResolution.h"
#include "embedded/engine/TextureEncoding.h"
#include "embedded/program/PixelFormat.h"
#include "embedded/program/ProgramFacts.h"

#include <algorithm>
#include <map>
#include <optional>

namespace embedded {
namespace {

class KeyBytes {
public:
    template <typename Number>
    KeyBytes& add(const Number& number) {
        const auto* const first = reinterpret_cast<const unsigned char*>(&number);
        bytes_.insert(bytes_.end(), first, first + sizeof(Number));
        return *this;
    }

    const std::vector<unsigned char>& bytes() const { return bytes_; }

private:
    std::vector<unsigned char> bytes_;
};

class PlanBuilder {
public:
    PlanBuilder(const Program& program, const InputValues& inputs)
        : program_(program)
        , inputs_(inputs)
        , planned_(program.nodes.size(), PlanSource::nothing) {}

    Plan build(const std::vector<std::size_t>& outputs) && {
        std::vector<std::int32_t> shown;
        shown.reserve(outputs.size());
        for (const std::size_t output : outputs) shown.push_back(program_.outputs[output].node);
        const std::vector<bool> needed = neededNodes(program_, shown);
        for (std::size_t i = 0; i < program_.nodes.size(); ++i)
            if (needed[i]) planned_[i] = addNode(program_.nodes[i]);
        for (const std::size_t output : outputs) addShowings(output);
        std::stable_sort(plan_.showings.begin(), plan_.showings.end(),
                         [](const Showing& a, const Showing& b) { return a.node < b.node; });
        return std::move(plan_);
    }

private:
    std::size_t addNode(const ProgramNode& node) {
        std::vector<std::size_t> sources;
        std::vector<int> sourceChannels;
        for (const std::int32_t source : node.sources) {
            const bool connected = source != ProgramNode::unconnected;
            sources.push_back(connected ? planned_[static_cast<std::size_t>(source)] : PlanSource::nothing);
            sourceChannels.push_back(connected ? plan_.nodes[sources.back()].channels : 0);
        }
        ResolvedNode resolved = resolveNode(node, sourceChannels, inputs_);
        if (resolved.takesPicture) {
            sources.push_back(resolved.picture ? addPicture(resolved.picture) : PlanSource::nothing);
            if (const auto image = passedOn(resolved, sources)) return *image;
        }

        PlanNode planned;
        planned.kind = resolved.kind;
        planned.width = resolved.width;
        planned.height = resolved.height;
        planned.channels = resolved.channels;
        for (std::size_t i = 0; i < sources.size(); ++i)
            planned.sources.push_back(shaped(sources[i], resolved, i));
        planned.parameters = std::move(resolved.parameters);
        return add(std::move(planned));
    }

    // A node for an image from outside gives what it is given, if that has the node's shape.
    std::optional<std::size_t> passedOn(const ResolvedNode& node, const std::vector<std::size_t>& sources) {
        const auto given = std::find_if(sources.begin(), sources.end(),
                                        [](std::size_t source) { return source != PlanSource::nothing; });
        if (given == sources.end()) return std::nullopt;
        const std::size_t image =
            shaped(*given, node, static_cast<std::size_t>(given - sources.begin())).node;
        if (plan_.nodes[image].channels != node.channels) return std::nullopt;
        return image;
    }

    PlanSource shaped(std::size_t source, const ResolvedNode& reader, std::size_t port) {
        if (source == PlanSource::nothing) return {};
        const int channels = reader.portChannels(port);
        const bool isPort = port < reader.kind->ports.size();
        const std::size_t withChannels = channels == 1 ? asGray(source) : source; // less to resample
        return {withSize(withChannels, reader.width, reader.height), channels,
                isPort ? reader.kind->ports[port].border : 0};
    }

    std::size_t addPicture(const std::shared_ptr<const Image>& image) {
        PlanNode picture;
        picture.picture = image;
        picture.width = image->width();
        picture.height = image->height();
        picture.channels = image->channels();
        return add(std::move(picture));
    }

    std::size_t asGray(std::size_t source) {
        if (plan_.nodes[source].channels == 1) return source;
        PlanNode gray;
        gray.kind = &luminanceKind();
        gray.width = plan_.nodes[source].width;
        gray.height = plan_.nodes[source].height;
        gray.sources = {{source, 4, 0}};
        return add(std::move(gray));
    }

    std::size_t withSize(std::size_t source, int width, int height) {
        if (plan_.nodes[source].width == width && plan_.nodes[source].height == height) return source;
        PlanNode resampled;
        resampled.width = width;
        resampled.height = height;
        resampled.channels = plan_.nodes[source].channels;
        resampled.sources = {{source, resampled.channels, anywhere}};
        return add(std::move(resampled));
    }

    // Smaller levels are made from the one before.
    void addShowings(std::size_t output) {
        const ProgramOutput& description = program_.outputs[output];
        const PixelFormat format = findPixelFormat(description.format).value_or(PixelFormat{});
        std::size_t node = planned_[static_cast<std::size_t>(description.node)];
        if (format.channels == 1) node = asGray(node);
        const int levels =
            mipmapLevels(plan_.nodes[node].width, plan_.nodes[node].height, description.mipmaps);
        for (int level = 0; level < levels; ++level) {
            if (level > 0)
                node = withSize(node, std::max(1, plan_.nodes[node].width / 2),
                                std::max(1, plan_.nodes[node].height / 2));
            plan_.showings.push_back({output, node, level});
        }
    }

    std::size_t add(PlanNode node) {
        node.key = makeKey(node);
        const auto [place, isNew] = indices_.emplace(node.key, plan_.nodes.size());
        if (isNew) plan_.nodes.push_back(std::move(node));
        return place->second;
    }

    ImageKey makeKey(const PlanNode& node) const {
        KeyBytes bytes;
        bytes.add(node.kind ? node.kind->code : 0u).add(node.picture ? node.picture->identity() : 0);
        bytes.add(node.width).add(node.height).add(node.channels);
        for (const Value& value : node.parameters)
            bytes.add(value.type).add(value.floats).add(value.integers);
        for (const PlanSource& source : node.sources)
            bytes.add(source.connected() ? plan_.nodes[source.node].key : ImageKey{}).add(source.channels);
        return keyOf(bytes.bytes());
    }

    const Program& program_;
    const InputValues& inputs_;
    std::vector<std::size_t> planned_; // by node of the program
    std::map<ImageKey, std::size_t> indices_;
    Plan plan_;
};

} // namespace

Plan makePlan(const Program& program, const std::vector<std::size_t>& outputs, const InputValues& inputs) {
    return PlanBuilder(program, inputs).build(outputs);
}

} // namespace embedded
