#include "OwnDescription.h"

#include <tinyxml.h>

#include <algorithm>
#include <cstring>
#include <locale>
#include <sstream>
#include <vector>

namespace own {

namespace {

// The guard against hostile texts. TinyXML recurses into elements and compares each attribute with all before
// it, so both are bounded by bounding the text.
constexpr std::size_t maxTextSize = 65536, maxTags = 1024;

template <typename Number>
std::vector<Number> numbersIn(const char* text) {
    std::string blanks = text ? text : "";
    std::replace(blanks.begin(), blanks.end(), ',', ' ');
    std::istringstream stream(blanks);
    stream.imbue(std::locale::classic());
    std::vector<Number> numbers;
    for (Number number; stream >> number;) numbers.push_back(number);
    return numbers;
}

template <typename Number>
Number number(const TiXmlElement& element, const char* attribute) {
    const std::vector<Number> numbers = numbersIn<Number>(element.Attribute(attribute));
    return numbers.empty() ? Number() : numbers.front();
}

template <typename Number>
Words wordsOf(const std::vector<Number>& numbers) {
    Words words{};
    for (std::size_t i = 0; i < std::min(numbers.size(), words.size()); ++i)
        std::memcpy(&words[i], &numbers[i], sizeof(Number));
    return words;
}

template <typename Function>
void forEachChild(const TiXmlElement* parent, Function function) {
    const TiXmlElement* child = parent ? parent->FirstChildElement() : nullptr;
    for (; child; child = child->NextSiblingElement()) function(*child);
}

void addGraph(const TiXmlElement& graph, Program& program) {
    const std::size_t firstOutput = program.outputs.size();
    forEachChild(graph.FirstChildElement("outputs"), [&](const TiXmlElement& element) {
        Output output;
        output.uid = number<std::uint32_t>(element, "uid");
        output.mipmaps = number<unsigned int>(element, "mipmaps");
        const int format = number<int>(element, "format");
        if (isFormat(format)) output.format = format;
        program.outputs.push_back(output);
    });
    forEachChild(graph.FirstChildElement("inputs"), [&](const TiXmlElement& element) {
        Input input;
        input.uid = number<std::uint32_t>(element, "uid");
        input.type = number<int>(element, "type");
        if (componentCount(input.type) == 0) return; // the library passes over such inputs too
        const char* const identifier = element.Attribute("identifier");
        input.isResolution =
            input.type == SubstanceInputInteger2 && identifier && std::string(identifier) == "$resolution";
        const char* const value = element.Attribute("default");
        input.value =
            isInteger(input.type) ? wordsOf(numbersIn<int>(value)) : wordsOf(numbersIn<float>(value));
        const auto altered = numbersIn<std::uint32_t>(element.Attribute("alteroutputs"));
        for (std::size_t i = firstOutput; i < program.outputs.size(); ++i)
            if (std::count(altered.begin(), altered.end(), program.outputs[i].uid) > 0)
                program.outputs[i].sources.push_back(static_cast<int>(program.inputs.size()));
        program.inputs.push_back(input);
    });
}

} // namespace

std::optional<Program> readDescription(const std::string& text) {
    if (text.size() > maxTextSize ||
        std::count(text.begin(), text.end(), '<') > static_cast<std::ptrdiff_t>(maxTags))
        return std::nullopt;
    TiXmlDocument document;
    document.SetTabSize(0); // counting columns can hang on broken UTF-8
    // Broken UTF-8 at the end makes TinyXML read a little further than the text, hence the zeros.
    const std::string padded = text + '\n' + std::string(8, '\0');
    const TiXmlElement* root = nullptr;
    if (document.Parse(padded.c_str(), nullptr, TIXML_ENCODING_UTF8) && !document.Error())
        root = document.RootElement();
    if (!root || root->ValueStr() != "sbsdescription") return std::nullopt;
    Program program;
    forEachChild(root->FirstChildElement("graphs"),
                 [&](const TiXmlElement& graph) { addGraph(graph, program); });
    return program;
}

} // namespace own
