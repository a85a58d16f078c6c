// The same with the embedded linker and engine, which run out of memory too: from package bytes to pixels.
#include "bridge/Bridge.h"
#include "embedded/compiler/Compiler.h"
#include "framework/description/PackageDesc.h"
#include "tests/FailingAllocations.h"
#include "tests/faults/AllocationLoop.h"

#include <gtest/gtest.h>

#include <memory>
#include <new>
#include <set>

namespace {

using namespace kvSubstance;
using faults::Operation;
using faults::Promise;
using faults::Scene;

kv::vector<char> compile(const char* source) {
    const embedded::CompileResult result = embedded::compilePackage(source);
    for (const auto& diagnostic : result.diagnostics) ADD_FAILURE() << toString(diagnostic, "package");
    return {result.package.begin(), result.package.end()};
}

// Shows the bottom's colours and height, so that a picture without a connection, with a wrong format or from
// another package is another picture.
struct Pair {
    const kv::vector<char> bottom = compile(R"(<package><graph url="pkg://bottom">
        <input identifier="$resolution" type="integer2" default="3,3"/><input identifier="$seed" type="integer" default="3"/>
        <input identifier="tint" type="float3" default="1,0.5,0" widget="color"/>
        <node name="noise" kind="fbm"/>
        <node name="colour" kind="uniform" colour="colour" encoding="linear" value="{tint}"/>
        <output identifier="base" usage="diffuse" node="colour" mipmaps="3"/>
        <output identifier="relief" usage="height" node="noise" format="gray16"/></graph></package>)");
    const kv::vector<char> top = compile(R"(<package><graph url="pkg://top">
        <input identifier="$resolution" type="integer2" default="3,3"/>
        <input identifier="diffuse" type="image"/><input identifier="height" type="image"/>
        <input identifier="sharpness" type="float" default="0.125" min="0" max="0.25" widget="slider"/>
        <node name="colours" kind="imageInput" image="{diffuse}" colour="colour"/>
        <node name="relief" kind="imageInput" image="{height}"/>
        <node name="soft" kind="blur" source="relief" sigma="{sharpness}"/>
        <node name="mixed" kind="blend" foreground="colours" background="soft" mode="multiply"/>
        <output identifier="Output" node="mixed" format="rgba8"/></graph></package>)");
    kv::Reference<Substance> material;
    kv::TempReference<ilSIDImage> image;

    void create() { material = createSubstance(bottom, top); }
    void edit(const char* identifier, int value) const {
        SubstanceInput* const input = material->getInput(identifier);
        input->getType() & 0x20 ? input->setValueI(value, 0)
                                : input->setValueF(static_cast<float>(value) / 16, 0);
        syncValueFromSubstanceInputToInputInstanceBase(material, input);
    }
    void render() { image = getTextureFromSubstance(material.get()); }
    std::string look() const {
        std::string text = material ? material->getStateString().asChar() : "none";
        for (int i = 0; image && i < 4 * image->getSize().x * image->getSize().y; ++i)
            text += std::to_string(image->getBytes()[i]) + (i % 32 == 31 ? "\n" : " ");
        return text;
    }
    std::string probe() {
        if (!material) return {};
        for (const int value : {1, 2}) {
            edit("sharpness", value);
            edit("$seed", value);
            render();
        }
        return look();
    }
};

// The engine keeps what it has computed for the next edit, so textures do not count.
template <class Prepare, class Act>
Operation operation(const char* name, Prepare prepare, Act act, bool isTexture = true) {
    return {name,
            [prepare, act] {
                const auto pair = std::make_shared<Pair>();
                prepare(*pair);
                return Scene{[pair, act] { act(*pair); }, [pair] { return pair->look(); },
                             [pair] { return pair->probe(); }};
            },
            isTexture ? Promise::Silent : Promise::Strong, !isTexture};
}

const auto create = [](Pair& pair) { pair.create(); };
const auto render = [](Pair& pair) { pair.render(); };
const auto createAndRender = [](Pair& pair) {
    pair.create();
    pair.render();
};

// A texture after an edit.
Operation edited(const char* name, const char* identifier) {
    const auto prepare = [identifier](Pair& pair) {
        createAndRender(pair);
        pair.edit(identifier, 4);
    };
    return operation(name, prepare, render);
}

const auto nothing = [](Pair&) {};
const auto end = [](Pair& pair) { pair.material.reset(); };

const Operation operations[] = {
    operation("create", nothing, create, false),
    operation("firstTexture", create, render),
    edited("editedTexture", "tint"),
    edited("textureOfAnotherSeed", "$seed"),
    edited("textureOfAnotherSize", "$resolution"),
    operation("endOfSubstance", createAndRender, end, false),
};

// What a process makes but once is made here, when this test runs alone.
TEST(FirstUse, everyFailureIsSurvived) {
    std::set<std::string> pictures;
    for (long number = 0, failed = 1; failed > 0; ++number) {
        Pair pair;
        allocations::fail(number, allocations::Failing::Once);
        try {
            createAndRender(pair);
        } catch (const std::bad_alloc&) { // as promised
        }
        failed = allocations::stopFailing();
        createAndRender(pair);
        pictures.insert(pair.look());
    }
    EXPECT_EQ(pictures.size(), 1u);
}

class EmbeddedAllocation : public testing::TestWithParam<Operation> {};

TEST_P(EmbeddedAllocation, everyFailureIsSurvived) {
    faults::failEveryAllocation(GetParam(), nullptr);
}

INSTANTIATE_TEST_SUITE_P(Operations, EmbeddedAllocation, testing::ValuesIn(operations),
                         [](const auto& test) { return test.param.name; });

} // namespace
