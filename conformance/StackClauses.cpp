#include "conformance/Clauses.h"
#include "conformance/Findings.h"

#include <algorithm>
#include <utility>

namespace kvSubstance::conformance {

namespace {

// Image inputs of the top that the linked stack has.
std::vector<Port> imageInputs(Trial& trial) {
    const auto known = trial.inputsOf(trial.linkStack());
    std::vector<Port> images;
    for (const Port& input : trial.top().description.inputs)
        if (input.type == SubstanceInputImage && known.count(input.uid) > 0) images.push_back(input);
    if (images.empty()) throw NotJudged{"the top has no image input"};
    return images;
}

unsigned int firstOutput(const Part& part) {
    if (part.description.outputs.empty()) throw NotJudged{"the bottom has no output"};
    return part.description.outputs.front().uid;
}

std::string connected(Trial& trial, unsigned int input, unsigned int output) {
    return trial.linkStack([&](SubstanceLinkerHandle* handle) {
        expectSuccess(trial.linker.connect(handle, input, output),
                      "substanceLinkerConnectOutputToInput(handle, input of the top, output of the bottom)");
    });
}

void connectOrder(Trial& trial) {
    const unsigned int input = imageInputs(trial).front().uid, output = firstOutput(trial.bottom());
    connected(trial, input, output);
    trial.linkStack([&](SubstanceLinkerHandle* handle) {
        expectRefusal(trial.linker.connect(handle, output, input),
                      "a connection with the output's uid first");
    });
}

void connectRemoves(Trial& trial) {
    const unsigned int input = imageInputs(trial).front().uid;
    auto expected = trial.inputsOf(trial.linkStack());
    expected.erase(input);
    const auto left = trial.inputsOf(connected(trial, input, firstOutput(trial.bottom())));
    expect(left == expected, "the fed input to disappear from the linked assembly, and no other",
           left.size());
}

void connectShows(Trial& trial) {
    bool isTold = false;
    const auto before = trial.run(trial.linkStack());
    for (const Port& input : imageInputs(trial)) {
        const auto after = trial.run(connected(trial, input.uid, firstOutput(trial.bottom())));
        for (const Port& output : trial.top().description.outputs)
            if (after->handle.render(output.uid) != before->handle.render(output.uid)) return;
        isTold = isTold || input.altersOutputs;
    }
    if (!isTold) throw NotJudged{"no image input of the top alters an output"};
    throw Broken{"expected a connection to change an output of the top, saw none that did"};
}

void connectRefusals(Trial& trial) {
    const Part &bottom = trial.bottom(), &top = trial.top();
    const unsigned int image = imageInputs(trial).front().uid, output = firstOutput(bottom);
    const auto known = trial.inputsOf(trial.linkStack());
    unsigned int unknown = 1;
    const auto isTaken = [&](const Port& port) { return port.uid == unknown; };
    const auto& outputs = bottom.description.outputs;
    while (known.count(unknown) > 0 || std::any_of(outputs.begin(), outputs.end(), isTaken)) ++unknown;

    std::vector<std::pair<unsigned int, unsigned int>> pairs{
        {unknown, output}, {image, unknown}, {image, firstOutput(top)}}; // the last of one package
    for (const Port& input : top.description.inputs)
        if (isNumeric(input)) pairs.emplace_back(input.uid, output);
    for (const Port& input : bottom.description.inputs) pairs.emplace_back(input.uid, firstOutput(top));

    const std::string refused = trial.linkStack([&](SubstanceLinkerHandle* handle) {
        for (const auto& [to, from] : pairs)
            expectRefusal(trial.linker.connect(handle, to, from),
                          "a connection that is not from an earlier output to a later image input");
    });
    expect(trial.inputsOf(refused) == known, "a refused connection to change nothing", "other inputs");
}

void select(Trial& trial) {
    const Part& part = trial.partWithTwoOutputs();
    const auto& outputs = part.description.outputs;
    const Picture expected = trial.run(trial.link({&part}))->handle.render(outputs[1].uid);
    const auto running = trial.run(trial.link({&part}, [&](SubstanceLinkerHandle* handle) {
        expectSuccess(trial.linker.selectOutputs(handle, 0, outputs[0].uid),
                      "substanceLinkerHandleSelectOutputs");
    }));
    for (const Port& output : outputs) static_cast<void>(running->handle.outputIndex(output.uid));
    expect(running->handle.render(outputs[1].uid) == expected, "outputs that were not selected, too",
           "others");
}

// A numeric input of the bottom and one of the top, of equal or of different types.
std::pair<unsigned int, unsigned int> numericPair(Trial& trial, bool isOneType) {
    const auto known = trial.inputsOf(trial.linkStack());
    for (const Port& first : trial.bottom().description.inputs)
        for (const Port& second : trial.top().description.inputs)
            if (isNumeric(first) && isNumeric(second) && (first.type == second.type) == isOneType &&
                known.count(first.uid) > 0 && known.count(second.uid) > 0)
                return {first.uid, second.uid};
    throw NotJudged{isOneType ? "no two numeric inputs of bottom and top have one type"
                              : "all numeric inputs of bottom and top have one type"};
}

void fuseFirst(Trial& trial) {
    const auto [first, second] = numericPair(trial, true);
    auto expected = trial.inputsOf(trial.linkStack());
    expected.erase(second);
    const std::string fused = trial.linkStack([&, a = first, b = second](SubstanceLinkerHandle* handle) {
        expectSuccess(trial.linker.fuse(handle, a, b), "substanceLinkerFuseInputs of one type");
    });
    expect(trial.inputsOf(fused) == expected, "fused inputs to become one with the first uid",
           "other inputs");
}

void fuseDrives(Trial& trial) {
    const auto edit = trial.findEdit(trial.top(), false);
    if (!edit) throw NotJudged{"no number that an input of the top is set to shows in its outputs"};
    for (const Port& first : trial.bottom().description.inputs) {
        if (first.type != edit->value.type || isSystem(first)) continue;
        const auto running = trial.run(trial.linkStack([&](SubstanceLinkerHandle* handle) {
            expectSuccess(trial.linker.fuse(handle, first.uid, edit->inputUid),
                          "substanceLinkerFuseInputs of one type");
        }));
        running->handle.set(first.uid, edit->value);
        expect(running->handle.render(edit->outputUid) == edit->after,
               "the input that is left to drive what the second drove", "another picture");
        return;
    }
    throw NotJudged{"the bottom has no input of the type of one of the top that shows"};
}

void fuseTypes(Trial& trial) {
    const auto [first, second] = numericPair(trial, false);
    const auto expected = trial.inputsOf(trial.linkStack());
    const std::string refused = trial.linkStack([&, a = first, b = second](SubstanceLinkerHandle* handle) {
        expectRefusal(trial.linker.fuse(handle, a, b), "a fusion of two types");
    });
    expect(trial.inputsOf(refused) == expected, "a refused fusion to change nothing", "other inputs");
}

} // namespace

std::vector<Entry> stackClauses() {
    return {
        {{"connect-order", "A connection takes the input's uid first."}, connectOrder},
        {{"connect-removes", "A connected input disappears from the linked assembly."}, connectRemoves},
        {{"connect-shows", "A connected input gets the picture of the output."}, connectShows},
        {{"connect-refusals", "Only earlier outputs and later image inputs are connected; all else is "
                              "refused and changes nothing."},
         connectRefusals},
        {{"select", "Selecting an output never makes another one unavailable."}, select},
        {{"fuse-first", "Fused inputs become one, which keeps the first uid."}, fuseFirst},
        {{"fuse-drives", "What is left of fused inputs drives what each of them drove."}, fuseDrives},
        {{"fuse-types", "Inputs of different types are not fused."}, fuseTypes},
    };
}

} // namespace kvSubstance::conformance
