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

const std::string output = "<output uid='1' identifier='o'/>";
const std::string input = "<input uid='#' type='0' identifier='i#'";
const std::string imageInput = "<input uid='900000' type='5' identifier='o' alteroutputs='";

// A graph whose outputs all depend on its image.
std::string manyOutputs(int count) {
    std::string uids = repeated(count, "#,");
    uids.pop_back();
    return graph(repeated(count, "<output uid='#'/>"), imageInput + uids + "'/>");
}

struct Bomb {
    const char* name;
    std::string bottom, top; // graphs
};

std::vector<Bomb> bombs() {
    const std::string plain = graph(output, imageInput + "1'/>");
    return {
        {"small elements", graph(output, repeated(300000, "<a/>")), plain},
        {"small attributes", graph(output, repeated(300, "<input" + repeated(1000, " a#=''") + "/>")), plain},
        {"nesting", graph(output, repeated(1000, repeated(250, "<a>") + repeated(250, "</a>"))), plain},
        {"text", graph(output, "<a>" + repeated(200000, "&lt;x") + "</a>"), plain},
        {"inputs", graph(output, repeated(20000, "<input uid='#' type='3'/>")), plain},
        {"one name", graph(output, repeated(20000, "<input uid='#' type='0' identifier='i'/>")), plain},
        {"outputs", graph(repeated(40000, "<output/>"), ""), plain},
        {"counts",
         repeated(20000,
                  "<graph><outputs count='99999999'><output/></outputs><inputs count='99999999'/></graph>"),
         plain},
        {"altered outputs",
         graph(output, "<input uid='1' type='0' alteroutputs='" + repeated(300000, "1,") + "'/>"), plain},
        {"presets",
         graph(output, input + "/>",
               "<sbspresets>" +
                   repeated(10000, "<sbspreset><presetinput uid='1' type='0' value='1'/></sbspreset>") +
                   "</sbspresets>"),
         plain},
        {"combo items",
         graph(output,
               repeated(500,
                        "<input uid='#' type='4' identifier='i#'><inputgui widget='combobox'><guicombobox>"
                        "<guicomboboxitem value='2147483647' text='x'/><guicomboboxitem value='31' text='x'/>"
                        "</guicombobox></inputgui></input>")),
         plain},
        {"long GUI",
         graph(output, repeated(5000, "<input uid='#' type='0' identifier='i#'><inputgui label='" +
                                          std::string(200, 'x') + "'/></input>")),
         plain},
        {"dependencies", graph(output, repeated(3000, input + " alteroutputs='1'/>")), manyOutputs(3000)},
    };
}

TEST(LoadingMemory, IsBoundedByTheSizeOfThePackages) {
    constexpr size_t perByte = 100;
    constexpr size_t constant = 8 << 20;
    for (const Bomb& bomb : bombs()) {
        const kv::vector<char> bottom = package(bomb.bottom);
        const kv::vector<char> top = package(bomb.top);
        const size_t size = bottom.size() + top.size();
        allocations::startPeak();
        kvSubstance::createSubstance(bottom, top);
        const size_t taken = allocations::peak();
        EXPECT_LE(taken, perByte * size + constant) << bomb.name;
        std::cout << bomb.name << ": " << size << " bytes, " << taken << " bytes of memory\n";
    }
}

// Each input acts on each output: once fewer than four million times, counted from both sides, and once more.
TEST(LoadingMemory, StacksOfTooManyDependenciesAreRefused) {
    for (const int numOutputs : {600, 700}) {
        const auto material = kvSubstance::createSubstance(
            package(graph(output, repeated(3000, input + " alteroutputs='1'/>"))),
            package(manyOutputs(numOutputs)));
        EXPECT_EQ(bool(material), numOutputs == 600);
    }
}

} // namespace
