// What the linker owes beyond what the judge of engines asks of each.
#include "platform/linker.h"
#include "embedded/program/Assembly.h"
#include "tests/embedded/program/ProgramText.h"
#include "tests/embedded/program/SamplePrograms.h"

#include <gtest/gtest.h>

namespace embedded {
namespace {

// Two images, one of which is blurred by an input. Uids: resolution 1, amount 2; outputs 11 and 12.
Program bottom() {
    Program program;
    program.inputs = {makeInput(1, ValueType::Integer2, {9, 9}, SystemInput::Resolution),
                      makeInput(2, ValueType::Float, {0.5})};
    program.nodes = {makeNode("uniform"), makeBound("blur", {0}, "sigma", boundTo(1))};
    for (ProgramNode& node : program.nodes) node.resolution = boundTo(0);
    program.outputs = {{11, 0, 0, 1}, {12, 1, 0, 1}};
    return program;
}

// Blurs an image from outside. Uids: amount 22, resolution 21, image 23; output 31.
Program top() {
    Program program;
    program.inputs = {makeInput(22, ValueType::Float, {0.25}), makeInput(23, ValueType::Image),
                      makeInput(21, ValueType::Integer2, {7, 7}, SystemInput::Resolution)};
    program.nodes = {makeBound("imageInput", {}, "image", boundTo(1)),
                     makeBound("blur", {0}, "sigma", boundTo(0))};
    for (ProgramNode& node : program.nodes) node.resolution = boundTo(2);
    program.outputs = {{31, 1, 0, 1}};
    return program;
}

class Linker : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(substanceLinkerContextInit(&context, SubstanceLinkerApiVersion, SubstanceLinkerEngineId),
                  0u);
        ASSERT_EQ(substanceLinkerHandleInit(&handle, context), 0u);
    }

    // The handles go with it.
    void TearDown() override { EXPECT_EQ(substanceLinkerContextRelease(context), 0u); }

    void push(const Program& program) {
        const auto bytes = encodeAssembly(program);
        EXPECT_EQ(substanceLinkerHandlePushAssemblyMemory(handle, bytes.data(), bytes.size()), 0u);
    }

    SubstanceLinkerContext* context = nullptr;
    SubstanceLinkerHandle* handle = nullptr;
};

TEST_F(Linker, StackIsConnectedAndFused) {
    push(bottom());
    push(top());
    for (const auto& [first, second] : {std::pair(1u, 22u), {1, 1}, {1, 99}, {99, 1}, {23, 2}, {22, 21}})
        EXPECT_NE(substanceLinkerFuseInputs(handle, first, second), 0u) << first << " " << second;
    EXPECT_EQ(substanceLinkerConnectOutputToInput(handle, 23, 12), 0u);
    EXPECT_EQ(substanceLinkerHandleSelectOutputs(handle, 0, 11), 0u);
    EXPECT_EQ(substanceLinkerFuseInputs(handle, 1, 21), 0u);
    EXPECT_EQ(substanceLinkerHandleSetOutputFormat(handle, 31, 32, 4), 0u);
    EXPECT_EQ(substanceLinkerHandleSetOutputFormat(handle, 11, 66, 4000000000u), 0u);
    EXPECT_NE(substanceLinkerConnectOutputToInput(handle, 23, 11), 0u) << "fed already";
    EXPECT_NE(substanceLinkerFuseInputs(handle, 1, 21), 0u) << "fused already";
    const unsigned char* data = nullptr;
    size_t size = 0;
    EXPECT_EQ(substanceLinkerHandleLink(handle, &data, &size), 0u);
    const auto program = decodeAssembly(data, size);
    ASSERT_TRUE(program);
    EXPECT_EQ(toText(*program), "input 1 role 1 8:9,9\n"
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
