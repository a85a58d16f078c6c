// However a package is made, a material of n bytes of packages takes at most 100 n + 8 MiB while it is
// loaded.
#include "bridge/Bridge.h"
#include "embedded/program/Assembly.h"
#include "embedded/program/Package.h"
#include "tests/FailingAllocations.h"
#include "tests/embedded/program/SamplePrograms.h"

#include <gtest/gtest.h>

#include <iostream>
#include <string>
#include <vector>

namespace {

// The text once for each number from 0, the number in place of #.
std::string repeated(int count, const std::string& text) {
    std::string result;
    for (int i = 0; i < count; ++i) {
        std::string each = text;
        for (size_t place = each.find('#'); place != std::string::npos; place = each.find('#'))
            each.replace(place, 1, std::to_string(i + 1));
        result += each;
    }
    return result;
}

std::string graph(const std::string& outputs, const std::string& inputs, const std::string& rest = "") {
    return "<graph pkgurl='pkg://g' label='g'><outputs>" + outputs + "</outputs><inputs>" + inputs +
           "</inputs>" + rest + "</graph>";
}

kv::vector<char> package(const std::string& graphs) {
    const std::vector<unsigned char> bytes = embedded::encodePackage(
        {"<sbsdescription asmuid='77'><graphs>" + graphs + "</graphs></sbsdescription>",
         embedded::encodeAssembly(embedded::sampleProgram())});
    return {bytes.begin(), bytes.end()};
}

// A graph of one output with these inputs.
std::string withInputs(const std::string& inputs, const std::string& rest = "") {
    return graph("<output uid='1' identifier='o'/>", inputs, rest);
}

// A graph whose outputs all depend on its image.
std::string manyOutputs(int count) {
    return graph(repeated(count, "<output uid='#'/>"),
                 "<input uid='900000' type='5' identifier='o' alteroutputs='" + repeated(count, "#,") +
                     "'/>");
}

const std::string input = "<input uid='#' type='0' identifier='i#'";
const std::string preset = "<sbspreset><presetinput uid='1' type='0' value='1'/></sbspreset>";
const std::string dependencies = withInputs(repeated(3000, input + " alteroutputs='1'/>"));

const struct {
    const char* name;
    std::string bottom; // graphs
    int topOutputs = 1;
} bombs[] = {
    {"small elements", withInputs(repeated(300000, "<a/>"))},
    {"small attributes", withInputs(repeated(300, "<input" + repeated(1000, " a#=''") + "/>"))},
    {"nesting", withInputs(repeated(1000, repeated(250, "<a>") + repeated(250, "</a>")))},
    {"text", withInputs("<a>" + repeated(200000, "&lt;x") + "</a>")},
    {"inputs", withInputs(repeated(20000, "<input uid='#' type='3'/>"))},
    {"one name", withInputs(repeated(20000, "<input uid='#' type='0' identifier='i'/>"))},
    {"outputs", graph(repeated(40000, "<output/>"), "")},
    {"counts", repeated(20000, "<graph><outputs count='99999999'><output/></outputs>"
                               "<inputs count='99999999'/></graph>")},
    {"altered outputs",
     withInputs("<input uid='1' type='0' alteroutputs='" + repeated(300000, "1,") + "'/>")},
    {"presets", withInputs(input + "/>", "<sbspresets>" + repeated(10000, preset) + "</sbspresets>")},
    {"combo items",
     withInputs(
         repeated(500, "<input uid='#' type='4' identifier='i#'><inputgui widget='combobox'><guicombobox>"
                       "<guicomboboxitem value='2147483647' text='x'/><guicomboboxitem value='31' text='x'/>"
                       "</guicombobox></inputgui></input>"))},
    {"long GUI",
     withInputs(repeated(5000, input + "><inputgui label='" + std::string(200, 'x') + "'/></input>"))},
    {"dependencies", dependencies, 3000},
};

TEST(LoadingMemory, IsBoundedByTheSizeOfThePackages) {
    constexpr size_t perByte = 100;
    constexpr size_t constant = 8 << 20;
    for (const auto& bomb : bombs) {
        const kv::vector<char> bottom = package(bomb.bottom), top = package(manyOutputs(bomb.topOutputs));
        const size_t size = bottom.size() + top.size();
        allocations::startPeak();
        kvSubstance::createSubstance(bottom, top);
        const size_t taken = allocations::peak();
        EXPECT_LE(taken, perByte * size + constant) << bomb.name;
        std::cout << bomb.name << ": " << size << " bytes, " << taken << " bytes of memory\n";
    }
}

// Each input acts on each output: once fewer than four million times, counted from both sides, and once more.
// An output that an input names again and again counts once.
TEST(LoadingMemory, StacksOfTooManyDependenciesAreEmpty) {
    const std::string often =
        withInputs("<input uid='1' type='0' alteroutputs='" + repeated(3000, "1,") + "'/>");
    const struct {
        const std::string& bottom;
        int numOutputs;
        size_t numGraphs;
    } cases[] = {{dependencies, 600, 1}, {dependencies, 700, 0}, {often, 2000, 1}};
    for (const auto& each : cases) {
        const auto material =
            kvSubstance::createSubstance(package(each.bottom), package(manyOutputs(each.numOutputs)));
        EXPECT_EQ(material->getGraphInstances().size(), each.numGraphs) << each.numOutputs;
    }
}

} // namespace
