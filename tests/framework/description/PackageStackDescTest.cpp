// Two graphs stacked: connections, fused inputs, and what then depends on what.
#include "framework/render/PackageStackDesc.h"
#include "framework/render/Renderer.h"
#include "framework/render/RendererAccess.h"
#include "tests/framework/description/DescriptionText.h"
#include "tests/recording/Recording.h"

#include <gtest/gtest.h>

#include <sstream>

using namespace SubstanceAir;
using descriptiontext::print;

namespace {

PackageDesc load(const std::string& asmUid, const std::string& tag, const std::string& graph) {
    const std::string bytes = recording::packageBytes(
        "<sbsdescription asmuid='" + asmUid + "'><graphs count='1'><graph pkgurl='" + tag + "' label='" +
            tag + " label'>" + graph + "</graph></graphs></sbsdescription>",
        tag);
    return PackageDesc(bytes.data(), bytes.size(), nullptr);
}

// Graphs from words "identifier/label/usage" for outputs and "identifier/label" for image inputs; uids count
// from 1 and from 101.
std::vector<std::string> split(const std::string& text, char separator) {
    std::vector<std::string> parts;
    std::istringstream stream(text);
    for (std::string part; std::getline(stream, part, separator);) parts.push_back(part);
    return parts;
}

PackageDesc bottomOf(const std::string& words) {
    std::string xml = "<outputs>";
    int uid = 0;
    for (const std::string& word : split(words, ' ')) {
        std::vector<std::string> names = split(word, '/');
        names.resize(3);
        xml += "<output uid='" + std::to_string(++uid) + "' identifier='" + names[0] +
               "'><outputgui label='" + names[1] + "'><channels><channel names='" + names[2] +
               "'/></channels></outputgui></output>";
    }
    return load("2001", "bottom", xml + "</outputs>");
}

PackageDesc topOf(const std::string& words) {
    std::string xml =
        "<outputs><output uid='900'/></outputs><inputs><input uid='100' identifier='o1' type='0'/>";
    int uid = 100;
    for (const std::string& word : split(words, ' ')) {
        std::vector<std::string> names = split(word, '/');
        names.resize(2);
        xml += "<input uid='" + std::to_string(++uid) + "' type='5' identifier='" + names[0] +
               "'><inputgui label='" + names[1] + "'/></input>";
    }
    return load("2002", "top", xml + "</inputs>");
}

// Uids coincide between the graphs here and there, as they may.
const char* const rustBottom =
    "<outputs><output uid='1' identifier='Output' mipmaps='2'/>"
    "<output uid='2' identifier='rough'><outputgui><channels><channel names='roughness'/>"
    "</channels></outputgui></output>"
    "<output uid='3' identifier='extra'/></outputs>"
    "<inputs><input uid='10' identifier='$size' type='8' alteroutputs='1,2,3'/>"
    "<input uid='11' identifier='age' type='0' default='0.5' alteroutputs='2,3'/>"
    "<input uid='12' identifier='$size' type='8'/></inputs>";
const char* const mossTop =
    "<outputs><output uid='1002' identifier='b'/><output uid='1001' identifier='a'/></outputs>"
    "<inputs><input uid='5' identifier='amount' type='4' alteroutputs='1001,1002'/>"
    "<input uid='8' identifier='$size' type='4' alteroutputs='1001,1002'/>"
    "<input uid='9' identifier='Glossiness' type='5' alteroutputs='1001'/>"
    "<input uid='11' identifier='free' type='5' alteroutputs='1002'/></inputs>";

class Stacks : public testing::Test {
protected:
    void SetUp() override {
        RendererAccess();
        recording::reset();
    }
    void TearDown() override { EXPECT_EQ(recording::misuses(), ""); }
};

} // namespace

TEST_F(Stacks, ConnectByNames) {
    const struct {
        const char* bottom;
        const char* top;
        const char* connections;
    } cases[] = {
        {"a b/X", "B x A", "1>103 2>102"}, // identifiers and labels, in any letter case
        {"//normal r//roughness", "NORMAL roughness", "1>101 2>102"}, // usages
        {"a/b/normal b c", "b normal", "2>101 1>102"}, // identifiers before labels before usages
        {"zz yy", "zz/yy", "2>101"},                   // the name that sorts first decides
        {"x a", "A/q B/a", "2>101"},                   // identifiers before labels of the inputs too
        {"//height", "bump", "1>101"},                 // equivalent usages
        {"//height", "bump Height", "1>102"},          // but an input's own name goes first
        {"s//specular r//roughness", "glossiness", "2>101"},
        {"s//roughness", "Glossiness specularLevel", "1>102"}, // the first name of the chain decides
        {"x//mask", "any/any", ""},                            // two names below: no lone output
        {"x/x/mask y/y/diffuse", "any/any", "2>101"},          // a lone input takes the diffuse output
        {"x/x/mask y/y/height", "any/any", ""},
        {"x/x/nothing", "any/any", "1>101"},     // which unknown usages are
        {"diffuse/diffuse", "any/any", "1>101"}, // the lone name
        {"diffuse/diffuse", "any/other", ""},    // two names above: no lone input
        {"diffuse/diffuse", "mask/mask any/any", ""},
        {"diffuse/diffuse", "bump/bump", ""},
        {"x", "a b", "1>101"}, // empty labels are names like any other
        {"x y", "", ""},
    };
    for (const auto& [bottomWords, topWords, connections] : cases) {
        const PackageDesc bottom = bottomOf(bottomWords);
        const PackageDesc top = topOf(topWords);
        const PackageStackDesc stack(bottom.graphs()[0], top.graphs()[0], {});
        EXPECT_EQ(print(stack.connections()), connections) << bottomWords << " below " << topWords;
    }
}

TEST_F(Stacks, AreOneGraph) {
    const PackageDesc bottom = load("3001", "rust", rustBottom);
    const PackageDesc top = load("3002", "moss", mossTop);
    const PackageStackDesc stack(bottom.graphs()[0], top.graphs()[0], {});
    EXPECT_EQ(stack.graphs()[0].parent, &stack);
    EXPECT_EQ(print(stack.graphs()), "");
    EXPECT_EQ(print(stack.fusedInputs()), "10>8");
    EXPECT_EQ(print(stack.selectedOutputs()), "");

    SubstanceLinkerContext* context = nullptr;
    SubstanceLinkerHandle* handle = nullptr;
    substanceLinkerContextInit(&context, SubstanceLinkerApiVersion, SubstanceLinkerEngineId);
    substanceLinkerHandleInit(&handle, context);
    recording::takeTrace();
    EXPECT_TRUE(stack.pushToLinker(handle));
    EXPECT_EQ(recording::takeTrace(), "");
    for (const unsigned int call : {1u, 2u}) {
        recording::fail("substanceLinkerHandlePushAssemblyMemory", call);
        EXPECT_FALSE(stack.pushToLinker(handle));
    }
    substanceLinkerContextRelease(context);
}

TEST_F(Stacks, GivenConnectionsAndBottomOutputs) {
    const PackageDesc bottom = load("3003", "rust", rustBottom);
    const PackageDesc top = load("3004", "moss", mossTop);
    ConnectionList list;
    list.pairs = {{3, 9}, {7, 9}, {1, 77}, {3, 8}, {1, 9}};
    list.bottomOutputs = 1;
    const PackageStackDesc stack(bottom.graphs()[0], top.graphs()[0], list);
    EXPECT_EQ(print(stack.connections()), "3>9 3>8 1>9");
    EXPECT_EQ(print(stack.graphs()), "");
    EXPECT_EQ(print(stack.fusedInputs()) + print(stack.selectedOutputs()), "");

    list.pairs = {{7, 7}};
    EXPECT_EQ(print(PackageStackDesc(bottom.graphs()[0], top.graphs()[0], list).connections()), "");
}

TEST_F(Stacks, HaveUidsOfTheirOwn) {
    const PackageDesc package = bottomOf("a");
    const GraphDesc& graph = package.graphs()[0];
    const auto isTaken = [](unsigned int uid) {
        const RendererAccess renderer;
        return renderer->isPackageUidTaken(uid);
    };
    unsigned int uid = 0;
    {
        const PackageStackDesc first(graph, graph, {});
        uid = first.asmUid();
        const PackageDesc next = load(std::to_string(uid + 1 + (uid % 2)), "next", rustBottom); // in the way
        const PackageStackDesc second(graph, graph, {});
        EXPECT_NE(second.asmUid(), first.asmUid());
        EXPECT_NE(second.asmUid(), next.asmUid());
        EXPECT_TRUE(isTaken(first.asmUid()) && isTaken(second.asmUid()));
    }
    EXPECT_FALSE(isTaken(uid));

    const GraphDesc orphan = graph;
    const PackageStackDesc empty(graph, orphan, {});
    EXPECT_EQ(empty.asmUid(), 0u);
    EXPECT_TRUE(empty.graphs().empty());
    EXPECT_FALSE(isTaken(0));
    EXPECT_FALSE(empty.pushToLinker(nullptr));
}
