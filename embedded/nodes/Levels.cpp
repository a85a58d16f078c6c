#include "embedded/nodes/Levels.h"

#include "embedded/nodes/Arithmetic.h"
#include "embedded/nodes/NodeKernel.h"
#include "embedded/nodes/Parameters.h"

#include <array>

namespace embedded {
namespace {

enum Parameter { InputLow, InputHigh, Gamma, OutputLow, OutputHigh };

struct Curve {
    Curve(const NodeRun& run, std::size_t channel)
        : low(run.number(InputLow, channel))
        , scale(run.number(InputHigh, channel) - low)
        , step(scale == 0)
        , exponent(1.0f / run.number(Gamma, channel))
        , outputLow(run.number(OutputLow, channel))
        , outputHigh(run.number(OutputHigh, channel)) {
        scale = step ? 0.0f : 1.0f / scale;
    }

    float of(float value) const {
        float t = step ? (value >= low ? 1.0f : 0.0f) : clamp((value - low) * scale, 0.0f, 1.0f);
        if (exponent != 1.0f) t = power(t, exponent);
        return outputLow * (1.0f - t) + outputHigh * t;
    }

    float low;
    float scale;
    bool step; // of an empty input range
    float exponent;
    float outputLow;
    float outputHigh;
};

std::unique_ptr<RowKernel> prepare(const NodeRun& run) {
    const Image* source = run.sources[0];
    if (run.channels == 1) {
        return makeRowKernel(run, [source, curve = Curve(run, 0)](int y, float* out) {
            const float* in = source->row(y);
            for (int x = 0; x < source->width(); ++x) out[x] = curve.of(in[x]);
        });
    }
    const std::array<Curve, 3> curves = {Curve(run, 0), Curve(run, 1), Curve(run, 2)};
    return makeRowKernel(run, [source, curves](int y, float* out) {
        const float* in = source->row(y);
        for (int x = 0; x < source->width(); ++x, in += 4, out += 4) {
            for (std::size_t c = 0; c < 3; ++c) out[c] = curves[c].of(in[c]);
            out[3] = in[3];
        }
    });
}

const NodeKernel kernel{prepare};

} // namespace

NodeKind levelsKind() {
    return {
        7,
        "levels",
        "Maps the input range to the output range; alpha stays. Values outside the input range are clamped "
        "to it.",
        {{"source", PortChannels::Any, true}},
        {number("inputLow", ValueType::Float3, 0, -16, 16, "becomes outputLow"),
         number("inputHigh", ValueType::Float3, 1, -16, 16, "becomes outputHigh; below inputLow it inverts"),
         number("gamma", ValueType::Float3, 1, 0.01, 100,
                "above 1 the middle gets brighter: t becomes t^(1/gamma)"),
         number("outputLow", ValueType::Float3, 0, -16, 16, "result for inputLow"),
         number("outputHigh", ValueType::Float3, 1, -16, 16, "result for inputHigh")},
        ResultChannels::Widest,
        true,
        30,
        &kernel};
}

} // namespace embedded
