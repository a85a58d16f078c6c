// Each clause is broken on purpose, and caught.
#include "conformance/Conformance.h"
#include "tests/ReadFile.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <map>
#include <set>
#include <thread>

namespace kvSubstance::conformance {
namespace {

const Interface real = linkedInterface();

// What broken functions remember from one call to the next.
struct Memory {
    std::map<const void*, std::pair<const void*, std::string>> borrowed; // bytes that should have been copied
    char linked[1 << 16];
    size_t linkedSize = 0;
    int handles = 0;
    std::set<SubstanceHandle*> engineHandles;
    std::thread::id thread;
    bool isRunning = false, isPushed = false, isUnfetched = false;
    std::vector<unsigned int> uids;
    const unsigned int* borrowedUids = nullptr;
    void* jobUserData = nullptr;
    struct Input {
        unsigned int index;
        int type;
        const void* value;
        SubstanceTextureInput image;
    };
    std::vector<Input> inputs;
    SubstanceTexture texture{};
    std::set<void*> buffers, endedContexts;
    unsigned char counter = 0;
    SubstanceLinkerTextCallback text = nullptr;
    SubstanceOutputCompletedCallback completed = nullptr;
};
Memory memory;

// Breaks one function. The bodies take what the function takes. What replaces the function is a pointer and
// cannot capture its body, which is static therefore; gcc does not see that it is used.
using Edit = std::function<void(Interface& broken)>;

#define LINKER(function) &Interface::linker, &Interface::Linker::function
#define ENGINE(function) &Interface::engine, &Interface::Engine::function

template <auto Group, auto Function, class Body>
Edit instead(Body body) {
    return [body](Interface& broken) { (broken.*Group).*Function = body; };
}

template <auto Group, auto Function, class Body>
Edit before(Body body) {
    [[maybe_unused]] static const Body first = body;
    return instead<Group, Function>([](auto... arguments) {
        first(arguments...);
        return ((real.*Group).*Function)(arguments...);
    });
}

template <auto Group, auto Function, class Body>
Edit afterSuccess(Body body) {
    [[maybe_unused]] static const Body then = body;
    return instead<Group, Function>([](auto... arguments) {
        const unsigned int status = ((real.*Group).*Function)(arguments...);
        if (status == 0) then(arguments...);
        return status;
    });
}

// Does nothing under the condition.
template <unsigned int Status, auto Group, auto Function, class Condition>
Edit returnIf(Condition condition) {
    [[maybe_unused]] static const Condition isMet = condition;
    return instead<Group, Function>([](auto... arguments) {
        return isMet(arguments...) ? Status : ((real.*Group).*Function)(arguments...);
    });
}

// Does its work, and says that it failed under the condition.
template <auto Group, auto Function, class Condition>
Edit complainIf(Condition condition) {
    [[maybe_unused]] static const Condition isMet = condition;
    return instead<Group, Function>([](auto... arguments) {
        const unsigned int status = ((real.*Group).*Function)(arguments...);
        return isMet(arguments...) ? 1u : status;
    });
}

template <auto Group, auto Function>
Edit alwaysSucceed() {
    return instead<Group, Function>([](auto... arguments) {
        ((real.*Group).*Function)(arguments...);
        return 0u;
    });
}

template <auto Group, auto Function>
Edit doNothing() {
    return instead<Group, Function>([](auto...) { return 0u; });
}

const auto borrow = [](const void* handle, const void* data, size_t size) {
    memory.borrowed[handle] = {data, std::string(static_cast<const char*>(data), size)};
};

const auto hasChanged = [](auto handle, auto...) {
    const auto& [data, copy] = memory.borrowed[handle];
    return std::memcmp(data, copy.data(), copy.size()) != 0;
};

const Edit rememberThread =
    before<ENGINE(handleInit)>([](auto...) { memory.thread = std::this_thread::get_id(); });

const auto isForeignThread = [](auto...) { return memory.thread != std::this_thread::get_id(); };

const Edit tellRunning = instead<ENGINE(start)>([](auto... arguments) {
    memory.isRunning = true;
    const unsigned int status = real.engine.start(arguments...);
    memory.isRunning = false;
    return status;
});

const auto isRunning = [](auto...) { return memory.isRunning; };

// The linker's callbacks with other arguments.
template <int IndexOffset, bool NamesHandle>
Edit otherDelivery() {
    return instead<LINKER(contextSetCallback)>([](auto context, auto kind, auto callback) {
        if (kind == SubstanceLinkerCallbackText) {
            memory.text = reinterpret_cast<SubstanceLinkerTextCallback>(callback);
            const SubstanceLinkerTextCallback shim = [](auto handle, auto index, auto text) {
                memory.text(NamesHandle ? handle : nullptr, index + IndexOffset, text);
            };
            callback = reinterpret_cast<SubstanceLinkerCallback>(shim);
        }
        return real.linker.contextSetCallback(context, kind, callback);
    });
}

// Waits with values until outputs are pushed.
template <bool OfImages>
std::vector<Edit> deferInputs() {
    const auto keep = [](auto, auto, auto index, auto type, auto value, auto) {
        if (OfImages ? type != SubstanceInputImage : type > SubstanceInputFloat4) return false;
        memory.inputs.push_back({index, type, value, {}});
        if (OfImages) memory.inputs.back().image = *static_cast<const SubstanceTextureInput*>(value);
        return true;
    };
    const auto pushKept = [](auto handle, auto...) {
        for (const auto& [index, type, value, image] : memory.inputs)
            real.engine.pushSetInput(handle, 0, index, type, OfImages ? &image : value, 0);
        memory.inputs.clear();
    };
    return {returnIf<0, ENGINE(pushSetInput)>(keep), before<ENGINE(pushOutputs)>(pushKept)};
}

void setFloats(SubstanceHandle* handle, float value) {
    const float values[] = {value, value, value, value};
    SubstanceInputDesc desc{};
    for (unsigned int i = 0; real.engine.getInputDesc(handle, i, &desc) == 0; ++i)
        if (desc.type <= SubstanceInputFloat4) real.engine.pushSetInput(handle, 0, i, desc.type, values, 0);
}

struct Mutation {
    const char* clause;
    std::vector<Edit> edits;
};

// The example's engine and linker, with a fault each.
const Mutation mutations[] = {
    {"linker-version", {alwaysSucceed<LINKER(contextInit)>()}},
    {"linker-nulls", {alwaysSucceed<LINKER(handleRelease)>()}},
    {"engine-nulls", {alwaysSucceed<ENGINE(start)>()}},
    {"callback-kinds", {alwaysSucceed<LINKER(contextSetCallback)>()}},
    {"callback-kinds", {alwaysSucceed<ENGINE(contextSetCallback)>()}},
    {"broken-packages", {alwaysSucceed<LINKER(push)>()}},
    {"broken-assemblies", {alwaysSucceed<ENGINE(handleInit)>()}},
    {"delivery-in-push", {instead<LINKER(push)>([](auto... arguments) {
         unsigned int status = 1;
         std::thread([&] { status = real.linker.push(arguments...); }).join();
         return status;
     })}},
    {"delivery-index", {otherDelivery<1, true>()}},
    {"delivery-handle", {otherDelivery<0, false>()}},
    {"delivery-removal",
     {returnIf<0, LINKER(contextSetCallback)>([](auto, auto, auto callback) { return !callback; })}},
    {"description-matches", {afterSuccess<ENGINE(getInputDesc)>([](auto, auto, auto desc) { ++desc->uid; })}},
    {"bare-assembly", {returnIf<1, LINKER(push)>([](auto, auto data, auto size) {
         return size > 1 && static_cast<const char*>(data)[1] == 's'; // packages begin with "<?xml"
     })}},
    {"push-copies", {before<LINKER(push)>(borrow), returnIf<1, LINKER(link)>(hasChanged)}},
    {"failed-push", {alwaysSucceed<LINKER(link)>()}},
    {"empty-link", {instead<LINKER(link)>([](auto handle, auto data, auto size) {
         const unsigned int status = real.linker.link(handle, data, size);
         if (status != 0) *size = 1;
         return status;
     })}},
    {"link-result", {afterSuccess<LINKER(link)>([](auto, auto data, auto size) {
         *data = static_cast<unsigned char*>(std::memcpy(memory.linked, *data, *size));
     })}},
    {"linker-handles", {afterSuccess<LINKER(link)>([](auto, auto data, auto size) { // the first result
         if (memory.linkedSize == 0) std::memcpy(memory.linked, *data, memory.linkedSize = *size);
         *data = reinterpret_cast<unsigned char*>(memory.linked);
         *size = memory.linkedSize;
     })}},
    {"linker-context-release",
     {before<LINKER(handleInit)>([](auto...) { ++memory.handles; }),
      before<LINKER(handleRelease)>([](auto...) { --memory.handles; }),
      complainIf<LINKER(contextRelease)>([](auto...) { return memory.handles > 0; })}},
    {"format", {doNothing<LINKER(setOutputFormat)>()}},
    {"mipmaps", {instead<LINKER(setOutputFormat)>([](auto handle, auto uid, auto format, auto mipmaps) {
         return real.linker.setOutputFormat(handle, uid, format, mipmaps + 1);
     })}},
    {"format-refusals", {alwaysSucceed<LINKER(setOutputFormat)>()}},
    {"connect-order", {instead<LINKER(connect)>([](auto handle, auto input, auto output) {
         return real.linker.connect(handle, output, input);
     })}},
    {"connect-removes", {doNothing<LINKER(connect)>()}},
    {"connect-shows", {doNothing<LINKER(connect)>()}},
    {"connect-refusals", {alwaysSucceed<LINKER(connect)>()}},
    {"select", {instead<LINKER(selectOutputs)>([](auto...) { return 1u; })}},
    {"fuse-first", {instead<LINKER(fuse)>([](auto handle, auto first, auto second) {
         return real.linker.fuse(handle, second, first);
     })}},
    {"fuse-drives", {doNothing<LINKER(fuse)>()}},
    {"fuse-types", {alwaysSucceed<LINKER(fuse)>()}},
    {"assembly-copied",
     {afterSuccess<ENGINE(handleInit)>(
          [](auto handle, auto, auto bytes, auto size, auto) { borrow(*handle, bytes, size); }),
      returnIf<1, ENGINE(start)>(hasChanged)}},
    {"unknown-indices", {alwaysSucceed<ENGINE(getInputDesc)>()}},
    {"unknown-indices", {alwaysSucceed<ENGINE(pushSetInput)>()}},
    {"parent-context",
     {instead<ENGINE(getParentContext)>([](auto) { return static_cast<SubstanceContext*>(nullptr); })}},
    {"engine-handles",
     {afterSuccess<ENGINE(handleInit)>([](auto handle, auto...) { memory.engineHandles.insert(*handle); }),
      before<ENGINE(handleRelease)>([](auto handle) { memory.engineHandles.erase(handle); }),
      before<ENGINE(pushSetInput)>([](auto, auto... others) {
          for (auto* const each : memory.engineHandles) real.engine.pushSetInput(each, others...);
      })}},
    {"any-thread", {rememberThread, returnIf<1, ENGINE(start)>(isForeignThread)}},
    {"completion-once", {instead<ENGINE(contextSetCallback)>([](auto context, auto kind, auto callback) {
         memory.completed = reinterpret_cast<SubstanceOutputCompletedCallback>(callback);
         const SubstanceOutputCompletedCallback twice = [](auto... arguments) {
             memory.completed(arguments...);
             memory.completed(arguments...);
         };
         return real.engine.contextSetCallback(context, kind, reinterpret_cast<SubstanceCallback>(twice));
     })}},
    {"completion-in-start",
     {afterSuccess<ENGINE(pushOutputs)>([](auto handle, auto...) { real.engine.start(handle, 0); })}},
    {"release-in-callback", {tellRunning, returnIf<0, ENGINE(handleRelease)>(isRunning)}},
    {"job-user-data",
     {instead<ENGINE(pushOutputs)>([](auto handle, auto flags, auto uids, auto count, auto jobUserData) {
         if (!memory.jobUserData) memory.jobUserData = jobUserData;
         return real.engine.pushOutputs(handle, flags, uids, count, memory.jobUserData);
     })}},
    {"uids-copied",
     {instead<ENGINE(pushOutputs)>([](auto, auto, auto uids, auto, auto) {
          memory.borrowedUids = uids;
          return 0u;
      }),
      before<ENGINE(start)>([](auto handle, auto) {
          real.engine.pushOutputs(handle, SubstancePushOutputUids, memory.borrowedUids, 1, nullptr);
      })}},
    {"unknown-outputs",
     {returnIf<1, ENGINE(pushOutputs)>([](auto, auto, auto, auto count, auto) { return count > 1; })}},
    {"output-hints", {instead<ENGINE(pushOutputs)>([](auto handle, auto, auto... others) {
         return real.engine.pushOutputs(handle, SubstancePushOutputUids, others...);
     })}},
    {"input-hints", {instead<ENGINE(pushSetInput)>([](auto handle, auto, auto... others) {
         return real.engine.pushSetInput(handle, SubstancePushInput, others...);
     })}},
    {"values-of-the-push",
     {instead<ENGINE(pushOutputs)>([](auto, auto, auto uids, auto count, auto) { // asks when it starts
          memory.uids.assign(uids, uids + count);
          return 0u;
      }),
      before<ENGINE(start)>([](auto handle, auto) {
          real.engine.pushOutputs(handle, SubstancePushOutputUids, memory.uids.data(),
                                  static_cast<unsigned int>(memory.uids.size()), nullptr);
      })}},
    {"empty-start",
     {before<ENGINE(pushOutputs)>([](auto...) { memory.isPushed = true; }),
      returnIf<1, ENGINE(start)>([](auto...) { return !std::exchange(memory.isPushed, false); })}},
    {"queue-empties", {afterSuccess<ENGINE(start)>([](auto handle, auto) {
         SubstanceOutputDesc desc{};
         real.engine.getOutputDesc(handle, 0, &desc);
         real.engine.pushOutputs(handle, SubstancePushOutputUids, &desc.uid, 1, nullptr);
     })}},
    {"repeatable", {afterSuccess<ENGINE(getOutputs)>([](auto, auto, auto, auto, auto texture) {
         *static_cast<unsigned char*>(texture->buffer) = ++memory.counter;
     })}},
    {"value-shows", {doNothing<ENGINE(pushSetInput)>()}},
    {"defaults",
     {afterSuccess<ENGINE(handleInit)>([](auto handle, auto...) { setFloats(*handle, 0.123f); })}},
    {"values-persist", {afterSuccess<ENGINE(start)>([](auto handle, auto) { setFloats(handle, 0.5f); })}},
    {"value-read-at-once", deferInputs<false>()},
    {"wrong-type", {alwaysSucceed<ENGINE(pushSetInput)>()}},
    {"image-shows", {doNothing<ENGINE(pushSetInput)>()}},
    {"image-read-at-once", deferInputs<true>()},
    {"null-image", {returnIf<0, ENGINE(pushSetInput)>([](auto, auto, auto, auto type, auto value, auto) {
         return type == SubstanceInputImage &&
                (!value || !static_cast<const SubstanceTextureInput*>(value)->pixels);
     })}},
    {"fetch-once",
     {instead<ENGINE(getOutputs)>([](auto handle, auto flags, auto index, auto count, auto texture) {
          const unsigned int status = real.engine.getOutputs(handle, flags, index, count, texture);
          if (status == 0) memory.texture = *texture;
          *texture = memory.texture;
          return memory.texture.buffer ? 0 : status;
      }),
      before<ENGINE(memoryFree)>([](auto...) { memory.texture = {}; })}},
    {"fetch-in-callback", {tellRunning, returnIf<1, ENGINE(getOutputs)>(isRunning)}},
    {"unfetched",
     {returnIf<0, ENGINE(start)>([](auto...) { return std::exchange(memory.isUnfetched, true); }),
      before<ENGINE(getOutputs)>([](auto...) { memory.isUnfetched = false; })}},
    {"outlives-handle",
     {afterSuccess<ENGINE(getOutputs)>(
          [](auto, auto, auto, auto, auto texture) { memory.buffers.insert(texture->buffer); }),
      before<ENGINE(memoryFree)>([](auto, auto buffer) { memory.buffers.erase(buffer); }),
      before<ENGINE(handleRelease)>([](auto) {
          for (void* const buffer : memory.buffers) std::memset(buffer, 0, 4);
      })}},
    {"outlives-context",
     {afterSuccess<ENGINE(contextInit)>([](auto context, auto) { memory.endedContexts.erase(*context); }),
      before<ENGINE(contextRelease)>([](auto context) { memory.endedContexts.insert(context); }),
      complainIf<ENGINE(memoryFree)>(
          [](auto context, auto) { return memory.endedContexts.count(context) > 0; })}},
    {"free-anywhere", {rememberThread, complainIf<ENGINE(memoryFree)>(isForeignThread)}},
};

class Mutations : public testing::Test {
protected:
    const Packages packages{readFile(KVSUBSTANCE_OWN_ENGINE "/stripes.xml"),
                            readFile(KVSUBSTANCE_OWN_ENGINE "/varnish.xml")};
};

TEST_F(Mutations, AreCaught) {
    std::set<std::string> judged;
    for (const auto& [clause, edits] : mutations) {
        memory = Memory();
        Interface broken = real;
        for (const Edit& edit : edits) edit(broken);
        const Verdict verdict = judge(clause, broken, packages);
        EXPECT_EQ(verdict.judgement, Judgement::Broken) << clause << " " << verdict.observed;
        EXPECT_EQ(verdict.observed.rfind("expected ", 0), 0u) << clause << " " << verdict.observed;
        judged.insert(clause);
    }
    for (const Clause& clause : clauses()) EXPECT_EQ(judged.count(clause.name), 1u) << clause.name;
}

// Only the bottom, twice the bottom, and a bottom without anything.
TEST_F(Mutations, WhatCannotBeJudgedIsNotJudged) {
    const std::string empty =
        "<sbsdescription asmuid='1'><graphs><graph><outputs><output uid='1'/></outputs></graph></graphs>"
        "</sbsdescription>";
    const std::string withoutTop = "connect-order connect-removes connect-shows connect-refusals fuse-first "
                                   "fuse-drives fuse-types image-shows image-read-at-once null-image ";
    const std::pair<Packages, std::string> cases[] = {
        {packages, ""},
        {{packages.bottom, ""}, withoutTop},
        {{packages.bottom, packages.bottom}, withoutTop},
        {{empty, ""},
         "connect-order connect-removes connect-shows connect-refusals select fuse-first fuse-drives "
         "fuse-types assembly-copied engine-handles any-thread job-user-data input-hints values-of-the-push "
         "value-shows defaults values-persist value-read-at-once wrong-type image-shows image-read-at-once "
         "null-image fetch-once fetch-in-callback unfetched outlives-handle outlives-context "
         "free-anywhere "}};
    for (const auto& [given, expected] : cases) {
        std::string notJudged;
        for (const Clause& clause : clauses()) {
            const Verdict verdict = judge(clause.name, real, given);
            EXPECT_NE(verdict.judgement, Judgement::Broken) << clause.name << " " << verdict.observed;
            if (verdict.judgement == Judgement::NotJudged) notJudged += clause.name + std::string(" ");
        }
        EXPECT_EQ(notJudged, expected);
    }
}

} // namespace
} // namespace kvSubstance::conformance
