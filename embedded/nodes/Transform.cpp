#include "embedded/nodes/Transform.h"

#include "embedded/nodes/Arithmetic.h"
#include "embedded/nodes/NodeKernel.h"
#include "embedded/nodes/Parameters.h"
#include "embedded/nodes/Resample.h"
#include "embedded/nodes/Sampling.h"

namespace embedded {
namespace {

enum Parameter { Repeats, Rotation, Offset, Seamless };

// From places in the result to places in the source, both measured in their images' sides.
struct Mapping {
    explicit Mapping(const NodeRun& run)
        : scaleX(static_cast<float>(run.integer(Repeats, 0)))
        , scaleY(static_cast<float>(run.integer(Repeats, 1)))
        , offsetX(run.number(Offset, 0))
        , offsetY(run.number(Offset, 1)) {
        const float cosine = cosineOfTurns(run.number(Rotation));
        const float sine = sineOfTurns(run.number(Rotation));
        if (run.integer(Seamless) != 0) {
            // Whole numbers carry each edge of the result to a whole period of the source. That needs both
            // images measured alike, so the turn is one of unit squares.
            xx = wholeNumber(scaleX * cosine);
            xy = wholeNumber(scaleX * sine);
            yx = wholeNumber(scaleY * -sine);
            yy = wholeNumber(scaleY * cosine);
        } else {
            const float aspect = static_cast<float>(run.width) / static_cast<float>(run.height);
            xx = scaleX * cosine;
            xy = scaleX * sine / aspect;
            yx = scaleY * -sine * aspect;
            yy = scaleY * cosine;
        }
    }

    static float wholeNumber(float value) { return static_cast<float>(roundToInt(value)); }

    // How often the source must be halved so that its pixels are no denser than the result's.
    int halvings() const {
        float area = absolute(xx * yy - xy * yx);
        int count = 0;
        for (; area >= 4.0f; area *= 0.25f) ++count;
        return count;
    }

    float scaleX, scaleY;
    float offsetX, offsetY;
    float xx, xy, yx, yy;
};

template <int channels>
class TransformRows : public RowKernel {
public:
    explicit TransformRows(const NodeRun& run)
        : RowKernel(run.height)
        , mapping_(run)
        , width_(run.width)
        , height_(run.height)
        , source_(run.sources[0]) {
        const int halvings = mapping_.halvings();
        if (halvings == 0) return;
        const auto halved = [halvings](int side) { return side >> halvings ? side >> halvings : 1; };
        shrunk_ = resampled(*source_, halved(width_), halved(height_));
        source_ = &shrunk_;
    }

    void computeRows(int, int begin, int end, Image& result) override {
        for (int y = begin; y < end; ++y) computeRow(y, result.row(y));
    }

private:
    void computeRow(int y, float* out) const {
        const Mapping& m = mapping_;
        const auto sourceWidth = static_cast<float>(source_->width());
        const auto sourceHeight = static_cast<float>(source_->height());
        const float v = (static_cast<float>(y) + 0.5f) / static_cast<float>(height_) - 0.5f - m.offsetY;
        for (int x = 0; x < width_; ++x, out += channels) {
            const float u = (static_cast<float>(x) + 0.5f) / static_cast<float>(width_) - 0.5f - m.offsetX;
            const float sourceU = m.xx * u + m.xy * v + 0.5f * m.scaleX;
            const float sourceV = m.yx * u + m.yy * v + 0.5f * m.scaleY;
            sampleWrapped<channels>(*source_, 0, 0, sourceU * sourceWidth - 0.5f,
                                    sourceV * sourceHeight - 0.5f, out);
        }
    }

    Mapping mapping_;
    int width_;
    int height_;
    const Image* source_;
    Image shrunk_;
};

std::unique_ptr<RowKernel> prepare(const NodeRun& run) {
    if (run.channels == 1) return std::make_unique<TransformRows<1>>(run);
    return std::make_unique<TransformRows<4>>(run);
}

const NodeKernel kernel{prepare};

} // namespace

NodeKind transformKind() {
    return {
        11,
        "transform",
        "Repeats, then turns, then shifts the source, which wraps around.",
        {{"source", PortChannels::Any, true}},
        {number("repeats", ValueType::Integer2, 1, 1, 64, "how many times the source fits across and down"),
         number("rotation", ValueType::Float, 0, -1, 1, "turns, clockwise"),
         number("offset", ValueType::Float2, 0, -1, 1, "shift right and down, relative to the image's sides"),
         choice("seamless", {"no", "yes"}, 1,
                "yes: other than quarter turns are fitted to the nearest that tiles; no: exact, with seams")},
        ResultChannels::Widest,
        true,
        25,
        &kernel};
}

} // namespace embedded
