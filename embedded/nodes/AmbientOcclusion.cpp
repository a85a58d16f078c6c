#include "embedded/nodes/AmbientOcclusion.h"

#include "embedded/nodes/NodeKernel.h"
#include "embedded/nodes/Parameters.h"
#include "embedded/rows/AmbientOcclusionRows.h"

#include <vector>

namespace embedded {
namespace {

enum Parameter { Radius, Height, Strength };

// Where an image looks for horizons, in its pixels: on the full size from next to the pixel on, on each
// quarter of the size from where the size before ended.
constexpr float distances[] = {1, 2, 3, 4.5f, 6.5f};
constexpr int steps = 5;
constexpr float farBeginning = 2.0f;

// On the full size a direction has one ray. Its places lie a little beside it, in turns, so that it does not
// show.
constexpr float deviations[] = {0, 0.03f, -0.02f, 0.01f, -0.03f};

float rayAngle(int direction, int ray, int rays) {
    const float place = (static_cast<float>(ray) + 0.5f) / static_cast<float>(rays) - 0.5f;
    return (static_cast<float>(direction) + place) / horizonDirections;
}

// Places on an image of a quarter of the size `quarters` times. The radius is in pixels of the full size, and
// the scale makes heights such pixels.
Horizons horizonsOf(const Plane& heights, int quarters, float radius, float scale) {
    Horizons horizons = {heights, nullptr, quarters == 0 ? 1 : mostHorizonRays, 0, {}};
    const auto pixel = static_cast<float>(1 << 2 * quarters);
    for (int i = quarters == 0 ? 0 : 1; i < steps && distances[i] * pixel < radius; ++i) {
        const int step = horizons.steps++;
        for (int direction = 0; direction < horizonDirections; ++direction) {
            for (int ray = 0; ray < horizons.rays; ++ray) {
                const float angle =
                    rayAngle(direction, ray, horizons.rays) + (quarters == 0 ? deviations[i] : 0.0f);
                const int x = roundToInt(distances[i] * cosineOfTurns(angle));
                const int y = roundToInt(distances[i] * sineOfTurns(angle));
                const float distance = squareRoot(static_cast<float>(x * x + y * y)) * pixel;
                const float nearness = clamp(1.0f - distance * distance / (radius * radius), 0.0f, 1.0f);
                horizons.places[direction][ray][step] = {x, y, scale * nearness / distance};
            }
        }
    }
    return horizons;
}

// Horizons are looked for after L. Bavoil, M. Sainz and R. Dimitrov, "Image-Space Horizon-Based Ambient
// Occlusion", 2008, those far away on smaller images. Passes: the smaller images, from large to small; their
// horizons, from small to large; the light.
class AmbientOcclusion : public ImageKernel {
public:
    explicit AmbientOcclusion(const NodeRun& run)
        : run_(run)
        , strength_(run.number(Strength)) {
        const auto side = static_cast<float>(run.shorterSide());
        const float wanted = run.number(Radius) * side;
        const float radius = wanted > 2.0f ? wanted : 2.0f;
        const float scale = 0.01f * run.number(Height) * side;
        horizons_.push_back(horizonsOf(run.images[0].plane(0), 0, radius, scale));
        for (int quarters = 1; farBeginning * static_cast<float>(1 << 2 * quarters) < radius; ++quarters) {
            const int width = run.width >> 2 * quarters;
            const int height = run.height >> 2 * quarters;
            Smaller& smaller = smaller_.emplace_back();
            smaller.heights = Image(width, height, 1, run.memory);
            smaller.tangents = Image(width, height, horizonDirections, run.memory);
            smaller.found.heights = smaller.heights.plane(0);
            for (int d = 0; d < horizonDirections; ++d) smaller.found.tangents[d] = smaller.tangents.plane(d);
            horizons_.push_back(horizonsOf(smaller.found.heights, quarters, radius, scale));
            // As if all that hides the sky stood where looking begins: what stands near hides most of it.
            smaller.found.lowering = horizons_.back().places[0][0][0].scale;
        }
        for (std::size_t i = 0; i < smaller_.size(); ++i) horizons_[i].farther = &smaller_[i].found;
    }

    int passCount() const override { return 2 * sizes() + 1; }
    int rowCount(int pass) const override { return run_.height >> 2 * quartersOf(pass); }
    int rowSamples(int pass) const override {
        return (run_.width >> 2 * quartersOf(pass)) * horizonDirections;
    }

    void computeRows(int pass, int begin, int end, Image& result) override {
        const auto quarters = static_cast<std::size_t>(quartersOf(pass));
        for (int y = begin; y < end; ++y) {
            if (quarters == 0) {
                occlusionRow.chosen()(horizons_[0], strength_, y, result.row(y));
            } else if (Smaller& smaller = smaller_[quarters - 1]; pass < sizes()) {
                quarterRow.chosen()(horizons_[quarters - 1].heights, y, smaller.heights.row(y));
            } else {
                float* out[horizonDirections];
                for (int d = 0; d < horizonDirections; ++d) out[d] = smaller.tangents.row(y, d);
                horizonRow.chosen()(horizons_[quarters], y, out);
            }
        }
    }

private:
    struct Smaller {
        Image heights;
        Image tangents; // a channel for each direction
        FartherHorizons found;
    };

    int sizes() const { return static_cast<int>(smaller_.size()); }
    int quartersOf(int pass) const { return pass < sizes() ? pass + 1 : 2 * sizes() - pass; }

    const NodeRun& run_;
    float strength_;
    std::vector<Smaller> smaller_;
    std::vector<Horizons> horizons_; // of the full size, then of the smaller ones
};

std::unique_ptr<ImageKernel> prepare(const NodeRun& run) {
    return std::make_unique<AmbientOcclusion>(run);
}

const NodeKernel kernel{nullptr, prepare};

} // namespace

NodeKind ambientOcclusionKind() {
    return {
        27,
        "ambientOcclusion",
        "The light of an even sky that reaches the ground: 1 on plains and tops, less in creases.",
        {{"height", PortChannels::Gray, true, anywhere}},
        {number("radius", ValueType::Float, 0.05, 0.001, 0.25,
                "how far what hides the sky may stand, relative to the image's shorter side; two pixels "
                "at least"),
         number("heightScale", ValueType::Float, 3, -100, 100,
                "how far a height of 1 stands out, in hundredths of the image's shorter side"),
         number("strength", ValueType::Float, 1, 0, 8, "what is lacking of the light is multiplied by it")},
        ResultChannels::Gray,
        nullptr,
        nullptr,
        400,
        &kernel};
}

} // namespace embedded
