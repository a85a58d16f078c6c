#include "embedded/engine/Evaluator.h"

#include "embedded/engine/Schedule.h"

#include <new>

namespace embedded {

void evaluate(const Program& program, const std::vector<std::size_t>& outputs, const InputValues& inputs,
              std::uint64_t memoryLimit, const BandRunner& runner, const OutputReceiver& receive) {
    const Schedule schedule = makeSchedule(program, outputs, inputs);
    if (schedule.peakBytes > memoryLimit) throw std::bad_alloc();
    std::vector<Image> images(program.nodes.size());
    for (const ScheduledNode& step : schedule.steps) {
        std::vector<const Image*> sources;
        for (const std::int32_t source : program.nodes[step.node].sources)
            sources.push_back(source == ProgramNode::unconnected ? nullptr
                                                                 : &images[static_cast<std::size_t>(source)]);
        images[step.node] = evaluateNode(step.resolved, sources, runner);
        for (const std::size_t output : step.outputs) receive(output, images[step.node]);
        for (const std::size_t released : step.released) images[released] = Image();
    }
}

} // namespace embedded
