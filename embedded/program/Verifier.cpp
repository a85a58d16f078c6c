#include "embedded/program/Verifier.h"

#include "embedded/nodes/NodeKind.h"
#include "embedded/program/PixelFormat.h"

#include <algorithm>
#include <cmath>

namespace embedded {

namespace {

constexpr std::size_t maxProblems = 100;

bool isFinite(const Value& value) {
    return std::all_of(value.floats.begin(), value.floats.end(),
                       [](float component) { return std::isfinite(component); });
}

class Verification {
public:
    explicit Verification(const Program& checked)
        : program(checked) {}

    std::vector<ProgramProblem> run() && {
        if (checkCounts()) {
            for (std::size_t i = 0; i < program.inputs.size() && !full(); ++i) checkInput(i);
            for (std::size_t i = 0; i < program.nodes.size() && !full(); ++i) checkNode(i);
            for (std::size_t i = 0; i < program.outputs.size() && !full(); ++i) checkOutput(i);
        }
        return std::move(problems);
    }

private:
    bool full() const { return problems.size() >= maxProblems; }

    void report(std::string reason) {
        if (!full()) problems.push_back({place, std::move(reason)});
    }

    bool checkCounts() {
        place = "program";
        if (program.inputs.size() > maxProgramInputs) report("too many inputs");
        if (program.nodes.size() > maxProgramNodes) report("too many nodes");
        if (program.outputs.size() > maxProgramOutputs) report("too many outputs");
        return problems.empty();
    }

    void checkInput(std::size_t index) {
        const ProgramInput& input = program.inputs[index];
        place = "input " + std::to_string(index);
        if (!isValueType(static_cast<std::uint32_t>(input.type))) return report("no type has this code");
        if (input.defaultValue.type != input.type) report("the default has another type");
        if (!isFinite(input.defaultValue)) report("the default is not finite");
        switch (input.role) {
        case SystemInput::None:
            break;
        case SystemInput::Resolution:
            if (input.type != ValueType::Integer2) report("the resolution has to be two integers");
            break;
        case SystemInput::Seed:
            if (input.type != ValueType::Integer) report("the seed has to be an integer");
            break;
        default:
            report("no role has this code");
        }
    }

    void checkNode(std::size_t index) {
        const ProgramNode& node = program.nodes[index];
        const std::string name = "node " + std::to_string(index);
        place = name;
        const NodeKind* kind = findNodeKind(node.kind);
        if (!kind) return report("no kind has the code " + std::to_string(node.kind));
        const std::string full = name + " (" + kind->name + ")";
        place = full;
        checkSources(node, index, *kind);
        if (node.parameters.size() != kind->parameters.size()) {
            report("has " + std::to_string(node.parameters.size()) + " parameters instead of " +
                   std::to_string(kind->parameters.size()));
        } else {
            for (std::size_t i = 0; i < node.parameters.size(); ++i) {
                place = full + ", parameter " + kind->parameters[i].name;
                checkBinding(node.parameters[i], kind->parameters[i].type);
            }
        }
        place = full + ", resolution";
        checkBinding(node.resolution, ValueType::Integer2);
        place = full + ", seed";
        checkBinding(node.seed, ValueType::Integer);
    }

    void checkSources(const ProgramNode& node, std::size_t index, const NodeKind& kind) {
        if (node.sources.size() != kind.ports.size())
            return report("has " + std::to_string(node.sources.size()) + " sources instead of " +
                          std::to_string(kind.ports.size()));
        for (std::size_t i = 0; i < node.sources.size(); ++i) {
            const std::int32_t source = node.sources[i];
            const std::string port = std::string("port ") + kind.ports[i].name;
            if (source == ProgramNode::unconnected) {
                if (kind.ports[i].required) report(port + " has to be connected");
            } else if (source < 0 || static_cast<std::size_t>(source) >= index) {
                report(port + " is connected to no earlier node");
            }
        }
    }

    void checkBinding(const Binding& binding, ValueType parameter) {
        if (!std::isfinite(binding.scale) || !std::isfinite(binding.offset))
            return report("scale or offset is not finite");
        if ((isInteger(parameter) || parameter == ValueType::Image) &&
            (binding.scale != 1.0f || binding.offset != 0.0f))
            report("scale and offset are for floats only");

        if (binding.input == Binding::constantOnly) {
            if (binding.constant.type != parameter) report("the constant has another type");
            if (!isFinite(binding.constant)) report("the constant is not finite");
        } else if (binding.input < 0 || static_cast<std::size_t>(binding.input) >= program.inputs.size()) {
            report("is bound to no input");
        } else if (!canDrive(program.inputs[static_cast<std::size_t>(binding.input)].type, parameter)) {
            report("is bound to an input whose type cannot drive it");
        }
    }

    void checkOutput(std::size_t index) {
        const ProgramOutput& output = program.outputs[index];
        place = "output " + std::to_string(index);
        if (output.node < 0 || static_cast<std::size_t>(output.node) >= program.nodes.size())
            report("is the result of no node");
        if (!findPixelFormat(output.format))
            report("no format has the code " + std::to_string(output.format));
        if (output.mipmaps > maxMipmaps) report("has too many mipmap levels");
    }

    const Program& program;
    std::string place;
    std::vector<ProgramProblem> problems;
};

} // namespace

bool canDrive(ValueType input, ValueType parameter) {
    if (input == ValueType::Image || parameter == ValueType::Image) return input == parameter;
    if (isInteger(parameter) && !isInteger(input)) return false;
    const int given = componentCount(input);
    const int wanted = componentCount(parameter);
    return given == wanted || given == 1 || (given == 3 && wanted == 4);
}

std::vector<ProgramProblem> verify(const Program& program) {
    return Verification(program).run();
}

} // namespace embedded
