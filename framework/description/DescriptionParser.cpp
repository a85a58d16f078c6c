#include "framework/description/DescriptionParser.h"

#include "framework/description/Attributes.h"

#include <tinyxml.h>

#include <algorithm>
#include <functional>

namespace SubstanceAir {

namespace {

// Packages mostly come with everything in order.
template <class Items, class IsLess>
void sortUnlessSorted(Items& items, const IsLess& isLess) {
    if (!std::is_sorted(items.begin(), items.end(), isLess))
        std::stable_sort(items.begin(), items.end(), isLess);
}

// Both sorts by uid are stable, so that the first of equal uids is the first in the document.
void readOutputs(const TiXmlElement& graphElement, GraphDesc& graph) {
    const TiXmlElement* const list = graphElement.FirstChildElement("outputs");
    if (!list) return;
    graph.outputs.reserve(roomForChildren(*list, "output"));
    forEachChild(*list, "output", [&graph](const TiXmlElement& element) {
        graph.outputs.emplace_back();
        parseOutput(element, graph.outputs.back());
    });
    sortUnlessSorted(graph.outputs, [](const OutputDesc& a, const OutputDesc& b) { return a.uid < b.uid; });
}

void readInputs(const TiXmlElement& graphElement, GraphDesc& graph) {
    const TiXmlElement* const list = graphElement.FirstChildElement("inputs");
    if (!list) return;
    graph.inputs.reserve(roomForChildren(*list, "input"));
    forEachChild(*list, "input", [&graph](const TiXmlElement& element) {
        if (std::unique_ptr<InputDescBase> input = parseInput(element, graph.outputs))
            graph.inputs.push_back(std::move(input));
    });
    sortUnlessSorted(graph.inputs, [](const auto& a, const auto& b) { return a->uid < b->uid; });
    for (OutputDesc& output : graph.outputs) sortUnlessSorted(output.alteringInputUids, std::less<>());
}

// False for a graph without outputs, of which nothing more is read.
bool readGraph(const TiXmlElement& element, GraphDesc& graph) {
    graph.packageUrl = textAttribute(element, "pkgurl");
    graph.label = textAttribute(element, "label");
    readOutputs(element, graph);
    if (graph.outputs.empty()) return false;
    readInputs(element, graph);
    if (const TiXmlElement* const presets = element.FirstChildElement("sbspresets"))
        parsePresets(graph.presets, *presets, &graph);
    return true;
}

// Room is reserved for as many graphs as the document announces. When it announces too few, the list grows by
// copying, and the graphs in it lose their presets and their parent, as copies do. Kept: hosts rely on the
// rule that a list that is as long as announced loses nothing.
void readGraphs(const TiXmlElement& list, PackageDesc& package, std::vector<GraphDesc>& graphs) {
    graphs.reserve(roomForChildren(list, "graph"));
    forEachChild(list, "graph", [&](const TiXmlElement& element) {
        graphs.emplace_back();
        graphs.back().parent = &package;
        if (!readGraph(element, graphs.back())) graphs.pop_back();
    });
}

} // namespace

bool parsePackageDescription(const support::GuardedText& xmlText, PackageDesc& package,
                             unsigned int& assemblyUid, std::vector<GraphDesc>& graphs) {
    const auto document = support::parseXmlDocument(xmlText, TIXML_ENCODING_UTF8);
    const TiXmlElement* const root = document ? rootElement(*document, "sbsdescription") : nullptr;
    if (!root || !root->Attribute("asmuid")) return false;
    assemblyUid = unsignedAttribute(*root, "asmuid");
    const TiXmlElement* const list = root->FirstChildElement("graphs");
    if (!list) return false;
    readGraphs(*list, package, graphs);
    return true;
}

} // namespace SubstanceAir
