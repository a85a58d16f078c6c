#include "embedded/engine/GroupRun.h"

#include "embedded/engine/NodePreparation.h"
#include "embedded/engine/TextureEncoding.h"

#include <algorithm>
#include <array>
#include <map>

namespace embedded {
namespace {

// Where a channel of a segment lies: in a row of an image, in the thread's own memory, or nowhere.
struct ChannelPlace {
    enum Kind { Nowhere, InImage, InBuffer, Ones } kind = Nowhere;
    const Image* image = nullptr;
    int channel = 0; // of the image
    int buffer = 0;
};

using PixelPlace = std::array<ChannelPlace, 4>;

// As a port reads it: gray stands in for each colour, and an opaque colour has an alpha of 1.
PixelPlace asRead(const PixelPlace& place, int has, int wanted) {
    PixelPlace read;
    if (wanted == 1) {
        read[0] = place[0];
        return read;
    }
    for (std::size_t c = 0; c < 3; ++c) read[c] = place[has == 1 ? 0 : c];
    read[3] = place[3];
    if (has < 4) read[3].kind = ChannelPlace::Ones;
    return read;
}

PixelPlace placeIn(const Image& image) {
    PixelPlace place;
    for (int c = 0; c < image.channels(); ++c)
        place[static_cast<std::size_t>(c)] = {ChannelPlace::InImage, &image, c, 0};
    return place;
}

// One node of the group, with where it reads and writes.
struct Operation {
    PreparedNode node;
    std::vector<PixelPlace> sources;
    PixelPlace result;
};

// The group as a sequence of operations on segments, whose results between them stand in buffers that are
// used again as soon as nobody reads them any more. The root goes into the result, where there is one;
// nothing is computed where there is an image to be shown already.
class SegmentProgram {
public:
    SegmentProgram(const Plan& plan, const Group& group,
                   const std::vector<std::shared_ptr<const Image>>& images,
                   const std::shared_ptr<ImageMemory>& memory, Image* result, const Image* shown)
        : plan_(plan)
        , root_(plan.nodes[group.root])
        , result_(result) {
        const bool computesRoot = !shown;
        std::vector<std::size_t> nodes = group.streamed;
        if (computesRoot) nodes.push_back(group.root);
        for (const std::size_t node : nodes)
            for (const PlanSource& source : plan.nodes[node].sources)
                if (source.connected()) ++readsLeft_[source.node];
        ++readsLeft_[group.root];
        for (const std::size_t node : nodes) addOperation(node, node == group.root, images, memory);
        rootPlace_ = computesRoot ? places_[group.root] : placeIn(*shown);
    }

    int bufferCount() const { return bufferCount_; }
    bool isSingle() const { return operations_.size() == 1 && bufferCount_ == 0; }
    const std::vector<Operation>& operations() const { return operations_; }
    PixelPlace shown(int wanted) const { return asRead(rootPlace_, root_.channels, wanted); }
    Image* result() const { return result_; }

private:
    void addOperation(std::size_t index, bool isRoot, const std::vector<std::shared_ptr<const Image>>& images,
                      const std::shared_ptr<ImageMemory>& memory) {
        const PlanNode& node = plan_.nodes[index];
        Operation operation{PreparedNode(node, images, plan_, memory), {}, {}};
        for (const PlanSource& source : node.sources) {
            PixelPlace place;
            if (source.connected() && source.border == 0) {
                const Image* const image = images[source.node].get();
                place = asRead(image ? placeIn(*image) : places_[source.node],
                               plan_.nodes[source.node].channels, source.channels);
            }
            operation.sources.push_back(place);
        }
        // Before the sources' buffers are free, since results must not overlap them.
        for (int c = 0; c < node.channels; ++c) {
            auto& place = operation.result[static_cast<std::size_t>(c)];
            if (isRoot && result_)
                place = {ChannelPlace::InImage, result_, c, 0};
            else
                place = {ChannelPlace::InBuffer, nullptr, 0, takeBuffer()};
        }
        places_[index] = operation.result;
        for (const PlanSource& source : node.sources)
            if (source.connected() && --readsLeft_[source.node] == 0) freeBuffers(places_[source.node]);
        operations_.push_back(std::move(operation));
    }

    int takeBuffer() {
        if (free_.empty()) return bufferCount_++;
        const int buffer = free_.back();
        free_.pop_back();
        return buffer;
    }

    void freeBuffers(const PixelPlace& place) {
        for (const ChannelPlace& channel : place)
            if (channel.kind == ChannelPlace::InBuffer) free_.push_back(channel.buffer);
    }

    const Plan& plan_;
    const PlanNode& root_;
    std::map<std::size_t, PixelPlace> places_; // by node of the plan, of those that were computed
    std::map<std::size_t, int> readsLeft_;
    std::vector<Operation> operations_;
    std::vector<int> free_;
    int bufferCount_ = 0;
    PixelPlace rootPlace_;
    Image* result_;
};

// What one thread needs for the segments of a band.
class SegmentRun {
public:
    SegmentRun(const SegmentProgram& program, const std::vector<TextureTarget>& targets, int width,
               int segmentLength)
        : program_(program)
        , targets_(targets)
        , width_(width)
        , length_(segmentLength)
        , buffers_(static_cast<std::size_t>(program.bufferCount()) * static_cast<std::size_t>(length_))
        , ones_(static_cast<std::size_t>(length_), 1.0f) {
        for (const Operation& operation : program.operations())
            scratches_.push_back(operation.node.rows().makeScratch());
    }

    void computeRow(int y) {
        for (int x = 0; x < width_; x += length_) compute({y, x, std::min(length_, width_ - x)});
    }

private:
    void compute(const Segment& segment) {
        for (std::size_t i = 0; i < program_.operations().size(); ++i) {
            const Operation& operation = program_.operations()[i];
            sources_.clear();
            for (const PixelPlace& place : operation.sources) sources_.push_back(find(place, segment));
            float* result[4] = {};
            for (std::size_t c = 0; c < 4; ++c) {
                const ChannelPlace& place = operation.result[c];
                if (place.kind == ChannelPlace::InBuffer) result[c] = buffer(place.buffer);
                if (place.kind == ChannelPlace::InImage)
                    result[c] = program_.result()->row(segment.y, place.channel) + segment.x;
            }
            operation.node.rows().compute(segment, sources_.data(), scratches_[i].get(), result);
        }
        for (const TextureTarget& target : targets_) {
            const SourceRow row = find(program_.shown(target.format.channels), segment);
            const std::size_t pixel = static_cast<std::size_t>(segment.y) * static_cast<std::size_t>(width_) +
                                      static_cast<std::size_t>(segment.x);
            const auto pixelBytes = static_cast<std::size_t>(target.format.bytesPerPixel());
            encodeRow(target.format, row, segment.count, target.bytes + pixel * pixelBytes);
        }
    }

    SourceRow find(const PixelPlace& place, const Segment& segment) {
        SourceRow row;
        for (std::size_t c = 0; c < 4; ++c) {
            const ChannelPlace& channel = place[c];
            if (channel.kind == ChannelPlace::InBuffer) row.channels[c] = buffer(channel.buffer);
            if (channel.kind == ChannelPlace::InImage)
                row.channels[c] = channel.image->row(segment.y, channel.channel) + segment.x;
            if (channel.kind == ChannelPlace::Ones) row.channels[c] = ones_.data();
        }
        return row;
    }

    float* buffer(int index) {
        return buffers_.data() + static_cast<std::size_t>(index) * static_cast<std::size_t>(length_);
    }

    const SegmentProgram& program_;
    const std::vector<TextureTarget>& targets_;
    const int width_;
    const int length_;
    std::vector<float> buffers_;
    std::vector<float> ones_;
    std::vector<std::unique_ptr<RowScratch>> scratches_; // one for each operation
    std::vector<SourceRow> sources_;
};

void runSegments(const SegmentProgram& program, const std::vector<TextureTarget>& targets,
                 const PlanNode& root, const BandRunner& runner, int segmentLength) {
    // A node alone that writes to its image has nothing to keep in the caches.
    const int length = std::min(root.width, program.isSingle() ? root.width : segmentLength);
    const int rowSamples = root.width * (program.bufferCount() + root.channels);
    runner(root.height, rowSamples, [&](int begin, int end) {
        SegmentRun run(program, targets, root.width, length);
        for (int y = begin; y < end; ++y) run.computeRow(y);
    });
}

void runPasses(const PreparedNode& node, const BandRunner& runner, Image& result) {
    ImageKernel& kernel = node.image();
    for (int pass = 0; pass < kernel.passCount(); ++pass)
        runner(kernel.rowCount(pass), kernel.rowSamples(pass),
               [&](int begin, int end) { kernel.computeRows(pass, begin, end, result); });
}

} // namespace

std::shared_ptr<const Image> runGroup(const Plan& plan, const Group& group,
                                      const std::vector<std::shared_ptr<const Image>>& images,
                                      const std::vector<TextureTarget>& targets,
                                      const std::shared_ptr<ImageMemory>& memory, const BandRunner& runner,
                                      int segmentLength, GroupWork& work) {
    const PlanNode& root = plan.nodes[group.root];
    std::shared_ptr<Image> result;
    if (group.keepsImage) result = std::make_shared<Image>(root.width, root.height, root.channels, memory);
    const std::uint64_t pixels =
        static_cast<std::uint64_t>(root.width) * static_cast<std::uint64_t>(root.height);
    const auto addWork = [&](std::size_t nodes) {
        work.nodes += nodes;
        work.pixels += nodes * pixels;
    };

    const bool hasPasses = group.keepsImage && !root.hasRows();
    if (hasPasses) {
        runPasses(PreparedNode(root, images, plan, memory), runner, *result);
        addWork(1);
        if (targets.empty()) return result;
    }
    const SegmentProgram program(plan, group, images, memory, hasPasses ? nullptr : result.get(),
                                 hasPasses ? result.get() : images[group.root].get());
    runSegments(program, targets, root, runner, segmentLength);
    addWork(program.operations().size());
    return result;
}

} // namespace embedded
