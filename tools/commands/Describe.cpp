// kvsubstance describe: the model that a host builds from a description that accompanies a package.

#include "material/Substance.h"
#include "support/GuardedXml.h"
#include "support/Numbers.h"
#include "tools/Failure.h"
#include "tools/FileContent.h"
#include "tools/GraphSummary.h"
#include "tools/InputValue.h"
#include "tools/commands/Commands.h"

#include <iostream>
#include <memory>

namespace tool {
namespace {

struct Options {
    std::string file;
    bool asJson = false;
};

// The reader tells nobody what it misses; these walk through the document as it does.

std::string missingAttribute(const TiXmlElement& element, const std::string& place,
                             std::initializer_list<const char*> required) {
    for (const char* const name : required)
        if (!element.Attribute(name)) return place + " needs the attribute \"" + name + "\"";
    return "";
}

std::string missingInEach(const TiXmlElement& graph, const char* list, const char* item,
                          std::initializer_list<const char*> required) {
    const TiXmlElement* const parent = graph.FirstChildElement(list);
    if (!parent) return std::string("the graph needs an element \"") + list + "\"";
    int count = 0;
    for (const TiXmlElement* element = parent->FirstChildElement(item); element;
         element = element->NextSiblingElement()) {
        const std::string place = std::string(item) + " " + std::to_string(++count);
        std::string fault = missingAttribute(*element, place, required);
        const TiXmlElement* const gui =
            std::string_view(item) == "input" ? element->FirstChildElement("inputgui") : nullptr;
        if (fault.empty() && gui) fault = missingAttribute(*gui, place + ": its inputgui", {"widget"});
        if (!fault.empty()) return fault;
    }
    return "";
}

std::string findFault(const char* text) {
    const auto document = support::parseXmlDocument(text, TIXML_ENCODING_UNKNOWN);
    if (!document)
        return "no well-formed XML document, or one with more than " + std::to_string(support::maxXmlDepth) +
               " elements inside each other";
    const TiXmlElement* const root = document->FirstChildElement("sbsdescription");
    if (!root) return "expected a root element \"sbsdescription\"";
    const char* const content = root->Attribute("content");
    if (!content || std::string_view(content) != "full")
        return "sbsdescription needs the attribute content=\"full\"; this may be a package's own description";
    const TiXmlElement* const graphs = root->FirstChildElement("graphs");
    const char* const count = graphs ? graphs->Attribute("count") : nullptr;
    if (!count || support::leadingInteger(count) < 1)
        return "expected an element \"graphs\" with a count of at least 1";
    const TiXmlElement* const graph = graphs->FirstChildElement("graph");
    if (!graph) return "expected an element \"graph\" in \"graphs\"";
    for (const std::string& fault :
         {missingAttribute(*graph, "the graph", {"pkgurl", "label"}),
          missingInEach(*graph, "outputs", "output",
                        {"uid", "identifier", "format", "width", "height", "mipmaps"}),
          missingInEach(*graph, "inputs", "input", {"uid", "identifier", "type"})})
        if (!fault.empty()) return fault;
    return "cannot be read";
}

// A material lists its inputs, but not its outputs: those are looked up by the document's names.
std::vector<kvSubstance::SubstanceOutput*> findOutputs(const char* text,
                                                       const kvSubstance::Substance& material) {
    std::vector<kvSubstance::SubstanceOutput*> outputs;
    const auto document = support::parseXmlDocument(text, TIXML_ENCODING_UNKNOWN);
    const TiXmlHandle graph = TiXmlHandle(document.get())
                                  .FirstChild("sbsdescription")
                                  .FirstChildElement("graphs")
                                  .FirstChildElement("graph");
    const TiXmlElement* element = graph.FirstChildElement("outputs").FirstChildElement("output").ToElement();
    for (; element; element = element->NextSiblingElement())
        if (const char* const identifier = element->Attribute("identifier"))
            if (kvSubstance::SubstanceOutput* const output = material.getOutput(identifier))
                outputs.push_back(output);
    return outputs;
}

// What is marked modified along with an input, found out by marking it.
std::vector<std::string> findDependents(kvSubstance::Substance& material, kvSubstance::SubstanceInput& input,
                                        const std::vector<kvSubstance::SubstanceOutput*>& outputs) {
    std::vector<std::string> dependents;
    material.clearModified();
    input.onModified();
    for (const kvSubstance::SubstanceOutput* const output : outputs)
        if (output->isModified()) dependents.emplace_back(output->getIdentifier().asChar());
    for (const kvString::CString& id : material.getInputIds()) {
        const kvSubstance::SubstanceInput* const other = material.getInput(id);
        if (other != &input && other->isModified()) dependents.emplace_back(id.asChar());
    }
    material.clearModified();
    return dependents;
}

GraphSummary summarizeMaterial(kvSubstance::Substance& material, const char* text) {
    GraphSummary summary{material.getPackageURL().asChar(), textOf(material.getLabel()), {}, {}, {}, {}};
    const auto outputs = findOutputs(text, material);
    for (const kvString::CString& id : material.getInputIds()) {
        kvSubstance::SubstanceInput& input = *material.getInput(id);
        summary.inputs.push_back(summarize(input));
        summary.inputs.back().altered = findDependents(material, input, outputs);
    }
    for (const kvSubstance::SubstanceOutput* const output : outputs) {
        OutputSummary entry;
        entry.uid = output->getUID();
        entry.identifier = output->getIdentifier().asChar();
        entry.format = output->getFormat() == kvSubstance::FormatInvalid
                           ? "unknown"
                           : std::to_string(output->getFormat());
        entry.mipmaps = output->getNumMipMaps();
        entry.size = {output->getXSize(), output->getYSize()};
        entry.hasDynamicSize = output->getDynamicSize();
        summary.outputs.push_back(entry);
    }
    return summary;
}

void run(const Options& options) {
    kv::vector<char> content = readFileContent(options.file);
    content.push_back('\0');
    const auto material = kvSubstance::SubstanceReader::getInstance().readFromXMLData(content.data());
    if (!material) throw Failure(options.file + ": not a material description: " + findFault(content.data()));
    const GraphSummary summary = summarizeMaterial(*material, content.data());
    if (options.asJson)
        printJson(std::cout, toJson(summary));
    else
        printSummary(std::cout, summary);
}

} // namespace

void addDescribe(CLI::App& app, int&) {
    const auto options = std::make_shared<Options>();
    CLI::App* const command =
        app.add_subcommand("describe", "Show the model that a host builds from a material description");
    command->add_option("FILE", options->file, "The description, an XML file")->type_name("")->required();
    command->add_flag("--json", options->asJson, "Print everything as JSON");
    command->footer("Example: kvsubstance describe brick_wall_description.xml");
    command->callback([options] { run(*options); });
}

} // namespace tool
