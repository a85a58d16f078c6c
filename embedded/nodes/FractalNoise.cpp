#include "embedded/nodes/FractalNoise.h"

#include "embedded/nodes/Parameters.h"

namespace embedded {

NodeKind fractalNoiseKind() {
    return {3,
            "fbm",
            "Gradient noise summed over octaves, each of twice the repeats; 0 to 1 around 0.5.",
            {},
            {choice("style", {"fbm", "turbulence", "ridged"}, 0,
                    "plain sum, sum of absolute values (creases), or sharp ridges"),
             number("repeats", ValueType::Integer2, 4, 1, 1024,
                    "lattice cells of the first octave across and down"),
             number("octaves", ValueType::Integer, 6, 1, 12, "number of octaves"),
             number("gain", ValueType::Float, 0.5, 0, 1, "amplitude of an octave relative to the one before"),
             seedParameter()},
            ResultChannels::Gray,
            true,
            60,
            nullptr};
}

} // namespace embedded
