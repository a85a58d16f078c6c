// Two graphs stacked: connections, fused inputs, and what then depends on what.
#include "framework/render/PackageStackDesc.h"
#include "tests/framework/description/PackageFixture.h"

#include <sstream>

using namespace SubstanceAir;
using descriptiontext::print;

namespace {

// An element for each of the words "identifier/label/usage", which stand for "$1", "$2" and "$3" of the
// content; what is missing is empty.
std::string elements(const std::string& words, unsigned int uid, const std::string& kind,
                     const std::string& content) {
    std::string xml;
    std::istringstream stream(words);
    for (std::string word; stream >> word; ++uid) {
        std::istringstream parts(word);
        std::string element = content;
        for (const char* const place : {"$1", "$2", "$3"}) {
            std::string name;
            std::getline(parts, name, '/');
            element.replace(element.find(place), 2, name);
        }
        xml += "<" + kind + " uid='" + std::to_string(uid) + "' " + element + "</" + kind + ">";
    }
    return xml;
}

std::string bottomXml(const std::string& words) {
    return packages::descriptionOf("2001", "bottom",
                                   "<outputs>" +
                                       elements(words, 1, "output",
                                                "identifier='$1'><outputgui label='$2'><channels><channel "
                                                "names='$3'/></channels></outputgui>") +
                                       "</outputs>");
}

// A word without a label is its own.
std::string topXml(const std::string& words) {
    std::string labelled;
    std::istringstream stream(words);
    for (std::string word; stream >> word;)
        labelled += word + (word.find('/') == std::string::npos ? "/" + word : "") + "/ ";
    return packages::descriptionOf(
        "2002", "top",
        "<outputs><output uid='900'/></outputs><inputs><input uid='100' identifier='o1' type='0'/>" +
            elements(labelled, 101, "input", "type='5' identifier='$1'><inputgui label='$2'/>$3") +
            "</inputs>");
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
    const std::unique_ptr<PackageDesc> rust = load(packages::descriptionOf("3001", "rust", rustGraph));
    const std::unique_ptr<PackageDesc> moss = load(packages::descriptionOf("3002", "moss", mossGraph));
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
        const auto inTheWay = load(packages::descriptionOf(std::to_string(uid + 1), "next", rustGraph));
        const PackageStackDesc second(bottom, bottom, {});
        EXPECT_EQ(second.asmUid(), uid + 2);
        EXPECT_TRUE(isTaken(uid) && isTaken(uid + 2));
    }
    EXPECT_FALSE(isTaken(uid) || isTaken(uid + 2));
    EXPECT_TRUE(PackageStackDesc(bottom, GraphDesc(top), {}).graphs().empty()) << "a copy has no package";
}
