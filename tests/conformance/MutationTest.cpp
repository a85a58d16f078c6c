// Each clause is broken on purpose, and caught.
#include "conformance/Conformance.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>
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

// Does its work, and says that it succeeded.
template <auto Group, auto Function>
void alwaysSucceed(Interface& broken) {
    (broken.*Group).*Function = [](auto... arguments) {
        ((real.*Group).*Function)(arguments...);
        return 0u;
    };
}

// Says that it succeeded, and does nothing.
template <auto Group, auto Function>
void doNothing(Interface& broken) {
    (broken.*Group).*Function = [](auto...) { return 0u; };
}

#define LINKER(function) &Interface::linker, &Interface::Linker::function
#define ENGINE(function) &Interface::engine, &Interface::Engine::function

void rememberThread(Interface& broken) {
    broken.engine.handleInit = [](auto... arguments) {
        memory.thread = std::this_thread::get_id();
        return real.engine.handleInit(arguments...);
    };
}

// The linker's callbacks with other arguments.
template <int IndexOffset, bool NamesHandle>
void otherDelivery(Interface& broken) {
    broken.linker.contextSetCallback = [](auto context, auto kind, auto callback) {
        if (kind != SubstanceLinkerCallbackText)
            return real.linker.contextSetCallback(context, kind, callback);
        memory.text = reinterpret_cast<SubstanceLinkerTextCallback>(callback);
        const SubstanceLinkerTextCallback shim = [](auto handle, auto index, auto text) {
            memory.text(NamesHandle ? handle : nullptr, index + IndexOffset, text);
        };
        return real.linker.contextSetCallback(context, kind, reinterpret_cast<SubstanceLinkerCallback>(shim));
    };
}

// Waits with values until outputs are pushed.
void deferInputs(Interface& broken, bool isImage) {
    static int (*wants)(int) = nullptr;
    wants = isImage ? [](int type) { return int(type == SubstanceInputImage); }
                    : [](int type) { return int(type <= SubstanceInputFloat4); };
    broken.engine.pushSetInput = [](auto handle, auto flags, auto index, auto type, auto value,
                                    auto reserved) {
        if (!wants(type)) return real.engine.pushSetInput(handle, flags, index, type, value, reserved);
        Memory::Input input{index, type, value, {}};
        if (type == SubstanceInputImage) input.image = *static_cast<const SubstanceTextureInput*>(value);
        memory.inputs.push_back(input);
        return 0u;
    };
    broken.engine.pushOutputs = [](auto handle, auto... others) {
        for (const auto& input : memory.inputs)
            real.engine.pushSetInput(handle, 0, input.index, input.type,
                                     input.type == SubstanceInputImage ? &input.image : input.value, 0);
        memory.inputs.clear();
        return real.engine.pushOutputs(handle, others...);
    };
}

void setFloats(SubstanceHandle* handle, float value) {
    const float values[] = {value, value, value, value};
    SubstanceInputDesc desc{};
    for (unsigned int i = 0; real.engine.getInputDesc(handle, i, &desc) == 0; ++i)
        if (desc.type <= SubstanceInputFloat4) real.engine.pushSetInput(handle, 0, i, desc.type, values, 0);
}

void tellRunning(Interface& broken) {
    broken.engine.start = [](auto... arguments) {
        memory.isRunning = true;
        const unsigned int status = real.engine.start(arguments...);
        memory.isRunning = false;
        return status;
    };
}

struct Mutation {
    const char* clause;
    void (*apply)(Interface& broken);
};

// The example's engine and linker, with a fault each.
const Mutation mutations[] = {
    {"linker-version", alwaysSucceed<LINKER(contextInit)>},
    {"linker-nulls", alwaysSucceed<LINKER(handleRelease)>},
    {"engine-nulls", alwaysSucceed<ENGINE(start)>},
    {"callback-kinds", alwaysSucceed<LINKER(contextSetCallback)>},
    {"callback-kinds", alwaysSucceed<ENGINE(contextSetCallback)>},
    {"broken-packages", alwaysSucceed<LINKER(push)>},
    {"broken-assemblies", alwaysSucceed<ENGINE(handleInit)>},
    {"delivery-in-push",
     [](Interface& broken) {
         broken.linker.push = [](auto... arguments) {
             unsigned int status = 1;
             std::thread([&] { status = real.linker.push(arguments...); }).join();
             return status;
         };
     }},
    {"delivery-index", otherDelivery<1, true>},
    {"delivery-handle", otherDelivery<0, false>},
    {"delivery-removal",
     [](Interface& broken) {
         broken.linker.contextSetCallback = [](auto context, auto kind, auto callback) {
             return callback ? real.linker.contextSetCallback(context, kind, callback) : 0u;
         };
     }},
    {"description-matches",
     [](Interface& broken) {
         broken.engine.getInputDesc = [](auto handle, auto index, auto desc) {
             const unsigned int status = real.engine.getInputDesc(handle, index, desc);
             ++desc->uid;
             return status;
         };
     }},
    {"bare-assembly",
     [](Interface& broken) {
         broken.linker.push = [](auto handle, auto data, auto size) {
             return size > 0 && *static_cast<const char*>(data) == 'o' ? 1u
                                                                       : real.linker.push(handle, data, size);
         };
     }},
    {"push-copies",
     [](Interface& broken) {
         broken.linker.push = [](auto handle, auto data, auto size) {
             memory.borrowed[handle] = {data, std::string(static_cast<const char*>(data), size)};
             return real.linker.push(handle, data, size);
         };
         broken.linker.link = [](auto handle, auto data, auto size) {
             const auto& [pointer, copy] = memory.borrowed[handle];
             return std::memcmp(pointer, copy.data(), copy.size()) ? 1u
                                                                   : real.linker.link(handle, data, size);
         };
     }},
    {"failed-push", alwaysSucceed<LINKER(link)>},
    {"empty-link",
     [](Interface& broken) {
         broken.linker.link = [](auto handle, auto data, auto size) {
             const unsigned int status = real.linker.link(handle, data, size);
             if (status != 0) *size = 1;
             return status;
         };
     }},
    {"link-result",
     [](Interface& broken) {
         broken.linker.link = [](auto handle, auto data, auto size) {
             const unsigned int status = real.linker.link(handle, data, size);
             *data = static_cast<unsigned char*>(std::memcpy(memory.linked, *data, *size));
             return status;
         };
     }},
    {"linker-handles",
     [](Interface& broken) {
         broken.linker.link = [](auto handle, auto data, auto size) { // always the first result
             const unsigned int status = real.linker.link(handle, data, size);
             if (memory.linkedSize == 0) std::memcpy(memory.linked, *data, memory.linkedSize = *size);
             *data = reinterpret_cast<unsigned char*>(memory.linked);
             *size = memory.linkedSize;
             return status;
         };
     }},
    {"linker-context-release",
     [](Interface& broken) {
         broken.linker.handleInit = [](auto... arguments) {
             ++memory.handles;
             return real.linker.handleInit(arguments...);
         };
         broken.linker.handleRelease = [](auto handle) {
             --memory.handles;
             return real.linker.handleRelease(handle);
         };
         broken.linker.contextRelease = [](auto context) {
             real.linker.contextRelease(context);
             return memory.handles > 0 ? 1u : 0u;
         };
     }},
    {"format", doNothing<LINKER(setOutputFormat)>},
    {"mipmaps",
     [](Interface& broken) {
         broken.linker.setOutputFormat = [](auto handle, auto uid, auto format, auto mipmaps) {
             return real.linker.setOutputFormat(handle, uid, format, mipmaps + 1);
         };
     }},
    {"format-refusals", alwaysSucceed<LINKER(setOutputFormat)>},
    {"connect-order",
     [](Interface& broken) {
         broken.linker.connect = [](auto handle, auto input, auto output) {
             return real.linker.connect(handle, output, input);
         };
     }},
    {"connect-removes", doNothing<LINKER(connect)>},
    {"connect-shows", doNothing<LINKER(connect)>},
    {"connect-refusals", alwaysSucceed<LINKER(connect)>},
    {"select", [](Interface& broken) { broken.linker.selectOutputs = [](auto...) { return 1u; }; }},
    {"fuse-first",
     [](Interface& broken) {
         broken.linker.fuse = [](auto handle, auto first, auto second) {
             return real.linker.fuse(handle, second, first);
         };
     }},
    {"fuse-drives", doNothing<LINKER(fuse)>},
    {"fuse-types", alwaysSucceed<LINKER(fuse)>},
    {"assembly-copied",
     [](Interface& broken) {
         broken.engine.handleInit = [](auto handle, auto context, auto bytes, auto size, auto flags) {
             const unsigned int status = real.engine.handleInit(handle, context, bytes, size, flags);
             memory.borrowed[*handle] = {bytes, std::string(bytes, bytes + size)};
             return status;
         };
         broken.engine.start = [](auto handle, auto flags) {
             const auto& [pointer, copy] = memory.borrowed[handle];
             return std::memcmp(pointer, copy.data(), copy.size()) ? 1u : real.engine.start(handle, flags);
         };
     }},
    {"unknown-indices", alwaysSucceed<ENGINE(getInputDesc)>},
    {"unknown-indices", alwaysSucceed<ENGINE(pushSetInput)>},
    {"parent-context",
     [](Interface& broken) {
         broken.engine.getParentContext = [](auto) { return static_cast<SubstanceContext*>(nullptr); };
     }},
    {"engine-handles",
     [](Interface& broken) {
         broken.engine.handleInit = [](auto handle, auto... others) {
             const unsigned int status = real.engine.handleInit(handle, others...);
             memory.engineHandles.insert(*handle);
             return status;
         };
         broken.engine.handleRelease = [](auto handle) {
             memory.engineHandles.erase(handle);
             return real.engine.handleRelease(handle);
         };
         broken.engine.pushSetInput = [](auto, auto... others) {
             unsigned int status = 0;
             for (auto* const each : memory.engineHandles)
                 status |= real.engine.pushSetInput(each, others...);
             return status;
         };
     }},
    {"any-thread",
     [](Interface& broken) {
         rememberThread(broken);
         broken.engine.start = [](auto... arguments) {
             return memory.thread == std::this_thread::get_id() ? real.engine.start(arguments...) : 1u;
         };
     }},
    {"completion-once",
     [](Interface& broken) {
         broken.engine.contextSetCallback = [](auto context, auto kind, auto callback) {
             memory.completed = reinterpret_cast<SubstanceOutputCompletedCallback>(callback);
             const SubstanceOutputCompletedCallback twice = [](auto... arguments) {
                 memory.completed(arguments...);
                 memory.completed(arguments...);
             };
             return real.engine.contextSetCallback(context, kind, reinterpret_cast<SubstanceCallback>(twice));
         };
     }},
    {"completion-in-start",
     [](Interface& broken) {
         broken.engine.pushOutputs = [](auto handle, auto... others) {
             const unsigned int status = real.engine.pushOutputs(handle, others...);
             return status != 0 ? status : real.engine.start(handle, 0);
         };
     }},
    {"release-in-callback",
     [](Interface& broken) {
         tellRunning(broken);
         broken.engine.handleRelease = [](auto handle) {
             return memory.isRunning ? 0u : real.engine.handleRelease(handle);
         };
     }},
    {"job-user-data",
     [](Interface& broken) {
         broken.engine.pushOutputs = [](auto handle, auto flags, auto uids, auto count, auto jobUserData) {
             if (!memory.jobUserData) memory.jobUserData = jobUserData;
             return real.engine.pushOutputs(handle, flags, uids, count, memory.jobUserData);
         };
     }},
    {"uids-copied",
     [](Interface& broken) {
         broken.engine.pushOutputs = [](auto, auto, auto uids, auto, auto) {
             memory.borrowedUids = uids;
             return 0u;
         };
         broken.engine.start = [](auto handle, auto flags) {
             real.engine.pushOutputs(handle, SubstancePushOutputUids, memory.borrowedUids, 1, nullptr);
             return real.engine.start(handle, flags);
         };
     }},
    {"unknown-outputs",
     [](Interface& broken) {
         broken.engine.pushOutputs = [](auto handle, auto flags, auto uids, auto count, auto jobUserData) {
             return count > 1 ? 1u : real.engine.pushOutputs(handle, flags, uids, count, jobUserData);
         };
     }},
    {"output-hints",
     [](Interface& broken) {
         broken.engine.pushOutputs = [](auto handle, auto, auto... others) {
             return real.engine.pushOutputs(handle, SubstancePushOutputUids, others...);
         };
     }},
    {"input-hints",
     [](Interface& broken) {
         broken.engine.pushSetInput = [](auto handle, auto, auto... others) {
             return real.engine.pushSetInput(handle, SubstancePushInput, others...);
         };
     }},
    {"values-of-the-push",
     [](Interface& broken) { // asks the engine when it starts
         broken.engine.pushOutputs = [](auto, auto, auto uids, auto count, auto) {
             memory.uids.assign(uids, uids + count);
             return 0u;
         };
         broken.engine.start = [](auto handle, auto flags) {
             real.engine.pushOutputs(handle, SubstancePushOutputUids, memory.uids.data(),
                                     static_cast<unsigned int>(memory.uids.size()), nullptr);
             return real.engine.start(handle, flags);
         };
     }},
    {"empty-start",
     [](Interface& broken) {
         broken.engine.pushOutputs = [](auto... arguments) {
             memory.isPushed = true;
             return real.engine.pushOutputs(arguments...);
         };
         broken.engine.start = [](auto... arguments) {
             return std::exchange(memory.isPushed, false) ? real.engine.start(arguments...) : 1u;
         };
     }},
    {"queue-empties",
     [](Interface& broken) {
         broken.engine.start = [](auto handle, auto flags) {
             const unsigned int status = real.engine.start(handle, flags);
             SubstanceOutputDesc desc{};
             real.engine.getOutputDesc(handle, 0, &desc);
             real.engine.pushOutputs(handle, SubstancePushOutputUids, &desc.uid, 1, nullptr);
             return status;
         };
     }},
    {"repeatable",
     [](Interface& broken) {
         broken.engine.getOutputs = [](auto handle, auto flags, auto index, auto count, auto texture) {
             const unsigned int status = real.engine.getOutputs(handle, flags, index, count, texture);
             if (status == 0) *static_cast<unsigned char*>(texture->buffer) = ++memory.counter;
             return status;
         };
     }},
    {"value-shows", doNothing<ENGINE(pushSetInput)>},
    {"defaults",
     [](Interface& broken) {
         broken.engine.handleInit = [](auto handle, auto... others) {
             const unsigned int status = real.engine.handleInit(handle, others...);
             setFloats(*handle, 0.123f);
             return status;
         };
     }},
    {"values-persist",
     [](Interface& broken) {
         broken.engine.start = [](auto handle, auto flags) {
             const unsigned int status = real.engine.start(handle, flags);
             setFloats(handle, 0.5f);
             return status;
         };
     }},
    {"value-read-at-once", [](Interface& broken) { deferInputs(broken, false); }},
    {"wrong-type", alwaysSucceed<ENGINE(pushSetInput)>},
    {"image-shows", doNothing<ENGINE(pushSetInput)>},
    {"image-read-at-once", [](Interface& broken) { deferInputs(broken, true); }},
    {"null-image",
     [](Interface& broken) {
         broken.engine.pushSetInput = [](auto handle, auto flags, auto index, auto type, auto value,
                                         auto zero) {
             const bool isNone = type == SubstanceInputImage &&
                                 (!value || !static_cast<const SubstanceTextureInput*>(value)->pixels);
             return isNone ? 0u : real.engine.pushSetInput(handle, flags, index, type, value, zero);
         };
     }},
    {"fetch-once",
     [](Interface& broken) {
         broken.engine.getOutputs = [](auto handle, auto flags, auto index, auto count, auto texture) {
             const unsigned int status = real.engine.getOutputs(handle, flags, index, count, texture);
             if (status == 0) memory.texture = *texture;
             *texture = memory.texture;
             return memory.texture.buffer ? 0 : status;
         };
         broken.engine.memoryFree = [](auto... arguments) {
             memory.texture = {};
             return real.engine.memoryFree(arguments...);
         };
     }},
    {"fetch-in-callback",
     [](Interface& broken) {
         tellRunning(broken);
         broken.engine.getOutputs = [](auto... arguments) {
             return memory.isRunning ? 1u : real.engine.getOutputs(arguments...);
         };
     }},
    {"unfetched",
     [](Interface& broken) {
         broken.engine.start = [](auto... arguments) {
             return std::exchange(memory.isUnfetched, true) ? 0u : real.engine.start(arguments...);
         };
         broken.engine.getOutputs = [](auto... arguments) {
             memory.isUnfetched = false;
             return real.engine.getOutputs(arguments...);
         };
     }},
    {"outlives-handle",
     [](Interface& broken) {
         broken.engine.getOutputs = [](auto handle, auto flags, auto index, auto count, auto texture) {
             const unsigned int status = real.engine.getOutputs(handle, flags, index, count, texture);
             memory.buffers.insert(texture->buffer);
             return status;
         };
         broken.engine.memoryFree = [](auto context, auto buffer) {
             memory.buffers.erase(buffer);
             return real.engine.memoryFree(context, buffer);
         };
         broken.engine.handleRelease = [](auto handle) {
             for (void* const buffer : memory.buffers) std::memset(buffer, 0, 4);
             return real.engine.handleRelease(handle);
         };
     }},
    {"outlives-context",
     [](Interface& broken) {
         broken.engine.contextInit = [](auto context, auto device) {
             const unsigned int status = real.engine.contextInit(context, device);
             memory.endedContexts.erase(*context);
             return status;
         };
         broken.engine.contextRelease = [](auto context) {
             memory.endedContexts.insert(context);
             return real.engine.contextRelease(context);
         };
         broken.engine.memoryFree = [](auto context, auto buffer) {
             const bool isEnded = memory.endedContexts.count(context) > 0;
             return real.engine.memoryFree(context, buffer) | (isEnded ? 1u : 0u);
         };
     }},
    {"free-anywhere",
     [](Interface& broken) {
         rememberThread(broken);
         broken.engine.memoryFree = [](auto... arguments) {
             const bool isForeign = memory.thread != std::this_thread::get_id();
             return real.engine.memoryFree(arguments...) | (isForeign ? 1u : 0u);
         };
     }},
};

std::string contentOf(const std::string& name) {
    std::ifstream file(KVSUBSTANCE_OWN_ENGINE "/" + name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

class Mutations : public testing::Test {
protected:
    const Packages packages{contentOf("stripes.xml"), contentOf("varnish.xml")};
};

TEST_F(Mutations, AreCaught) {
    std::set<std::string> judged;
    for (const Mutation& mutation : mutations) {
        memory = Memory();
        Interface broken = real;
        mutation.apply(broken);
        const Verdict verdict = judge(mutation.clause, broken, packages);
        EXPECT_EQ(verdict.judgement, Judgement::Broken) << mutation.clause << " " << verdict.observed;
        EXPECT_EQ(verdict.observed.rfind("expected ", 0), 0u) << mutation.clause << " " << verdict.observed;
        judged.insert(mutation.clause);
    }
    for (const Clause& clause : clauses()) EXPECT_EQ(judged.count(clause.name), 1u) << clause.name;
}

// Only the bottom, twice the bottom, and a bottom without anything.
TEST_F(Mutations, WhatCannotBeJudgedIsNotJudged) {
    const std::string empty =
        "<sbsdescription asmuid='1'><graphs><graph><outputs><output uid='1'/></outputs></graph></graphs>"
        "</sbsdescription>";
    const struct {
        Packages packages;
        std::set<std::string> notJudged;
    } cases[] = {
        {packages, {}},
        {{packages.bottom, ""},
         {"connect-order", "connect-removes", "connect-shows", "connect-refusals", "fuse-first",
          "fuse-drives", "fuse-types", "image-shows", "image-read-at-once", "null-image"}},
        {{packages.bottom, packages.bottom},
         {"connect-order", "connect-removes", "connect-shows", "connect-refusals", "fuse-first",
          "fuse-drives", "fuse-types", "image-shows", "image-read-at-once", "null-image"}},
        {{empty, ""}, {"connect-order",
                       "connect-removes",
                       "connect-shows",
                       "connect-refusals",
                       "select",
                       "fuse-first",
                       "fuse-drives",
                       "fuse-types",
                       "assembly-copied",
                       "engine-handles",
                       "any-thread",
                       "job-user-data",
                       "input-hints",
                       "values-of-the-push",
                       "value-shows",
                       "defaults",
                       "values-persist",
                       "value-read-at-once",
                       "wrong-type",
                       "image-shows",
                       "image-read-at-once",
                       "null-image",
                       "fetch-once",
                       "fetch-in-callback",
                       "unfetched",
                       "outlives-handle",
                       "outlives-context",
                       "free-anywhere"}},
    };
    for (const auto& each : cases) {
        std::set<std::string> notJudged;
        for (const Clause& clause : clauses()) {
            const Verdict verdict = judge(clause.name, real, each.packages);
            EXPECT_NE(verdict.judgement, Judgement::Broken) << clause.name << " " << verdict.observed;
            if (verdict.judgement == Judgement::NotJudged) notJudged.insert(clause.name);
        }
        EXPECT_EQ(notJudged, each.notJudged) << "case " << &each - cases;
    }
}

} // namespace
} // namespace kvSubstance::conformance
