#include "embedded/nodes/Transform.h"

#include "embedded/nodes/NodeKernel.h"
#include "embedded/nodes/Parameters.h"
#include "embedded/nodes/Resample.h"
#include "embedded/rows/Arithmetic.h"
#include "embedded/rows/TransformRows.h"

#include <algorithm>

namespace embedded {
namespace {

enum Parameter { Repeats, Rotation, Offset, Seamless };

bool isWhole(float value) {
    return static_cast<float>(floorToInt(value)) == value;
}

// From places in the result to places in the source, both measured in their images' sides.
struct Mapping {
    explicit Mapping(const NodeRun& run)
        : scaleX(static_cast<float>(run.integer(Repeats, 0)))
        , scaleY(static_cast<float>(run.integer(Repeats, 1)))
        , offsetX(run.number(Offset, 0))
        , offsetY(run.number(Offset, 1)) {
        const float turns = run.number(Rotation);
        const bool isQuarter = isWhole(4.0f * turns);
        const float cosine = isQuarter ? wholeNumber(cosineOfTurns(turns)) : cosineOfTurns(turns);
        const float sine = isQuarter ? wholeNumber(sineOfTurns(turns)) : sineOfTurns(turns);
        if (run.integer(Seamless) != 0) {
            // Whole numbers carry each edge of the result to a whole period of the source. That needs both
            // images measured alike, so the turn is one of unit squares.
            xx = wholeNumber(scaleX * cosine);
            xy = wholeNumber(scaleX * sine);
            yx = 0.0f - wholeNumber(scaleY * sine); // halves too, or a turn would become a shear
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

// Passes: shrinking the source where it would be read too thinly, and reading it.
class Transform : public ImageKernel {
public:
    explicit Transform(const NodeRun& run)
        : source_(run.images[0])
        , mapping_(run)
        , width_(run.width)
        , height_(run.height) {
        const int halvings = mapping_.halvings();
        if (halvings == 0) return;
        const auto halved = [halvings](int side) { return std::max(1, side >> halvings); };
        shrunk_ = Image(halved(width_), halved(height_), source_.channels(), run.memory);
        shrinking_ = prepareResampling(source_, shrunk_.width(), shrunk_.height());
        source_ = ImageView(shrunk_, shrunk_.channels(), nullptr);
    }

    int passCount() const override { return shrinking_ ? 2 : 1; }
    int rowCount(int pass) const override { return shrinks(pass) ? shrunk_.height() : height_; }
    int rowSamples(int pass) const override {
        return shrinks(pass) ? shrinking_->rowSamples(0) : 4 * width_ * source_.channels();
    }

    void computeRows(int pass, int begin, int end, Image& result) override {
        if (shrinks(pass)) return shrinking_->computeRows(0, begin, end, shrunk_);
        for (int y = begin; y < end; ++y) readRow(y, result);
    }

private:
    bool shrinks(int pass) const { return shrinking_ && pass == 0; }

    void readRow(int y, Image& result) const {
        const Mapping& m = mapping_;
        const auto sourceWidth = static_cast<float>(source_.width());
        const auto sourceHeight = static_cast<float>(source_.height());
        const float v = (static_cast<float>(y) + 0.5f) / static_cast<float>(height_) - 0.5f - m.offsetY;
        const SampleLine line = {1.0f / static_cast<float>(width_),
                                 m.offsetX,
                                 m.xx,
                                 m.xy * v,
                                 0.5f * m.scaleX,
                                 sourceWidth,
                                 m.yx,
                                 m.yy * v,
                                 0.5f * m.scaleY,
                                 sourceHeight};
        Plane planes[4];
        float* rows[4] = {};
        for (int c = 0; c < source_.channels(); ++c) {
            planes[c] = source_.plane(c);
            rows[c] = result.row(y, c);
        }
        sampleLineRow_(planes, source_.channels(), line, width_, rows);
    }

    ImageView source_;
    const Mapping mapping_;
    const int width_;
    const int height_;
    Image shrunk_;
    std::unique_ptr<ImageKernel> shrinking_;
    SampleLineRow* const sampleLineRow_ = sampleLineRow.chosen();
};

std::unique_ptr<ImageKernel> prepare(const NodeRun& run) {
    return std::make_unique<Transform>(run);
}

// Exact mappings are whole turns and half turns in any shape of image, and nothing else.
const char* breaksPeriod(const KnownParameters& parameters) {
    if (parameters[Seamless] && parameters[Seamless]->integers[0] != 0) return nullptr;
    if (parameters[Rotation] && isWhole(2.0f * parameters[Rotation]->floats[0])) return nullptr;
    return "seamless";
}

const NodeKernel kernel{nullptr, prepare};

} // namespace

NodeKind transformKind() {
    return {
        11,
        "transform",
        "Repeats, then turns, then shifts the source, which wraps around.",
        {{"source", PortChannels::Any, true, anywhere}},
        {number("repeats", ValueType::Integer2, 1, 1, 64, "how many times the source fits across and down"),
         number("rotation", ValueType::Float, 0, -1, 1, "turns, clockwise"),
         number("offset", ValueType::Float2, 0, -1, 1, "shift right and down, relative to the image's sides"),
         choice("seamless", {"no", "yes"}, 1,
                "yes: other than quarter turns are fitted to the nearest that tiles; no: exact, with seams")},
        ResultChannels::Widest,
        nullptr,
        breaksPeriod,
        60,
        &kernel};
}

} // namespace embedded
