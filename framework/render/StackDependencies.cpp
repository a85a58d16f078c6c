#include "framework/render/StackDependencies.h"

namespace SubstanceAir {

namespace {

using UidList = std::vector<unsigned int>;
using UidSet = std::set<unsigned int>;

UidSet asSet(const UidList& uids) {
    return UidSet(uids.begin(), uids.end());
}

// Sets throughout: a uid that a list names many times is not multiplied by the connections.
UidSet resolved(const UidList& uids, const std::map<unsigned int, UidSet>& replacements) {
    UidSet result;
    for (const unsigned int uid : asSet(uids)) {
        const auto replacement = replacements.find(uid);
        if (replacement == replacements.end())
            result.insert(uid);
        else
            result.insert(replacement->second.begin(), replacement->second.end());
    }
    return result;
}

UidSet withFused(const UidSet& inputUids, const FusedUids& fused) {
    UidSet result;
    for (const unsigned int uid : inputUids) {
        const auto bottom = fused.find(uid);
        result.insert(bottom == fused.end() ? uid : bottom->second);
    }
    return result;
}

// How many uids stand for the one.
using Counts = std::map<unsigned int, size_t>;

size_t countReplacements(const UidList& uids, const Counts& counts) {
    size_t sum = 0;
    for (const unsigned int uid : asSet(uids)) {
        const auto count = counts.find(uid);
        if (count != counts.end()) sum += count->second;
    }
    return sum;
}

} // namespace

bool hasTooManyDependencies(const GraphDesc& bottom, const GraphDesc& top,
                            const StackConnections& connections) {
    Counts altered, altering;
    size_t sum = 0;
    for (const auto& [outputUid, inputUid] : connections) {
        const InputDescBase* const input = findInput(top.inputs, inputUid);
        const auto output = findOutput(bottom.outputs, outputUid);
        const size_t numAltered = input ? asSet(input->alteredOutputUids).size() : 0;
        const size_t numAltering =
            output != bottom.outputs.end() ? asSet(output->alteringInputUids).size() : 0;
        altered[outputUid] += numAltered;
        altering[inputUid] += numAltering;
        sum += numAltered + numAltering;
    }
    for (const auto& input : bottom.inputs) sum += countReplacements(input->alteredOutputUids, altered);
    for (const OutputDesc& output : top.outputs) sum += countReplacements(output.alteringInputUids, altering);
    return sum > maxStackDependencies;
}

StackDependencies::StackDependencies(const GraphDesc& bottom, const GraphDesc& top,
                                     const StackConnections& connections) {
    for (const auto& [outputUid, inputUid] : connections) {
        UidSet& altered = alteredThroughOutput[outputUid];
        if (const InputDescBase* const input = findInput(top.inputs, inputUid))
            altered.insert(input->alteredOutputUids.begin(), input->alteredOutputUids.end());

        UidSet& altering = alteringThroughInput[inputUid];
        const auto output = findOutput(bottom.outputs, outputUid);
        if (output != bottom.outputs.end())
            altering.insert(output->alteringInputUids.begin(), output->alteringInputUids.end());
    }
}

void joinDependencies(GraphDesc& stack, const StackDependencies& dependencies, const FusedUids& fused) {
    for (OutputDesc& output : stack.outputs) {
        const UidSet altering =
            withFused(resolved(output.alteringInputUids, dependencies.alteringThroughInput), fused);
        output.alteringInputUids.assign(altering.begin(), altering.end());
    }
    for (const auto& input : stack.inputs) {
        const UidSet altered = resolved(input->alteredOutputUids, dependencies.alteredThroughOutput);
        input->alteredOutputUids.assign(altered.begin(), altered.end());
    }
}

} // namespace SubstanceAir
