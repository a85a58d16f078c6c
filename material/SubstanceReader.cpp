#include "material/SubstanceReader.h"

#include "framework/description/Attributes.h"
#include "material/Substance.h"
#include "material/WidgetNames.h"
#include "support/GuardedXml.h"
#include "support/Numbers.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace kvSubstance {

namespace {

using kvString::EncodingUtf8;

bool isSameIgnoringCase(const char* text, const char* word) {
    return text && kvString::CString(text).compareNoCase(word) == 0;
}

Type typeOfCode(int code) {
    switch (code) {
    case 1:
        return TypeFloat2;
    case 2:
        return TypeFloat3;
    case 3:
        return TypeFloat4;
    case 4:
        return TypeInt1;
    case 5:
        return TypeImage;
    case 8:
        return TypeInt2;
    case 9:
        return TypeInt3;
    case 10:
        return TypeInt4;
    default:
        return TypeFloat1;
    }
}

Format formatOfCode(int code) {
    return code >= 0 && code <= 28 && code % 4 == 0 ? static_cast<Format>(code / 4) : FormatInvalid;
}

// Calls back for the first child element of that name and for every element behind it, whatever its name,
// until a call returns false. False also when the parent is missing.
template <class Callback>
bool forEachFrom(const TiXmlElement* parent, const char* name, const Callback& callback) {
    if (!parent) return false;
    const TiXmlElement* element = parent->FirstChildElement(name);
    for (; element; element = element->NextSiblingElement()) {
        if (!callback(element)) return false;
    }
    return true;
}

} // namespace

SubstanceReader::~SubstanceReader() = default;

SubstanceReader& SubstanceReader::getInstance() {
    static SubstanceReader reader;
    return reader;
}

kv::Reference<Substance> SubstanceReader::readFromXMLData(const char* xmlText) {
    const auto document = support::parseXmlDocument(xmlText, TIXML_DEFAULT_ENCODING);
    if (!document) return {};
    const kv::Reference<Substance> material(new Substance);
    return readXMLDocument(*document, *material) ? material : kv::Reference<Substance>();
}

bool SubstanceReader::readXMLDocument(const TiXmlDocument& document, Substance& material) {
    const TiXmlElement* const description = document.FirstChildElement("sbsdescription");
    if (!description) return false;
    const char* const content = description->Attribute("content");
    if (!content || std::strcmp(content, "full") != 0) return false;
    const TiXmlElement* const graphs = description->FirstChildElement("graphs");
    if (!graphs || SubstanceAir::integerAttribute(*graphs, "count", 0) < 1) return false;
    const TiXmlElement* const graph = graphs->FirstChildElement("graph");
    return graph && readXMLGraph(graph, material);
}

bool SubstanceReader::readXMLGraph(const TiXmlNode* graph, Substance& material) {
    const char* const url = graph->ToElement()->Attribute("pkgurl");
    if (!url) return false;
    material.setPackageURL(url);
    const char* const label = graph->ToElement()->Attribute("label");
    if (!label) return false;
    material.setLabel(kvString::IString(label, EncodingUtf8));

    const auto readOutput = [&](const TiXmlElement* element) { return readXMLOutput(element, material); };
    const auto readInput = [&](const TiXmlElement* element) { return readXMLInput(element, material); };
    // Only now, when all entities exist: an input may name any of them.
    const auto readDependencies = [&](const TiXmlElement* element) {
        const char* const identifier = element->Attribute("identifier");
        if (!identifier) return false;
        readXMLInputDependencies(element, material, *material.getInput(identifier));
        return true;
    };
    const TiXmlElement* const inputs = graph->FirstChildElement("inputs");
    return forEachFrom(graph->FirstChildElement("outputs"), "output", readOutput) &&
           forEachFrom(inputs, "input", readInput) && forEachFrom(inputs, "input", readDependencies);
}

bool SubstanceReader::readXMLOutput(const TiXmlElement* element, Substance& material) {
    const char* required[6];
    const char* const names[] = {"uid", "identifier", "format", "width", "height", "mipmaps"};
    for (size_t i = 0; i < std::size(names); ++i) {
        required[i] = element->Attribute(names[i]);
        if (!required[i]) return false;
    }
    const auto number = [&required](size_t place) { return support::leadingInteger(required[place]); };
    material.newOutput(support::leadingUnsigned(required[0]), required[1], formatOfCode(number(2)), number(3),
                       number(4), number(5), isSameIgnoringCase(element->Attribute("dynamicsize"), "yes"));
    return true;
}

bool SubstanceReader::readXMLInput(const TiXmlElement* element, Substance& material) {
    const char* const uid = element->Attribute("uid");
    const char* const identifier = element->Attribute("identifier");
    const char* const code = element->Attribute("type");
    if (!uid || !identifier || !code) return false;
    SubstanceInput* const input = material.newInput(support::leadingUnsigned(uid), identifier,
                                                    typeOfCode(support::leadingInteger(code)));
    if (const char* const text = element->Attribute("default")) {
        parseValues(text, *input, input->defaultValue);
        input->value = input->defaultValue;
    }
    const TiXmlElement* const gui = element->FirstChildElement("inputgui");
    return !gui || readXMLInputGui(gui, *input);
}

bool SubstanceReader::readXMLInputGui(const TiXmlElement* element, SubstanceInput& input) {
    const char* const widget = element->Attribute("widget");
    if (!widget) return false;
    input.setWidget(widgetNamed(widget)); // none for a combo box, unlike in packages; but it is shown
    if (const char* const label = element->Attribute("label")) input.setLabel(label);
    if (const char* const description = element->Attribute("description")) input.setDescription(description);

    const TiXmlElement* const range = element->FirstChild() ? element->FirstChild()->ToElement() : nullptr;
    if (!range) return true;
    const auto readRange = [&](const char* name, SubstanceInput::IntOrFloat& target, bool& known) {
        const char* const text = range->Attribute(name);
        if (!text) return;
        parseValues(text, input, target);
        known = true;
    };
    readRange("min", input.minValue, input.minKnown);
    readRange("max", input.maxValue, input.maxKnown);
    readRange("step", input.stepValue, input.stepKnown);
    input.setClamp(isSameIgnoringCase(range->Attribute("clamp"), "on"));
    return true;
}

void SubstanceReader::readXMLInputDependencies(const TiXmlElement* element, Substance& material,
                                               SubstanceInput& input) {
    const char* const altered = element->Attribute("alteroutputs");
    if (!altered) return;
    for (const kvString::CString& uid : kvUtil::split(altered, ',', true, false)) {
        SubstanceEntity* const entity = material.getEntity(support::leadingUnsigned(uid.asChar()));
        if (!entity) continue;
        const kvRTB::FunctionVoidMember<SubstanceEntity> callback(entity, &SubstanceEntity::onModified);
        input.getModifiedSignal().connect(callback, entity->getReceiver());
    }
}

// Any list, also that of a range, marks the input as having a default. On purpose: hosts offer to reset every
// input that has one, and one with a range always counted.
void SubstanceReader::parseValues(const char* text, SubstanceInput& input,
                                  SubstanceInput::IntOrFloat& target) {
    const kv::vector<kvString::CString> pieces = kvUtil::split(text, ',', true, false);
    const size_t count = std::min(static_cast<size_t>(input.numComponents()), pieces.size());
    for (size_t k = 0; k < count; ++k) {
        const char* const piece = pieces[k].asChar();
        if (input.getType() & 0x10) {
            target.f[k] = support::leadingFloat(piece);
        } else {
            target.i[k] = support::leadingInteger(piece);
        }
    }
    input.defaultKnown = true;
}

} // namespace kvSubstance
