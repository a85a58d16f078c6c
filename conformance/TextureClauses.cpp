#include "conformance/Clauses.h"
#include "conformance/Findings.h"
#include "conformance/Recorder.h"

#include <utility>

namespace kvSubstance::conformance {

namespace {

// A run whose textures nobody has fetched yet.
std::unique_ptr<Running> computed(Trial& trial, const Edit& edit) {
    auto running = trial.run(edit.assembly);
    running->handle.ask({edit.outputUid});
    running->handle.start();
    return running;
}

void expectNothingToFetch(Trial& trial, EngineHandle& handle, unsigned int uid, const char* when) {
    SubstanceTexture texture{};
    texture.buffer = &texture;
    if (trial.engine.getOutputs(handle.get(), 0, handle.outputIndex(uid), 1, &texture) == 0)
        throw Broken{std::string("expected a fetch to be refused ") + when + ", saw 0"};
    expect(texture.buffer == nullptr, "a record of zeros from a refused fetch", "a buffer");
}

void fetchOnce(Trial& trial) {
    const Edit& edit = trial.numericEdit();
    const auto running = trial.run(edit.assembly);
    expectNothingToFetch(trial, running->handle, edit.outputUid, "before the first run");
    running->handle.ask({edit.outputUid});
    running->handle.start();
    const SubstanceTexture texture = running->handle.fetch(running->handle.outputIndex(edit.outputUid));
    try {
        expectNothingToFetch(trial, running->handle, edit.outputUid, "for the second time");
    } catch (...) {
        trial.engine.memoryFree(running->context.get(), texture.buffer);
        throw;
    }
    expect(consume(trial.engine, running->context.get(), texture) == edit.before,
           "the fetched texture's pixels", "others");
}

void fetchInCallback(Trial& trial) {
    const Edit& edit = trial.numericEdit();
    const auto running = trial.run(edit.assembly);
    running->handle.ask({edit.outputUid});
    unsigned int descStatus = 1, status = 1;
    SubstanceOutputDesc desc{};
    SubstanceTexture texture{};
    SubstanceContext* parent = nullptr;
    {
        const DuringCompletions during([&](const Completion& completion) {
            descStatus = trial.engine.getOutputDesc(completion.handle, completion.outputIndex, &desc);
            status = trial.engine.getOutputs(completion.handle, 0, completion.outputIndex, 1, &texture);
            parent = trial.engine.getParentContext(completion.handle);
        });
        running->handle.start();
    }
    expectSuccess(descStatus, "substanceHandleGetOutputDesc inside the completion callback");
    expect(desc.uid == edit.outputUid, "the uid of the finished output there", desc.uid);
    expectSuccess(status, "substanceHandleGetOutputs inside the completion callback");
    expect(parent == running->context.get(), "the handle's context there", "another");
    expect(consume(trial.engine, running->context.get(), texture) == edit.before,
           "the finished texture inside the completion callback", "another");
}

void unfetched(Trial& trial) {
    const Edit& edit = trial.numericEdit();
    const auto running = computed(trial, edit);
    running->handle.set(edit.inputUid, edit.value);
    running->handle.ask({edit.outputUid});
    running->handle.start();
    expect(running->handle.take(edit.outputUid) == edit.after,
           "a texture that nobody fetched to give way to the next", "the older one");
    expectNothingToFetch(trial, running->handle, edit.outputUid, "of the texture that gave way");
    running->handle.ask({edit.outputUid});
    running->handle.start();
    running->handle.release(); // with one more
}

void outlivesHandle(Trial& trial) {
    const Edit& edit = trial.numericEdit();
    const auto running = computed(trial, edit);
    const SubstanceTexture texture = running->handle.fetch(running->handle.outputIndex(edit.outputUid));
    running->handle.release();
    expect(consume(trial.engine, running->context.get(), texture) == edit.before,
           "a fetched texture to outlive its handle", "other pixels");
}

void outlivesContext(Trial& trial) {
    const Edit& edit = trial.numericEdit();
    const auto running = computed(trial, edit);
    const SubstanceTexture texture = running->handle.fetch(running->handle.outputIndex(edit.outputUid));
    running->handle.release();
    running->context.release();
    expect(consume(trial.engine, running->context.get(), texture) == edit.before,
           "a fetched texture to outlive its context", "other pixels");
}

void freeAnywhere(Trial& trial) {
    const Edit& edit = trial.numericEdit();
    const auto running = computed(trial, edit);
    const auto freeOnAnotherThread = [&](const SubstanceTexture& texture) {
        unsigned int status = 1;
        std::thread([&] { status = trial.engine.memoryFree(running->context.get(), texture.buffer); }).join();
        return status;
    };
    const unsigned int index = running->handle.outputIndex(edit.outputUid);
    expectSuccess(freeOnAnotherThread(running->handle.fetch(index)),
                  "substanceContextMemoryFree on another thread");

    running->handle.ask({edit.outputUid});
    running->handle.start();
    const SubstanceTexture texture = running->handle.fetch(index);
    unsigned int status = 1;
    running->handle.ask({edit.outputUid});
    {
        const DuringCompletions during([&](const Completion&) { status = freeOnAnotherThread(texture); });
        running->handle.start();
    }
    expectSuccess(status, "substanceContextMemoryFree during a run");
    static_cast<void>(running->handle.take(edit.outputUid));
}

} // namespace

std::vector<Entry> textureClauses() {
    return {
        {{"fetch-once", "A texture is handed over once; other fetches are refused, with zeros."}, fetchOnce},
        {{"fetch-in-callback", "A texture can be described and fetched inside its completion callback."},
         fetchInCallback},
        {{"unfetched", "A texture that nobody fetched gives way to the next, or ends with its handle."},
         unfetched},
        {{"outlives-handle", "A fetched texture outlives its handle."}, outlivesHandle},
        {{"outlives-context", "A fetched texture outlives its context, which still takes it back."},
         outlivesContext},
        {{"free-anywhere", "Buffers are freed on any thread, also while a run is on."}, freeAnywhere},
    };
}

} // namespace kvSubstance::conformance
