// Two graphs stacked: connections, fused inputs, and what then depends on what.
#include "framework/render/PackageStackDesc.h"
#include "tests/framework/description/PackageFixture.h"

#include <sstream>

using namespace SubstanceAir;
using descriptiontext::print;

namespace {

std::string packageXml(const std::string& asmUid, const std::string& url, const std::string& graph) {
    return "<sbsdescription asmuid='" + asmUid + "'><graphs count='1'><graph pkgurl='" + url + "' label='" +
           url + " label'>" + graph + "</graph></graphs></sbsdescription>";
}

// Graphs from words "identifier/label/usage" for outputs and "identifier/label" for image inputs; uids count
// from 1 and from 101.
std::vector<std::string> split(const std::string& text, char separator) {
    std::vector<std::string> parts;
    std::istringstream stream(text);
    for (std::string part; std::getline(stream, part, separator);) parts.push_back(part);
    return parts;
}

std::string bottomXml(const std::string& words) {
    std::string xml = "<outputs>";
    int uid = 0;
    for (const std::string& word : split(words, ' ')) {
        std::vector<std::string> names = split(word, '/');
        names.resize(3);
        xml += "<output uid='" + std::to_string(++uid) + "' identifier='" + names[0] +
               "'><outputgui label='" + names[1] + "'><channels><channel names='" + names[2] +
               "'/></channels></outputgui></output>";
    }
    return packageXml("2001", "bottom", xml + "</outputs>");
}

std::string topXml(const std::string& words) {
    std::string xml =
        "<outputs><output uid='900'/></outputs><inputs><input uid='100' identifier='o1' type='0'/>";
    int uid = 100;
    for (const std::string& word : split(words, ' ')) {
        const size_t slash = word.find('/');
        const bool hasLabel = slash != std::string::npos;
        xml += "<input uid='" + std::to_string(++uid) + "' type='5' identifier='" + word.substr(0, slash) +
               "'>" + (hasLabel ? "<inputgui label='" + word.substr(slash + 1) + "'/>" : "") + "</input>";
    }
    return packageXml("2002", "top", xml + "</inputs>");
}

// Uids coincide between the graphs here and there, as they may.
const char* const rustGraph = R"(<outputs><output uid='1' identifier='Output' mipmaps='2'/>
<output uid='2' identifier='rough'><outputgui><channels><channel names='roughness'/></channels></outputgui></output>
<output uid='3' identifier='extra'/></outputs>
<inputs><input uid='10' identifier='$size' type='8' alteroutputs='1,2,3'/>
<input uid='11' identifier='age' type='0' default='0.5' alteroutputs='2,3'/>
<input uid='12' identifier='$size' type='8'/></inputs>)";
const char* const mossGraph =
    R"(<outputs><output uid='1002' identifier='b'/><output uid='1001' identifier='a'/></outputs>
<inputs><input uid='5' identifier='amount' type='4' alteroutputs='1001,1002'/>
<input uid='8' identifier='$size' type='4' alteroutputs='1001,1002'/>
<input uid='9' identifier='Glossiness' type='5' alteroutputs='1001'/>
<input uid='11' identifier='free' type='5' alteroutputs='1002'/></inputs>)";

class Stacks : public PackageFixture {
protected:
    const std::unique_ptr<PackageDesc> rust = load(packageXml("3001", "rust", rustGraph));
    const std::unique_ptr<PackageDesc> moss = load(packageXml("3002", "moss", mossGraph));
    const GraphDesc& bottom = rust->graphs()[0];
    const GraphDesc& top = moss->graphs()[0];
};

} // namespace

TEST_F(Stacks, ConnectByNames) {
    const struct {
        const char* bottom;
        const char* top;
        const char* connections;
    } cases[] = {
        {"a b/X", "B x A", "1>103 2>101 2>102 "}, // identifiers and labels, in any letter case
        {"//normal r//roughness", "NORMAL roughness", "1>101 2>102 "}, // usages
        {"a/b/normal b c", "b normal", "2>101 1>102 "},         // identifiers before labels before usages
        {"zz yy", "zz/yy", "2>101 "},                           // the name that sorts first decides
        {"//height", "bump", "1>101 "},                         // a usage that stands in for another
        {"//height", "bump Height", "1>102 "},                  // unless an input has the name itself
        {"s//roughness", "Glossiness specularLevel", "1>102 "}, // the first of the chain gets the rest of it
        {"mask/mask/mask", "any", "1>101 "},                    // a lone name for a lone name
        {"x//mask", "any", ""},
        {"x//mask y", "any", "2>101 "},  // or the diffuse output
        {"x//unknown", "any", "1>101 "}, // which unknown usages are
        {"diffuse", "any/other", ""},    // names are counted, not inputs
        {"diffuse", "mask any", ""},
    };
    for (const auto& [bottomWords, topWords, connections] : cases) {
        const auto below = load(bottomXml(bottomWords));
        const auto above = load(topXml(topWords));
        const PackageStackDesc stack(below->graphs()[0], above->graphs()[0], {});
        EXPECT_EQ(print(stack.connections()), connections) << bottomWords << " below " << topWords;
    }
}

TEST_F(Stacks, AreOneGraph) {
    const PackageStackDesc stack(bottom, top, {});
    EXPECT_EQ(stack.graphs()[0].parent, &stack);
    EXPECT_EQ(print(stack.graphs()[0]),
              R"(graph rust/moss 'rust label'
output 1001 a '' format 0 mipmaps 0 diffuse altered by 5,10,11.
output 1002 b '' format 0 mipmaps 0 diffuse altered by 5,10,11.
input 5 amount 'amount' type 4 0 in 0 to 0 alters 1001,1002.
input 10 $size '$size' type 8 0,0 in 0,0 to 0,0 system alters 1,3,1001,1002.
input 11 age 'age' type 0 0.5 in 0 to 0 alters 3,1001.
input 11 free 'free' type 5 image alters 1002.
input 12 $size '$size' type 8 0,0 in 0,0 to 0,0 system alters .
)");
    EXPECT_EQ(print(stack.fusedInputs()), "10>8 ");
    EXPECT_EQ(print(stack.selectedOutputs()), "1,3");
}

TEST_F(Stacks, GivenConnectionsAndBottomOutputs) {
    ConnectionList list;
    list.pairs = {{3, 9}, {7, 9}, {1, 77}, {3, 8}, {1, 9}};
    list.bottomOutputs = 1;
    const PackageStackDesc stack(bottom, top, list);
    EXPECT_EQ(print(stack.connections()), "3>9 3>8 1>9 ");
    EXPECT_EQ(print(stack.graphs()[0].outputs[0].alteringInputUids), "10,11");
    EXPECT_EQ(stack.graphs()[0].outputs[0].uid, 2u);
    EXPECT_EQ(print(stack.graphs()[0].inputs[1]->alteredOutputUids), "2,1001,1002");
    EXPECT_EQ(print(stack.fusedInputs()) + print(stack.selectedOutputs()), "");
}

TEST_F(Stacks, HaveUidsOfTheirOwn) {
    unsigned int uid = 0;
    {
        const PackageStackDesc first(bottom, bottom, {});
        uid = first.asmUid();
        const auto inTheWay = load(packageXml(std::to_string(uid + 1), "next", rustGraph));
        const PackageStackDesc second(bottom, bottom, {});
        EXPECT_EQ(second.asmUid(), uid + 2);
        EXPECT_TRUE(isTaken(uid) && isTaken(uid + 2));
    }
    EXPECT_FALSE(isTaken(uid) || isTaken(uid + 2));
    EXPECT_TRUE(PackageStackDesc(bottom, GraphDesc(top), {}).graphs().empty()) << "a copy has no package";
}
