#include "embedded/engine/Evaluator.h"

#include "embedded/engine/Plan.h"
#include "embedded/engine/Schedule.h"
#include "embedded/engine/TextureEncoding.h"

#include <algorithm>
#include <map>
#include <new>

namespace embedded {
namespace {

class Evaluation {
public:
    Evaluation(const Program& program, const Plan& plan, const Workshop& workshop, TextureReceiver& receiver)
        : program_(program)
        , plan_(plan)
        , workshop_(workshop)
        , receiver_(receiver)
        , begin_(workshop.cache ? workshop.cache->now() : 0)
        , schedule_(makeSchedule(plan, history())) {
        for (const Showing& showing : plan.showings) ++levels_[showing.output];
        unfinished_ = levels_;
    }

    Statistics run() {
        if (schedule_.peakBytes > workshop_.limit) throw std::bad_alloc();
        try {
            for (const Group& group : schedule_.groups) runOne(group);
        } catch (...) {
            schedule_.images.clear();
            makeRoom(0);
            throw;
        }
        schedule_.images.clear();
        if (workshop_.cache) remember();
        makeRoom(0);
        statistics_.bytesHeld = workshop_.memory->bytesUsed();
        statistics_.mostBytesHeld = workshop_.memory->mostBytesUsed();
        return statistics_;
    }

private:
    struct Texture {
        TextureShape shape;
        unsigned char* bytes;
    };

    History history() {
        if (!workshop_.cache) return {[](const ImageKey&) { return nullptr; }, {}};
        return {[this](const ImageKey& key) { return workshop_.cache->find(key); },
                workshop_.cache->lastRun(workshop_.owner)};
    }

    // While a value is dragged along, its earlier images would only fill fresh memory.
    void remember() {
        std::set<ImageKey> all;
        for (const PlanNode& node : plan_.nodes) all.insert(node.key);
        workshop_.cache->setLastRun(workshop_.owner, std::move(all));
        workshop_.cache->giveUpUnused(workshop_.owner, begin_, workshop_.budget / 4);
    }

    void runOne(const Group& group) {
        const PlanNode& root = plan_.nodes[group.root];
        std::vector<TextureTarget> targets;
        for (const Showing& showing : group.showings) targets.push_back(targetOf(showing, root));
        if (group.keepsImage)
            makeRoom(sizeof(float) * static_cast<std::uint64_t>(root.width) *
                     static_cast<std::uint64_t>(root.height) * static_cast<std::uint64_t>(root.channels));
        GroupWork work;
        auto image = runWithMemory(group, targets, work);
        statistics_.nodesRun += work.nodes;
        statistics_.pixelsComputed += work.pixels;
        if (image) {
            schedule_.images[group.root] = image;
            if (workshop_.cache) workshop_.cache->insert(root.key, std::move(image), workshop_.owner);
        }
        for (const std::size_t node : group.released) schedule_.images[node].reset();
        for (const Showing& showing : group.showings)
            if (--unfinished_[showing.output] == 0) receiver_.finish(showing.output);
    }

    // Images of earlier runs go before a run fails.
    template <class Function>
    auto withMemory(const Function& function) {
        if (!workshop_.cache) return function();
        try {
            return function();
        } catch (const std::bad_alloc&) {
            workshop_.cache->giveUp(std::numeric_limits<std::uint64_t>::max());
            return function();
        }
    }

    std::shared_ptr<const Image> runWithMemory(const Group& group, const std::vector<TextureTarget>& targets,
                                               GroupWork& work) {
        return withMemory([&] {
            work = {};
            return runGroup(plan_, group, schedule_.images, targets, workshop_.memory, workshop_.runner,
                            workshop_.segmentLength, work);
        });
    }

    TextureTarget targetOf(const Showing& showing, const PlanNode& node) {
        const auto [place, isNew] = textures_.try_emplace(showing.output);
        Texture& texture = place->second;
        if (isNew) { // the full size comes first
            const std::int32_t code = program_.outputs[showing.output].format;
            texture.shape = {node.width, node.height, levels_[showing.output],
                             findPixelFormat(code).value_or(PixelFormat{})};
            texture.bytes = withMemory([&] { return receiver_.begin(showing.output, texture.shape); });
        }
        const PixelFormat format = texture.shape.format;
        return {format, texture.bytes +
                            textureBytes(texture.shape.width, texture.shape.height, format, showing.level)};
    }

    void makeRoom(std::uint64_t bytes) {
        const std::uint64_t wanted = workshop_.memory->bytesUsed() + bytes;
        if (workshop_.cache && wanted > workshop_.budget) workshop_.cache->giveUp(wanted - workshop_.budget);
    }

    const Program& program_;
    const Plan& plan_;
    const Workshop& workshop_;
    TextureReceiver& receiver_;
    const std::uint64_t begin_; // in the cache's time
    Statistics statistics_;
    Schedule schedule_;
    std::map<std::size_t, int> levels_; // by output
    std::map<std::size_t, int> unfinished_;
    std::map<std::size_t, Texture> textures_;
};

} // namespace

Statistics evaluate(const Program& program, const std::vector<std::size_t>& outputs,
                    const InputValues& inputs, const Workshop& workshop, TextureReceiver& receiver) {
    const Plan plan = makePlan(program, outputs, inputs);
    return Evaluation(program, plan, workshop, receiver).run();
}

} // namespace embedded
