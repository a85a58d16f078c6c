#include "conformance/Description.h"

#include "support/GuardedXml.h"
#include "support/Numbers.h"

namespace kvSubstance::conformance {

namespace {

std::string attribute(const TiXmlElement& element, const char* name) {
    const char* const value = element.Attribute(name);
    return value ? value : "";
}

// The elements of that name in the list.
std::vector<Port> portsOf(const TiXmlElement& graph, const char* list, const char* name) {
    std::vector<Port> ports;
    const TiXmlElement* const parent = graph.FirstChildElement(list);
    const TiXmlElement* child = parent ? parent->FirstChildElement(name) : nullptr;
    for (; child; child = child->NextSiblingElement(name)) {
        Port port;
        port.uid = support::wholeOrZero<unsigned int>(child->Attribute("uid"));
        port.identifier = attribute(*child, "identifier");
        port.type = support::leadingInteger(child->Attribute("type"));
        port.defaultValue = attribute(*child, "default");
        port.altersOutputs = !attribute(*child, "alteroutputs").empty();
        ports.push_back(port);
    }
    return ports;
}

} // namespace

Description readDescription(const std::string& text) {
    Description description;
    const auto document = support::parseXmlDocument(text.c_str(), TIXML_ENCODING_UTF8);
    const TiXmlElement* const root = document ? document->FirstChildElement("sbsdescription") : nullptr;
    const TiXmlElement* const graphs =
        root && root->Attribute("asmuid") ? root->FirstChildElement("graphs") : nullptr;
    if (!graphs) return description;
    description.isReadable = true;
    const TiXmlElement* graph = graphs->FirstChildElement("graph");
    for (; graph; graph = graph->NextSiblingElement("graph")) {
        for (const Port& port : portsOf(*graph, "inputs", "input")) description.inputs.push_back(port);
        for (const Port& port : portsOf(*graph, "outputs", "output")) description.outputs.push_back(port);
    }
    return description;
}

} // namespace kvSubstance::conformance
