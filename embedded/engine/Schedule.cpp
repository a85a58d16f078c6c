#include "embedded/engine/Schedule.h"

#include "embedded/program/Cost.h"

#include <algorithm>

namespace embedded {
namespace {

// Above this cost (operations for a pixel) a node is kept, so that edits behind it need not run it again.
constexpr double costlyGenerator = 16;
constexpr double costlyFilter = 200;
// Above this cost, with all that streams into it, a node that edits leave alone is kept.
constexpr double worthKeeping = 30;

std::uint64_t bytesOf(const PlanNode& node, int channels) {
    return sizeof(float) * static_cast<std::uint64_t>(node.width) * static_cast<std::uint64_t>(node.height) *
           static_cast<std::uint64_t>(channels);
}

bool isGenerator(const PlanNode& node) {
    return std::none_of(node.sources.begin(), node.sources.end(),
                        [](const PlanSource& source) { return source.connected(); });
}

class Scheduling {
public:
    Scheduling(const Plan& plan, const History& history)
        : plan_(plan)
        , history_(history)
        , count_(plan.nodes.size())
        , demanded_(count_)
        , kept_(count_)
        , shown_(count_) {
        schedule_.images.resize(count_);
        for (const Showing& showing : plan.showings) demanded_[showing.node] = shown_[showing.node] = true;
        findImages();
        chooseKept();
    }

    Schedule run() && {
        for (std::size_t i = 0; i < count_; ++i)
            if (isRoot(i)) addGroup(i);
        addReleases();
        schedule_.peakBytes = peak();
        return std::move(schedule_);
    }

private:
    bool isThere(std::size_t node) const { return schedule_.images[node] != nullptr; }
    bool isRoot(std::size_t node) const {
        return demanded_[node] && ((kept_[node] && !isThere(node)) || shown_[node]);
    }
    bool streams(std::size_t node) const { return !kept_[node] && !isThere(node); }

    // What is there needs no sources.
    void findImages() {
        for (std::size_t i = count_; i-- > 0;) {
            const PlanNode& node = plan_.nodes[i];
            if (!demanded_[i]) continue;
            schedule_.images[i] = node.isPicture() ? node.picture : history_.find(node.key);
            if (isThere(i)) continue;
            for (const PlanSource& source : node.sources)
                if (source.connected()) demanded_[source.node] = true;
        }
    }

    bool wasComputed(const PlanNode& node) const { return history_.computedBefore.count(node.key) > 0; }

    // Of each node with what may stream into it; beyond what is worth keeping it does not matter how much.
    std::vector<double> chainCosts() const {
        std::vector<double> costs(count_);
        for (std::size_t i = 0; i < count_; ++i) {
            costs[i] = plan_.nodes[i].costPerPixel();
            for (const PlanSource& source : plan_.nodes[i].sources)
                if (source.connected() && source.border == 0 && !isThere(source.node))
                    costs[i] += std::min(costs[source.node], 2 * worthKeeping);
        }
        return costs;
    }

    // From the readers to what they read: the roots that a streaming node would be computed for are known
    // then.
    void chooseKept() {
        constexpr std::size_t none = PlanSource::nothing;
        std::vector<std::size_t> onlyRoot(count_, none);
        std::vector<bool> severalRoots(count_);
        std::vector<bool> changedReader(count_);
        const std::vector<double> costs = chainCosts();
        const auto addRoot = [&](std::size_t node, std::size_t root) {
            if (onlyRoot[node] != none && onlyRoot[node] != root) severalRoots[node] = true;
            onlyRoot[node] = root;
        };
        for (std::size_t i = count_; i-- > 0;) {
            if (!demanded_[i] || isThere(i)) continue;
            const PlanNode& node = plan_.nodes[i];
            if (shown_[i]) addRoot(i, i);
            const bool isCostly = node.costPerPixel() > (isGenerator(node) ? costlyGenerator : costlyFilter);
            const bool isUnedited = changedReader[i] && wasComputed(node) && costs[i] > worthKeeping;
            const bool isShared =
                severalRoots[i] && (node.costPerPixel() > cheapGenerator || !isGenerator(node));
            kept_[i] = kept_[i] || !node.hasRows() || isCostly || isShared || isUnedited;
            for (const PlanSource& source : node.sources) {
                if (!source.connected()) continue;
                if (source.border != 0) kept_[source.node] = true;
                if (!wasComputed(node)) changedReader[source.node] = true;
                if (kept_[i] || shown_[i]) addRoot(source.node, i);
                if (kept_[i] || shown_[i]) continue;
                addRoot(source.node, onlyRoot[i]);
                if (severalRoots[i]) severalRoots[source.node] = true;
            }
        }
    }

    void addGroup(std::size_t root) {
        Group group{root, kept_[root] && !isThere(root), {}, {}, {}};
        if (!isThere(root)) group.streamed = streamedInto(root);
        for (const Showing& showing : plan_.showings)
            if (showing.node == root) group.showings.push_back(showing);
        schedule_.groups.push_back(std::move(group));
    }

    // In the plan's order.
    std::vector<std::size_t> streamedInto(std::size_t root) const {
        std::set<std::size_t> streamed;
        std::vector<std::size_t> open = {root};
        while (!open.empty()) {
            const std::size_t node = open.back();
            open.pop_back();
            for (const PlanSource& source : plan_.nodes[node].sources)
                if (source.connected() && streams(source.node) && streamed.insert(source.node).second)
                    open.push_back(source.node);
        }
        return {streamed.begin(), streamed.end()};
    }

    // Calls visit(node) for the images that a group reads and makes.
    template <typename Visit>
    void eachImage(const Group& group, Visit visit) const {
        if (!streams(group.root)) visit(group.root);
        if (isThere(group.root)) return;
        const auto visitSources = [&](std::size_t reader) {
            for (const PlanSource& source : plan_.nodes[reader].sources)
                if (source.connected() && !streams(source.node)) visit(source.node);
        };
        visitSources(group.root);
        for (const std::size_t node : group.streamed) visitSources(node);
    }

    void addReleases() {
        std::vector<bool> read(count_);
        for (auto group = schedule_.groups.rbegin(); group != schedule_.groups.rend(); ++group)
            eachImage(*group, [&](std::size_t node) {
                if (!read[node]) group->released.push_back(node);
                read[node] = true;
            });
    }

    // Kernels of whole images may need two more of the result's size; textures wait to be fetched.
    std::uint64_t peak() const {
        std::uint64_t held = 0;
        std::uint64_t most = 0;
        for (std::size_t i = 0; i < count_; ++i)
            if (isThere(i)) held += bytesOf(plan_.nodes[i], plan_.nodes[i].channels);
        for (const Group& group : schedule_.groups) {
            const PlanNode& root = plan_.nodes[group.root];
            const std::uint64_t result = bytesOf(root, root.channels);
            if (group.keepsImage) held += result;
            held += group.showings.size() * bytesOf(root, 4);
            most = std::max(most, held + (group.keepsImage && !root.hasRows() ? 2 * result : 0));
            for (const std::size_t node : group.released)
                held -= bytesOf(plan_.nodes[node], plan_.nodes[node].channels);
        }
        return most;
    }

    const Plan& plan_;
    const History& history_;
    const std::size_t count_;
    std::vector<bool> demanded_;
    std::vector<bool> kept_;
    std::vector<bool> shown_;
    Schedule schedule_;
};

} // namespace

Schedule makeSchedule(const Plan& plan, const History& history) {
    return Scheduling(plan, history).run();
}

} // namespace embedded
