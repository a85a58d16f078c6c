#include "platform/linker.h"
#include "embedded/program/Assembly.h"
#include "embedded/program/Package.h"
#include "tests/embedded/program/ProgramText.h"
#include "tests/embedded/program/SamplePrograms.h"

#include <gtest/gtest.h>

namespace embedded {
namespace {

using Bytes = std::vector<unsigned char>;

// Two images, one of which is scaled by an input. Uids: resolution 1, amount 2; outputs 11 and 12.
Program bottom() {
    Program program;
    program.inputs = {makeInput(1, ValueType::Integer2, {9, 9}, SystemInput::Resolution),
                      makeInput(2, ValueType::Float, {0.5})};
    program.nodes = {makeNode("uniform"), makeNode("blur", {0})};
    for (ProgramNode& node : program.nodes) node.resolution = boundTo(0);
    parameter(program.nodes[1], "sigma") = boundTo(1);
    program.outputs = {{11, 0, 0, 1}, {12, 1, 0, 1}};
    return program;
}

// Blurs an image from outside. Uids: amount 22, resolution 21, image 23; output 31.
Program top() {
    Program program;
    program.inputs = {makeInput(22, ValueType::Float, {0.25}), makeInput(23, ValueType::Image),
                      makeInput(21, ValueType::Integer2, {7, 7}, SystemInput::Resolution)};
    program.nodes = {makeNode("imageInput"), makeNode("blur", {0})};
    for (ProgramNode& node : program.nodes) node.resolution = boundTo(2);
    parameter(program.nodes[0], "image") = boundTo(1);
    parameter(program.nodes[1], "sigma") = boundTo(0);
    program.outputs = {{31, 1, 0, 1}};
    return program;
}

std::string trace;

void onText(SubstanceLinkerHandle*, unsigned int index, const char* text) {
    trace += "text " + std::to_string(index) + " " + text + "\n";
}

void onBytes(SubstanceLinkerHandle*, unsigned int index, const unsigned char* bytes, size_t count) {
    const bool isAssembly = decodeAssembly(bytes, count).has_value();
    trace +=
        "bytes " + std::to_string(index) + (isAssembly ? " assembly" : " " + std::to_string(count)) + "\n";
}

class Linker : public testing::Test {
protected:
    void SetUp() override {
        trace.clear();
        ASSERT_EQ(substanceLinkerContextInit(&context, SubstanceLinkerApiVersion, SubstanceLinkerEngineId),
                  0u);
        ASSERT_EQ(substanceLinkerHandleInit(&handle, context), 0u);
    }

    // The handles go with it.
    void TearDown() override { EXPECT_EQ(substanceLinkerContextRelease(context), 0u); }

    void setCallbacks() {
        const auto set = [&](unsigned int kind, SubstanceLinkerCallback callback) {
            EXPECT_EQ(substanceLinkerContextSetCallback(context, kind, callback), 0u);
        };
        set(SubstanceLinkerCallbackText, reinterpret_cast<SubstanceLinkerCallback>(onText));
        set(SubstanceLinkerCallbackBytes, reinterpret_cast<SubstanceLinkerCallback>(onBytes));
    }

    unsigned int push(const Bytes& bytes) {
        return substanceLinkerHandlePushAssemblyMemory(handle, bytes.data(), bytes.size());
    }

    void push(const Program& program) { EXPECT_EQ(push(encodeAssembly(program)), 0u); }

    // "failed" when linking is refused.
    std::string link() {
        const unsigned char* data = reinterpret_cast<const unsigned char*>("");
        size_t size = 1;
        const bool linked = substanceLinkerHandleLink(handle, &data, &size) == 0;
        EXPECT_EQ(linked, data != nullptr);
        EXPECT_EQ(linked, size != 0);
        const auto program = decodeAssembly(data, size);
        EXPECT_EQ(linked, program.has_value());
        return program ? toText(*program) : "failed";
    }

    SubstanceLinkerContext* context = nullptr;
    SubstanceLinkerHandle* handle = nullptr;
};

TEST_F(Linker, NullAndUnknownCodesAreRefused) {
    const unsigned int refused[][2] = {{0x10000, 19}, {0x10001, 18}};
    for (const auto& [version, engine] : refused) {
        auto* none = context;
        EXPECT_NE(substanceLinkerContextInit(&none, version, engine), 0u);
        EXPECT_EQ(none, nullptr);
    }
    EXPECT_NE(substanceLinkerContextSetCallback(context, 4, nullptr), 0u);
    auto* out = handle;
    EXPECT_NE(substanceLinkerHandleInit(&out, nullptr), 0u);
    EXPECT_EQ(out, nullptr);
    push(bottom());
    const unsigned char* data = reinterpret_cast<const unsigned char*>("");
    size_t size = 1;
    EXPECT_NE(substanceLinkerHandleLink(nullptr, &data, &size), 0u);
    EXPECT_TRUE(data == nullptr && size == 0);
}

TEST_F(Linker, PushDeliversTextAndBytes) {
    setCallbacks();
    EXPECT_EQ(push(encodePackage({"<bottom/>", encodeAssembly(bottom())})), 0u);
    EXPECT_EQ(push(encodeAssembly(top())), 0u);
    EXPECT_EQ(trace, "text 0 <bottom/>\nbytes 0 assembly\ntext 1 \nbytes 1 assembly\n");
}

TEST_F(Linker, UnreadableDataSpoilsTheHandle) {
    setCallbacks();
    EXPECT_NE(push(encodePackage({"<text/>", {1, 2, 3}})), 0u);
    EXPECT_EQ(trace, "text 0 \nbytes 0 0\n");
    push(bottom());
    EXPECT_EQ(link(), "failed");
}

TEST_F(Linker, EarlierResultsStayValid) {
    EXPECT_EQ(link(), "failed") << "nothing was pushed";
    push(bottom());
    const unsigned char* first = nullptr;
    size_t size = 0;
    ASSERT_EQ(substanceLinkerHandleLink(handle, &first, &size), 0u);
    push(top());
    EXPECT_NE(link(), "failed");
    EXPECT_TRUE(decodeAssembly(first, size));
}

TEST_F(Linker, StackIsConnectedAndFused) {
    push(bottom());
    push(top());
    EXPECT_EQ(substanceLinkerConnectOutputToInput(handle, 23, 12), 0u);
    EXPECT_EQ(substanceLinkerHandleSelectOutputs(handle, 0, 11), 0u);
    EXPECT_EQ(substanceLinkerFuseInputs(handle, 1, 21), 0u);
    EXPECT_EQ(substanceLinkerHandleSetOutputFormat(handle, 31, 32, 4), 0u);
    EXPECT_EQ(substanceLinkerHandleSetOutputFormat(handle, 11, 66, 4000000000u), 0u);
    EXPECT_NE(substanceLinkerConnectOutputToInput(handle, 23, 11), 0u) << "fed already";
    EXPECT_NE(substanceLinkerFuseInputs(handle, 1, 21), 0u) << "fused already";
    EXPECT_EQ(link(), "input 1 role 1 8:9,9\n"
                      "input 2 role 0 0:0.5\n"
                      "input 22 role 0 0:0.25\n"
                      "node uniform [ ] 4:0 3:0.5,0.5,0.5,1 4:0 resolution {0} seed 4:0\n"
                      "node blur [ 0 ] {1} resolution {0} seed 4:0\n"
                      "node imageInput [ 1 ] 5: 4:1 3:0.5,0.5,0.5,1 resolution {0} seed 4:0\n"
                      "node blur [ 2 ] {2} resolution {0} seed 4:0\n"
                      "output 11 node 0 format 66 mipmaps 15\n"
                      "output 12 node 1 format 0 mipmaps 1\n"
                      "output 31 node 3 format 32 mipmaps 4\n");
}

TEST_F(Linker, RefusalsChangeNothing) {
    push(bottom());
    push(top());
    const std::string before = link();
    const unsigned int connections[][2] = {{12, 23}, {22, 11}, {23, 31}, {2, 31}, {99, 11}, {23, 99}};
    for (const auto& [input, output] : connections)
        EXPECT_NE(substanceLinkerConnectOutputToInput(handle, input, output), 0u) << input << " " << output;
    const unsigned int fusions[][2] = {{1, 22}, {1, 1}, {1, 99}, {99, 1}, {23, 2}, {22, 21}};
    for (const auto& [first, second] : fusions)
        EXPECT_NE(substanceLinkerFuseInputs(handle, first, second), 0u) << first << " " << second;
    EXPECT_NE(substanceLinkerHandleSetOutputFormat(handle, 31, 1, 2), 0u);
    EXPECT_NE(substanceLinkerHandleSelectOutputs(handle, 0, 99), 0u);
    EXPECT_EQ(link(), before);
}

TEST_F(Linker, FusionsKeepProgramsAcyclic) {
    Program second = top();
    second.inputs[1].uid = 43;
    second.outputs[0].uid = 51;
    push(top());
    push(second);
    EXPECT_EQ(substanceLinkerFuseInputs(handle, 43, 23), 0u);
    EXPECT_NE(substanceLinkerConnectOutputToInput(handle, 43, 31), 0u) << "feeds both programs now";
}

} // namespace
} // namespace embedded
