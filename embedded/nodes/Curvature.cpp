#include "embedded/nodes/Curvature.h"

#include "embedded/nodes/NodeKernel.h"
#include "embedded/nodes/Parameters.h"
#include "embedded/rows/CurvatureRows.h"

#include <vector>

namespace embedded {
namespace {

enum Parameter { Radius, Strength, Result, Contrast };
enum Port { Height, Breakup };

MeanWeights gaussianWeights(float variance) {
    const float sigma = squareRoot(variance);
    MeanWeights mean = {};
    mean.reach = floorToInt(3.0f * clamp(sigma, 0.0f, 0.33f * mostReach)) + 1;
    if (mean.reach > mostReach) mean.reach = mostReach;
    float sum = 0.0f;
    for (int i = 0; i <= mean.reach; ++i) {
        const float distance = static_cast<float>(i);
        mean.weights[i] = exp2Of(-0.72134752f * distance * distance / variance); // e^(-d^2 / (2 variance))
        sum += i == 0 ? mean.weights[i] : 2.0f * mean.weights[i];
    }
    for (float& weight : mean.weights) weight /= sum;
    return mean;
}

// The height against its mean around. The mean is taken of the image halved as often as leaves the radius a
// few pixels, which is doubled again as often. Passes: the halvings, the means, the doublings; where there
// are any, the last of them is a part of the comparison.
class Curvature : public ImageKernel {
public:
    explicit Curvature(const NodeRun& run)
        : run_(run)
        , heights_(run.images[Height].plane(0)) {
        const float wanted = run.number(Radius) * static_cast<float>(run.shorterSide());
        const float radius = wanted > 1.0f ? wanted : 1.0f;
        // A disc has this variance along each axis. Halving and doubling make a part of it.
        const float variance = 0.25f * radius * radius;
        while (variance >= 4.0f * area(halved_.size())) {
            const auto level = static_cast<int>(halved_.size()) + 1;
            halved_.emplace_back(run.width >> level, run.height >> level, 1, run.memory);
        }
        const float pixel = area(halved_.size());
        weights_ = gaussianWeights((variance - (pixel - 1.0f) / 3.0f) / pixel);
        if (!halved_.empty()) means_ = Image(halved_.back().width(), halved_.back().height(), 1, run.memory);
        measure_ = {static_cast<CurvatureResult>(run.integer(Result)),
                    0.01f * run.number(Strength) * static_cast<float>(run.shorterSide()) / radius,
                    run.number(Contrast)};
    }

    int passCount() const override { return halvings() == 0 ? 1 : 2 * halvings() + 1; }
    int rowCount(int pass) const override { return run_.height >> levelOf(pass); }
    int rowSamples(int pass) const override { return run_.width >> levelOf(pass); }

    void computeRows(int pass, int begin, int end, Image& result) override {
        if (pass == passCount() - 1) return compare(begin, end, result);
        const int level = levelOf(pass);
        for (int y = begin; y < end; ++y) {
            if (pass < halvings())
                halveRow.chosen()(level == 1 ? heights_ : image(level - 1).plane(0), y, image(level).row(y));
            else if (pass == halvings())
                meanRow.chosen()(image(level).plane(0), weights_, y, means_.row(y));
            else // what was halved is not needed any more
                doubleRow.chosen()(meansOf(level + 1), y, image(level).row(y));
        }
    }

private:
    static float area(std::size_t halvings) { return static_cast<float>(1 << 2 * halvings); }

    int halvings() const { return static_cast<int>(halved_.size()); }
    Image& image(int level) { return halved_[static_cast<std::size_t>(level) - 1]; }
    Plane meansOf(int level) { return level == halvings() ? means_.plane(0) : image(level).plane(0); }

    // How often the image has been halved whose rows the pass computes.
    int levelOf(int pass) const { return pass < halvings() ? pass + 1 : 2 * halvings() - pass; }

    void compare(int begin, int end, Image& result) {
        std::vector<float> means(static_cast<std::size_t>(run_.width));
        for (int y = begin; y < end; ++y) {
            if (halvings() == 0)
                meanRow.chosen()(heights_, weights_, y, means.data());
            else
                doubleRow.chosen()(meansOf(1), y, means.data());
            const ImageView& breakup = run_.images[Breakup];
            curvatureRow.chosen()(measure_, rowOf(heights_, y), means.data(),
                                  breakup ? breakup.row(y) : nullptr, run_.width, result.row(y));
        }
    }

    const NodeRun& run_;
    Plane heights_;
    std::vector<Image> halved_; // once, twice, ...
    Image means_;               // of the smallest of them
    MeanWeights weights_;
    CurvatureMeasure measure_;
};

std::unique_ptr<ImageKernel> prepare(const NodeRun& run) {
    return std::make_unique<Curvature>(run);
}

const NodeKernel kernel{nullptr, prepare};

} // namespace

NodeKind curvatureKind() {
    return {
        26,
        "curvature",
        "How far a height stands above or below what is around it.",
        {{"height", PortChannels::Gray, true, anywhere}, {"breakup", PortChannels::Gray, false, anywhere}},
        {number("radius", ValueType::Float, 0.01, 0.0005, 0.25,
                "of what is around, relative to the image's shorter side; one pixel at least"),
         number("strength", ValueType::Float, 3, 0, 100,
                "how far a height of 1 stands out, in hundredths of the image's shorter side; standing "
                "out by as much as the radius gives the full range"),
         choice("result", {"signed", "edges", "cavities", "wear"}, 0,
                "signed: 0.5 is even ground, edges are lighter, cavities darker; edges and cavities: one "
                "of them, on black; wear: edges, except where breakup is lighter than they are"),
         number("contrast", ValueType::Float, 4, 1, 64, "of wear: how sharply it ends")},
        ResultChannels::Gray,
        nullptr,
        nullptr,
        80,
        &kernel};
}

} // namespace embedded
