#include "conformance/Clauses.h"
#include "conformance/Findings.h"
#include "conformance/Recorder.h"

#include <algorithm>
#include <exception>

namespace kvSubstance::conformance {

namespace {

std::unique_ptr<Running> runPart(Trial& trial, const Part& part) {
    auto running = trial.run(trial.link({&part}));
    if (running->handle.outputs().empty()) throw NotJudged{"a package has no output"};
    takeCompletions();
    return running;
}

std::vector<Completion> startAndTake(EngineHandle& handle) {
    handle.start();
    return takeCompletions();
}

// Does it on another thread, and throws what it throws.
void onAnotherThread(const std::function<void()>& action) {
    std::exception_ptr thrown;
    std::thread([&] {
        try {
            action();
        } catch (...) {
            thrown = std::current_exception();
        }
    }).join();
    if (thrown) std::rethrow_exception(thrown);
}

// ---- Handles

void assemblyCopied(Trial& trial) {
    const Edit& edit = trial.numericEdit();
    std::string assembly = edit.assembly;
    const auto running = trial.run(assembly);
    std::fill(assembly.begin(), assembly.end(), '\x5a');
    expect(running->handle.render(edit.outputUid) == edit.before, "the assembly to be copied by the init",
           "another picture when its bytes changed");
}

void unknownIndices(Trial& trial) {
    const auto running = runPart(trial, trial.bottom());
    const Interface::Engine& engine = trial.engine;
    SubstanceHandle* const handle = running->handle.get();
    const auto inputs = static_cast<unsigned int>(running->handle.inputs().size());
    const auto outputs = static_cast<unsigned int>(running->handle.outputs().size());
    for (unsigned int i = 0; i < inputs; ++i) {
        SubstanceInputDesc desc{};
        expectSuccess(engine.getInputDesc(handle, i, &desc), "substanceHandleGetInputDesc");
        expect(desc.index == i, "descriptors with their own index", desc.index);
    }
    for (const unsigned int beyond : {0u, 1u, 1000000u}) {
        SubstanceInputDesc input{1, 1, 1};
        expectRefusal(engine.getInputDesc(handle, inputs + beyond, &input), "an input that is not there");
        expect(input.uid == 0 && input.type == 0 && input.index == 0, "zeros from a refused descriptor",
               input.uid);
        SubstanceOutputDesc output{1, 1};
        expectRefusal(engine.getOutputDesc(handle, outputs + beyond, &output), "an output that is not there");
        expect(output.uid == 0 && output.format == 0, "zeros from a refused descriptor", output.uid);
        SubstanceTexture texture{};
        expectRefusal(engine.getOutputs(handle, 0, outputs + beyond, 1, &texture), "a texture of no output");
        const float value[4] = {};
        expectRefusal(
            engine.pushSetInput(handle, SubstancePushInput, inputs + beyond, SubstanceInputFloat, value, 0),
            "a value for an input that is not there");
    }
}

void parentContext(Trial& trial) {
    const auto running = runPart(trial, trial.bottom());
    expect(trial.engine.getParentContext(running->handle.get()) == running->context.get(),
           "the context that the handle was made in", "another");
}

void independentHandles(Trial& trial) {
    const Edit& edit = trial.numericEdit();
    const auto first = trial.run(edit.assembly);
    EngineHandle second(trial.engine, first->context, edit.assembly, trial.resolutionUids());
    first->handle.set(edit.inputUid, edit.value);
    first->handle.ask({edit.outputUid});
    takeCompletions();
    expect(startAndTake(second).empty(), "a push to stay in its handle", "callbacks of another handle");
    expect(second.render(edit.outputUid) == edit.before, "values to stay in their handle", "another picture");
    first->handle.start();
    second.release();
    expect(first->handle.take(edit.outputUid) == edit.after, "a handle to outlive others of its context",
           "another picture");
}

void anyThread(Trial& trial) {
    const Edit& edit = trial.numericEdit();
    const auto running = trial.run(edit.assembly);
    Picture picture;
    onAnotherThread([&] {
        running->handle.set(edit.inputUid, edit.value);
        picture = running->handle.render(edit.outputUid);
    });
    expect(picture == edit.after, "a handle to work on other threads than that which made it",
           "another picture");
    onAnotherThread([&] { picture = running->handle.render(edit.outputUid); });
    expect(picture == edit.after, "a handle to work on one thread after the other", "another picture");
    std::string linked;
    Linking linking(trial.linker);
    onAnotherThread([&] {
        linking.push(trial.bottom().package);
        linked = linking.link();
    });
    expect(!trial.run(linked)->handle.outputs().empty(), "a linker to work on another thread", "no outputs");
}

// ---- Completions

void completionOnce(Trial& trial) {
    const auto running = runPart(trial, trial.bottom());
    EngineHandle& handle = running->handle;
    std::vector<unsigned int> uids;
    for (const SubstanceOutputDesc& output : handle.outputs()) {
        uids.push_back(output.uid);
        handle.ask(uids);
        std::vector<unsigned int> indices;
        for (const Completion& completion : startAndTake(handle)) {
            expect(completion.handle == handle.get(), "callbacks with the handle that runs", "another");
            indices.push_back(completion.outputIndex);
        }
        std::sort(indices.begin(), indices.end());
        expect(indices.size() == uids.size(), "one callback for each output that was asked for",
               indices.size());
        for (std::size_t i = 0; i < uids.size(); ++i)
            expect(indices[i] == handle.outputIndex(uids[i]), "the indices of the outputs asked for",
                   indices[i]);
    }
}

void completionInStart(Trial& trial) {
    const auto running = runPart(trial, trial.bottom());
    running->handle.ask({running->handle.outputs()[0].uid});
    expect(takeCompletions().empty(), "no callback before the start", "one");
    expect(startAndTake(running->handle).size() == 1, "the callback to have returned when the start does",
           "none");
    running->handle.release();
    expect(takeCompletions().empty(), "no callback after the start", "one");
}

void releaseInCallback(Trial& trial) {
    const auto running = runPart(trial, trial.bottom());
    running->handle.ask({running->handle.outputs()[0].uid});
    unsigned int status = 0;
    {
        const DuringCompletions during(
            [&](const Completion& completion) { status = trial.engine.handleRelease(completion.handle); });
        running->handle.start();
    }
    expectRefusal(status, "substanceHandleRelease inside a completion callback");
}

void jobUserData(Trial& trial) {
    const auto running = runPart(trial, trial.partWithTwoOutputs());
    EngineHandle& handle = running->handle;
    int jobs[2] = {};
    for (const std::size_t i : {std::size_t(1), std::size_t(0)})
        handle.ask({handle.outputs()[i].uid}, &jobs[i]);
    const auto completions = startAndTake(handle);
    expect(completions.size() == 2, "one start to compute what two pushes asked for", completions.size());
    for (const Completion& completion : completions)
        expect(completion.jobUserData == &jobs[completion.outputIndex == 0 ? 0 : 1],
               "the user data of the push that asked for the output", "another pointer");
}

// ---- Pushes

void pushCopiesUids(Trial& trial) {
    const auto running = runPart(trial, trial.bottom());
    unsigned int uid = running->handle.outputs()[0].uid;
    expectSuccess(trial.engine.pushOutputs(running->handle.get(), SubstancePushOutputUids, &uid, 1, nullptr),
                  "substanceHandlePushOutputs");
    uid = 0;
    const auto completions = startAndTake(running->handle);
    expect(completions.size() == 1, "the array of uids to be copied", completions.size());
}

void unknownOutputs(Trial& trial) {
    const auto running = runPart(trial, trial.bottom());
    EngineHandle& handle = running->handle;
    unsigned int unknown = 1;
    while (std::any_of(handle.outputs().begin(), handle.outputs().end(),
                       [&](const SubstanceOutputDesc& output) { return output.uid == unknown; }))
        ++unknown;
    handle.ask({unknown, handle.outputs()[0].uid, unknown});
    const auto completions = startAndTake(handle);
    expect(completions.size() == 1 && completions[0].outputIndex == 0, "only the output that there is",
           completions.size());
}

void outputHints(Trial& trial) {
    const auto running = runPart(trial, trial.bottom());
    EngineHandle& handle = running->handle;
    const unsigned int uid = handle.outputs()[0].uid;
    handle.ask({uid}, nullptr, SubstancePushOutputUidsHint);
    expect(startAndTake(handle).empty(), "hints (2050) to compute nothing", "a callback");
    handle.ask({uid});
    handle.ask({uid}, nullptr, SubstancePushOutputUidsHint);
    const auto completions = startAndTake(handle);
    expect(completions.size() == 1, "one callback for an output that is pushed and then hinted at",
           completions.size());
}

void inputHints(Trial& trial) {
    const Edit& edit = trial.numericEdit();
    const auto running = trial.run(edit.assembly);
    expectSuccess(trial.engine.pushSetInput(running->handle.get(), SubstancePushInputHint,
                                            running->handle.inputIndex(edit.inputUid), edit.value.type,
                                            edit.value.words.data(), 0),
                  "a hint (2048) at an input");
    expect(running->handle.render(edit.outputUid) == edit.before, "a hint (2048) to change no value",
           "another picture");
}

void valuesOfThePush(Trial& trial) {
    const Edit& edit = trial.numericEdit();
    const auto running = trial.run(edit.assembly);
    running->handle.ask({edit.outputUid});
    running->handle.set(edit.inputUid, edit.value);
    running->handle.start();
    expect(running->handle.take(edit.outputUid) == edit.before,
           "an output computed with the values at its push", "later ones");
    expect(running->handle.render(edit.outputUid) == edit.after, "the later value in the next run",
           "another");
}

// ---- The queue

void emptyStart(Trial& trial) {
    const auto running = runPart(trial, trial.bottom());
    for (int times = 0; times < 2; ++times)
        expect(startAndTake(running->handle).empty(), "a start of nothing to succeed without callbacks",
               "a callback");
}

void queueEmpties(Trial& trial) {
    const auto running = runPart(trial, trial.bottom());
    int job = 0, nextJob = 0;
    running->handle.ask({running->handle.outputs()[0].uid}, &job);
    running->handle.start();
    takeCompletions();
    expect(startAndTake(running->handle).empty(), "a start to leave nothing in the queue", "more callbacks");
    running->handle.ask({running->handle.outputs()[0].uid}, &nextJob);
    for (const Completion& completion : startAndTake(running->handle))
        expect(completion.jobUserData == &nextJob, "no user data of an earlier run", "another pointer");
}

} // namespace

std::vector<Entry> runClauses() {
    return {
        {{"assembly-copied", "A handle copies its assembly."}, assemblyCopied},
        {{"unknown-indices", "Indices of inputs and outputs that are not there are refused, with zeros."},
         unknownIndices},
        {{"parent-context", "A handle knows the context that it was made in."}, parentContext},
        {{"engine-handles", "Handles of one engine context know nothing of each other."}, independentHandles},
        {{"any-thread", "Handles and contexts work on one thread after the other."}, anyThread},
        {{"completion-once",
          "Each output that was asked for is completed once, with its handle and its index; others are not."},
         completionOnce},
        {{"completion-in-start", "Completion callbacks come while the start runs, and at no other time."},
         completionInStart},
        {{"release-in-callback", "A handle is not released inside a completion callback."},
         releaseInCallback},
        {{"job-user-data", "One start serves several pushes, each with its own user data."}, jobUserData},
        {{"uids-copied", "A push of outputs copies the array of uids."}, pushCopiesUids},
        {{"unknown-outputs", "A push of outputs passes over unknown uids."}, unknownOutputs},
        {{"output-hints", "Hints at outputs (2050) succeed and produce nothing."}, outputHints},
        {{"input-hints", "Hints at inputs (2048) succeed and change nothing."}, inputHints},
        {{"values-of-the-push", "Outputs are computed with the values that held when they were pushed."},
         valuesOfThePush},
        {{"empty-start", "A start with nothing pushed succeeds and computes nothing."}, emptyStart},
        {{"queue-empties", "A start leaves the queue empty and keeps no user data."}, queueEmpties},
    };
}

} // namespace kvSubstance::conformance
