#include "OwnProgram.h"

#include <tinyxml.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <locale>
#include <sstream>
#include <stdexcept>
#include <vector>

namespace own {

namespace {

// The guard against hostile texts. TinyXML recurses into elements and compares each attribute with all before
// it, so both are bounded by bounding the text.
constexpr std::size_t maxTextSize = 65536;
constexpr std::ptrdiff_t maxTags = 1024;

// Hosts set locales that write numbers in other ways, hence the classic one, here and in write().
template <typename Numbers>
Numbers numbersOf(const TiXmlElement& element, const char* attribute) {
    const char* const value = element.Attribute(attribute);
    std::string text = value ? value : "";
    std::replace(text.begin(), text.end(), ',', ' ');
    std::istringstream stream(text);
    stream.imbue(std::locale::classic());
    return {std::istream_iterator<typename Numbers::value_type>(stream), {}};
}

template <typename Number>
Number numberOf(const TiXmlElement& element, const char* attribute) {
    const auto numbers = numbersOf<std::vector<Number>>(element, attribute);
    return numbers.empty() ? Number() : numbers.front();
}

// In all graphs.
template <typename Function>
void forEachIn(const char* list, TiXmlElement* description, const Function& function) {
    TiXmlElement* graph = TiXmlHandle(description).FirstChild("graphs").FirstChildElement().ToElement();
    for (; graph; graph = graph->NextSiblingElement()) {
        const TiXmlElement* port = TiXmlHandle(graph).FirstChild(list).FirstChildElement().ToElement();
        for (; port; port = port->NextSiblingElement()) function(numberOf<unsigned int>(*port, "uid"), *port);
    }
}

} // namespace

std::string write(const Program& program) {
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text.precision(9); // tells all floats apart
    text << "<sbsdescription><graphs><graph><outputs>";
    for (const auto& [uid, output] : program.outputs)
        text << "<output uid='" << uid << "' format='" << output.format << "' mipmaps='" << output.mipmaps
             << "'/>";
    text << "</outputs><inputs>";
    for (const auto& [uid, input] : program.inputs) {
        text << "<input uid='" << uid << "' type='" << input.type << "' default='";
        for (const float number : input.value) text << number << " ";
        text << "' alteroutputs='";
        for (const unsigned int altered : input.alters) text << altered << " ";
        text << "'/>";
    }
    text << "</inputs></graph></graphs></sbsdescription>";
    return text.str();
}

Program read(const void* data, std::size_t size, unsigned int push) {
    const auto* const bytes = static_cast<const char*>(data);
    if (!bytes || size > maxTextSize || std::count(bytes, bytes + size, '<') > maxTags)
        throw std::invalid_argument("nothing, or too much");
    // Broken UTF-8 at the end makes TinyXML read a little further.
    const std::string text = std::string(bytes, size) + '\n' + std::string(8, '\0');
    TiXmlDocument document;
    document.SetTabSize(0); // counting columns can hang on broken UTF-8
    document.Parse(text.c_str(), nullptr, TIXML_ENCODING_UTF8);
    TiXmlElement* const root = document.FirstChildElement("sbsdescription");
    if (!root || document.Error()) throw std::invalid_argument("no description");

    Program program;
    forEachIn("outputs", root, [&](unsigned int uid, const TiXmlElement& element) {
        const int format = numberOf<int>(element, "format");
        program.outputs[uid] = {isFormat(format) ? format : SubstanceFormatRgba8,
                                numberOf<unsigned int>(element, "mipmaps"), push};
    });
    forEachIn("inputs", root, [&](unsigned int uid, const TiXmlElement& element) {
        Input input{numberOf<int>(element, "type"), numbersOf<Uids>(element, "alteroutputs"), push};
        const auto numbers = numbersOf<std::vector<float>>(element, "default");
        std::copy_n(numbers.begin(), std::min(numbers.size(), input.value.size()), input.value.begin());
        if (componentCount(input.type) > 0) // the library, too, passes over those without a type
            program.inputs[uid] = input;
    });
    return program;
}

// "Levels follow each other in the buffer, full size first, rows tightly packed, the first row at the top."
// The format is only told: this engine does not convert.
SubstanceTexture paint(const Program& program, unsigned int outputUid) {
    Value colour{0, 0, 0, 1};
    for (const auto& [uid, input] : program.inputs)
        for (std::size_t i = 0; i < 3 && input.alters.count(outputUid) > 0; ++i) colour[i] += input.value[i];
    const Output& output = program.outputs.at(outputUid);
    const auto levels = static_cast<unsigned char>(std::clamp(output.mipmaps, 1u, 7u)); // 64 x 64 to 1 x 1
    unsigned int size = 0;
    for (unsigned int level = 0; level < levels; ++level) size += 4 * (64u >> level) * (64u >> level);
    auto* const bytes = new unsigned char[size];
    for (std::size_t i = 0; i < size; ++i) // what is no number is 0
        bytes[i] = static_cast<unsigned char>(255 * std::fmin(std::fmax(colour[i % 4], 0.0f), 1.0f));
    return {bytes, 64, 64, static_cast<unsigned char>(output.format), 0, levels};
}

} // namespace own
