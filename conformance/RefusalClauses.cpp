#include "conformance/Clauses.h"
#include "conformance/Findings.h"
#include "conformance/Recorder.h"

#include <cstddef>

namespace kvSubstance::conformance {

namespace {

void linkerVersion(Trial& trial) {
    const unsigned int refused[][2] = {{SubstanceLinkerApiVersion + 1, SubstanceLinkerEngineId},
                                       {SubstanceLinkerApiVersion, SubstanceLinkerEngineId + 1},
                                       {0, 0}};
    for (const auto& [version, engineId] : refused) {
        int place = 0;
        auto* context = reinterpret_cast<SubstanceLinkerContext*>(&place);
        expectRefusal(trial.linker.contextInit(&context, version, engineId),
                      "a linker context of another kind");
        expect(context == nullptr, "a null pointer from a refused substanceLinkerContextInit", "another");
    }
}

void linkerNulls(Trial& trial) {
    const Interface::Linker& linker = trial.linker;
    Linking linking(linker);
    SubstanceLinkerHandle* handle = linking.handle();
    const unsigned char* data = nullptr;
    size_t size = 1;
    expectRefusal(linker.contextInit(nullptr, SubstanceLinkerApiVersion, SubstanceLinkerEngineId),
                  "substanceLinkerContextInit without a place");
    expectRefusal(linker.contextSetCallback(nullptr, SubstanceLinkerCallbackText, nullptr),
                  "substanceLinkerContextSetCallback of null");
    expectRefusal(linker.contextRelease(nullptr), "substanceLinkerContextRelease of null");
    expectRefusal(linker.handleInit(nullptr, linking.context()), "substanceLinkerHandleInit without a place");
    expectRefusal(linker.handleInit(&handle, nullptr), "substanceLinkerHandleInit in null");
    expect(handle == nullptr, "a null pointer from a refused substanceLinkerHandleInit", "another");
    expectRefusal(linker.push(nullptr, "x", 1), "a push into null");
    expectRefusal(linker.setOutputFormat(nullptr, 1, 0, 1), "substanceLinkerHandleSetOutputFormat of null");
    expectRefusal(linker.connect(nullptr, 1, 2), "substanceLinkerConnectOutputToInput of null");
    expectRefusal(linker.selectOutputs(nullptr, 0, 1), "substanceLinkerHandleSelectOutputs of null");
    expectRefusal(linker.fuse(nullptr, 1, 2), "substanceLinkerFuseInputs of null");
    expectRefusal(linker.link(nullptr, &data, &size), "substanceLinkerHandleLink of null");
    expect(size == 0, "size 0 from a refused substanceLinkerHandleLink", size);
    expectRefusal(linker.handleRelease(nullptr), "substanceLinkerHandleRelease of null");
    linking.push(trial.bottom().package);
    expectRefusal(linker.link(linking.handle(), nullptr, &size), "linking without a place for the bytes");
    expectRefusal(linker.link(linking.handle(), &data, nullptr), "linking without a place for the size");
    expectRefusal(linker.push(linking.handle(), nullptr, 0), "a push of null");
}

void engineNulls(Trial& trial) {
    const Interface::Engine& engine = trial.engine;
    const std::string assembly = trial.link({&trial.bottom()});
    const auto* const bytes = reinterpret_cast<const unsigned char*>(assembly.data());
    const auto running = trial.run(assembly);
    SubstanceContext* const context = running->context.get();
    SubstanceHandle* const handle = running->handle.get();
    SubstanceDevice device{nullptr};
    SubstanceContext* noContext = context;
    SubstanceHandle* noHandle = handle;
    SubstanceDataDesc counts{1, 1};
    SubstanceInputDesc input{1, 1, 1};
    SubstanceOutputDesc output{1, 1};
    SubstanceTexture texture{};
    texture.buffer = &texture;
    const unsigned int uid = running->handle.outputs().at(0).uid;
    const float value = 0;

    expectRefusal(engine.contextInit(nullptr, &device), "substanceContextInit without a place");
    expectRefusal(engine.contextInit(&noContext, nullptr), "substanceContextInit without a device");
    expect(noContext == nullptr, "a null pointer from a refused substanceContextInit", "another");
    expectRefusal(engine.contextSetCallback(nullptr, SubstanceCallbackOutputCompleted, completionRecorder()),
                  "substanceContextSetCallback of null");
    expectRefusal(engine.contextRelease(nullptr), "substanceContextRelease of null");
    expectRefusal(engine.memoryFree(context, nullptr), "substanceContextMemoryFree of a null buffer");
    expectRefusal(engine.memoryFree(nullptr, nullptr), "substanceContextMemoryFree in null");
    expectRefusal(engine.handleInit(nullptr, context, bytes, assembly.size(), 0),
                  "substanceHandleInit without a place");
    expectRefusal(engine.handleInit(&noHandle, nullptr, bytes, assembly.size(), 0),
                  "substanceHandleInit in null");
    expect(noHandle == nullptr, "a null pointer from a refused substanceHandleInit", "another");
    expectRefusal(engine.handleInit(&noHandle, context, nullptr, 0, 0), "substanceHandleInit of no bytes");
    expectRefusal(engine.getDesc(nullptr, &counts), "substanceHandleGetDesc of null");
    expect(counts.inputsCount == 0 && counts.outputsCount == 0, "zeros from a refused substanceHandleGetDesc",
           counts.inputsCount);
    expectRefusal(engine.getDesc(handle, nullptr), "substanceHandleGetDesc without a place");
    expectRefusal(engine.getInputDesc(nullptr, 0, &input), "substanceHandleGetInputDesc of null");
    expectRefusal(engine.getInputDesc(handle, 0, nullptr), "substanceHandleGetInputDesc without a place");
    expectRefusal(engine.getOutputDesc(nullptr, 0, &output), "substanceHandleGetOutputDesc of null");
    expectRefusal(engine.getOutputDesc(handle, 0, nullptr), "substanceHandleGetOutputDesc without a place");
    expectRefusal(engine.getOutputs(nullptr, 0, 0, 1, &texture), "substanceHandleGetOutputs of null");
    expect(texture.buffer == nullptr, "no buffer from a refused substanceHandleGetOutputs", "one");
    expectRefusal(engine.getOutputs(handle, 0, 0, 1, nullptr), "substanceHandleGetOutputs without a place");
    expect(engine.getParentContext(nullptr) == nullptr, "no context of null", "one");
    expectRefusal(engine.pushSetInput(nullptr, SubstancePushInput, 0, SubstanceInputFloat, &value, 0),
                  "substanceHandlePushSetInput of null");
    for (const SubstanceInputDesc& each : running->handle.inputs())
        if (each.type != SubstanceInputImage)
            expectRefusal(engine.pushSetInput(handle, SubstancePushInput, each.index, each.type, nullptr, 0),
                          "a number that is null");
    expectRefusal(engine.pushOutputs(nullptr, SubstancePushOutputUids, &uid, 1, nullptr),
                  "substanceHandlePushOutputs of null");
    expectRefusal(engine.pushOutputs(handle, SubstancePushOutputUids, nullptr, 1, nullptr),
                  "a push of outputs that is null");
    expectRefusal(engine.start(nullptr, 0), "substanceHandleStart of null");
    expectRefusal(engine.handleRelease(nullptr), "substanceHandleRelease of null");
}

void callbackKinds(Trial& trial) {
    const Linking linking(trial.linker);
    const EngineContext context(trial.engine);
    for (const unsigned int kind : {0u, 1u, 4u, 99u}) {
        expectRefusal(trial.linker.contextSetCallback(linking.context(), kind, nullptr),
                      "an unknown kind of linker callback");
        expectRefusal(trial.engine.contextSetCallback(context.get(), kind, nullptr),
                      "an unknown kind of engine callback");
    }
}

// Cut so that more than trailing blanks are lost.
std::vector<std::string> broken(const std::string& whole) {
    std::vector<std::string> texts{"x", std::string(64, '\xff'), std::string(256, '\0')};
    const std::size_t size = whole.find_last_not_of(" \t\r\n") + 1;
    for (std::size_t sixteenth = 0; sixteenth < 16; ++sixteenth)
        texts.push_back(whole.substr(0, size * sixteenth / 16));
    return texts;
}

void brokenPackages(Trial& trial) {
    for (const std::string& bytes : broken(trial.bottom().package)) {
        Linking linking(trial.linker);
        takeDeliveries();
        expectRefusal(linking.tryToPush(bytes), "a push of a cut package");
        const auto deliveries = takeDeliveries();
        expect(deliveries.size() == 2, "both callbacks for a package that cannot be read", deliveries.size());
        for (const Delivery& delivery : deliveries)
            expect(delivery.content.empty(), "nothing in them", delivery.content.size());
    }
}

void brokenAssemblies(Trial& trial) {
    const std::string assembly = trial.link({&trial.bottom()});
    const EngineContext context(trial.engine);
    const auto init = [&](const std::string& bytes, SubstanceHandle** handle) {
        return trial.engine.handleInit(handle, context.get(),
                                       reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size(), 0);
    };
    for (const std::string& bytes : broken(assembly)) {
        int place = 0;
        auto* handle = reinterpret_cast<SubstanceHandle*>(&place);
        expectRefusal(init(bytes, &handle), "an assembly that is cut");
        expect(handle == nullptr, "a null pointer from a refused substanceHandleInit", "another");
    }
    // Changed bytes may mean something; then the handle has to be one.
    for (std::size_t i = 0; i < 256; ++i) {
        std::string bytes = assembly;
        char& changed = bytes[i * bytes.size() / 256];
        changed = static_cast<char>(changed ^ (i % 3 == 0 ? 0xff : 1 << i % 8));
        SubstanceHandle* handle = nullptr;
        const unsigned int status = init(bytes, &handle);
        expect((status == 0) == (handle != nullptr), "a handle where the status is 0 and none elsewhere",
               status);
        SubstanceDataDesc desc{};
        if (handle) {
            expectSuccess(trial.engine.getDesc(handle, &desc), "substanceHandleGetDesc");
            expectSuccess(trial.engine.handleRelease(handle), "substanceHandleRelease");
        }
    }
}

} // namespace

std::vector<Entry> refusalClauses() {
    return {
        {{"linker-version", "The linker refuses other API versions and engine ids, and gives null."},
         linkerVersion},
        {{"linker-nulls", "The linker refuses null contexts, handles and pointers, and sets out-parameters."},
         linkerNulls},
        {{"engine-nulls", "The engine refuses null contexts, handles and pointers, and sets out-parameters."},
         engineNulls},
        {{"callback-kinds", "Unknown kinds of callbacks are refused."}, callbackKinds},
        {{"broken-packages", "What is no whole package is refused, and both callbacks come, empty."},
         brokenPackages},
        {{"broken-assemblies",
          "What is no whole assembly is refused with a null handle; changed bytes do no harm."},
         brokenAssemblies},
    };
}

} // namespace kvSubstance::conformance
