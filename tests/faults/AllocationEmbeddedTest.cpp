// The same with the embedded linker and engine, which run out of memory too: from package bytes to pixels.
#include "tests/Compiled.h"
#include "tests/FailingAllocations.h"
#include "tests/faults/AllocationLoop.h"

#include <gtest/gtest.h>

#include <new>
#include <set>

namespace {

using faults::Promise;

// Shows the bottom's colours and height, so that a picture without a connection, with a wrong format or from
// another package is another picture.
struct Pair {
    const kv::vector<char> bottom = hosting::compile(R"(<package><graph url="pkg://bottom">
        <input identifier="$resolution" type="integer2" default="3,3"/><input identifier="$seed" type="integer" default="3"/>
        <input identifier="tint" type="float3" default="1,0.5,0" widget="color"/>
        <node name="noise" kind="fbm"/>
        <node name="colour" kind="uniform" colour="colour" encoding="linear" value="{tint}"/>
        <output identifier="base" usage="diffuse" node="colour" mipmaps="3"/>
        <output identifier="relief" usage="height" node="noise" format="gray16"/></graph></package>)");
    const kv::vector<char> top = hosting::compile(R"(<package><graph url="pkg://top">
        <input identifier="$resolution" type="integer2" default="3,3"/>
        <input identifier="diffuse" type="image"/><input identifier="height" type="image"/>
        <input identifier="sharpness" type="float" default="0.125" min="0" max="0.25" widget="slider"/>
        <node name="colours" kind="imageInput" image="{diffuse}" colour="colour"/>
        <node name="relief" kind="imageInput" image="{height}"/>
        <node name="soft" kind="blur" source="relief" sigma="{sharpness}"/>
        <node name="mixed" kind="blend" foreground="colours" background="soft" mode="multiply"/>
        <node name="copies" kind="scatter" pattern="soft"/>
        <node name="light" kind="ambientOcclusion" height="copies" radius="0.25"/>
        <node name="turned" kind="transform" source="light" repeats="4"/>
        <node name="lit" kind="blend" foreground="mixed" background="turned" mode="multiply"/>
        <output identifier="Output" node="lit" format="rgba8"/></graph></package>)");
    hosting::Material material;
    hosting::Image image;

    void create() { material = kvSubstance::createSubstance(bottom, top); }
    void render() { image = hosting::render(material); }
    void edit(const char* identifier, float value) const { hosting::setValue(material, identifier, value); }
    void createRenderAndEdit(const char* identifier, float value) {
        create();
        render();
        edit(identifier, value);
    }
    std::string look() const {
        std::string text = material ? material->getStateString().asChar() : "none";
        for (const char byte : hosting::pixels(image)) text += std::to_string(byte) + " ";
        return text;
    }
    std::string probe() {
        if (!material) return {};
        for (const float value : {1.0f, 2.0f}) {
            edit("sharpness", value / 16);
            edit("$seed", value);
            render();
        }
        return look();
    }
};

const auto create = [](Pair& pair) { pair.create(); };
const auto render = [](Pair& pair) { pair.render(); };

// The engine keeps what it has computed for the next edit.
const faults::Row<Pair> rows[] = {
    {"create", [](Pair&) {}, create, Promise::Strong, false},
    {"firstTexture", create, render, Promise::Silent, false},
    {"editedTexture", [](Pair& p) { p.createRenderAndEdit("tint", 0.25f); }, render, Promise::Silent, false},
    {"textureOfAnotherSeed", [](Pair& p) { p.createRenderAndEdit("$seed", 4); }, render, Promise::Silent,
     false},
    {"textureOfAnotherSize", [](Pair& p) { p.createRenderAndEdit("$resolution", 4); }, render,
     Promise::Silent, false},
    {"endOfSubstance", [](Pair& p) { p.createRenderAndEdit("tint", 0.25f); },
     [](Pair& p) { p.material.reset(); }},
};

// What a process makes but once is made here, when this test runs alone.
TEST(FirstUse, everyFailureIsSurvived) {
    std::set<std::string> pictures;
    for (long number = 0, failed = 1; failed > 0; ++number) {
        Pair pair;
        allocations::fail(number, allocations::Failing::Once);
        try {
            pair.createRenderAndEdit("tint", 1);
        } catch (const std::bad_alloc&) { // as promised
        }
        failed = allocations::stopFailing();
        pair.createRenderAndEdit("tint", 1);
        pictures.insert(pair.look());
    }
    EXPECT_EQ(pictures.size(), 1u);
}

class EmbeddedAllocation : public testing::TestWithParam<faults::Row<Pair>> {};

TEST_P(EmbeddedAllocation, everyFailureIsSurvived) {
    faults::failEveryAllocation(GetParam(), nullptr);
}

INSTANTIATE_TEST_SUITE_P(Operations, EmbeddedAllocation, testing::ValuesIn(rows),
                         [](const auto& test) { return test.param.name; });

} // namespace
