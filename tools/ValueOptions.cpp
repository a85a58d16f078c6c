#include "tools/ValueOptions.h"

#include "bridge/Synchronisation.h"
#include "embedded/compiler/Literal.h"
#include "embedded/compiler/Suggestion.h"
#include "support/Numbers.h"
#include "tools/Failure.h"
#include "tools/FileContent.h"
#include "tools/InputValue.h"
#include "tools/Picture.h"

#include <iostream>
#include <optional>
#include <sstream>

namespace tool {
namespace {

using MaterialReference = kv::Reference<kvSubstance::Substance>;

// The exponent of a power of two from 1 to maxPictureSide.
std::optional<int> exponentOf(std::string_view text) {
    const auto number = embedded::parseInteger(text);
    for (int exponent = 0; number && 1 << exponent <= maxPictureSide; ++exponent)
        if (*number == 1 << exponent) return exponent;
    return std::nullopt;
}

// Base-2 logarithms of width and height.
std::optional<std::pair<int, int>> parseSize(const std::string& text) {
    if (text.empty()) return std::nullopt;
    const size_t cross = text.find_first_of("xX");
    const auto width = exponentOf(std::string_view(text).substr(0, cross));
    const auto height =
        cross == std::string::npos ? width : exponentOf(std::string_view(text).substr(cross + 1));
    if (!width || !height)
        throw UsageError("--size " + text + ": expected one or two powers of two from 1 to " +
                         std::to_string(maxPictureSide) + ", such as 512 or 512x256");
    return std::pair(*width, *height);
}

// Whether the URL is that of the material, or, for a graph alone, of a stack that the graph is part of.
bool speaksOf(const std::string& url, const std::string& material, bool isStack) {
    if (url == material || isStack) return url == material;
    return url.size() > material.size() &&
           (url.compare(0, material.size() + 1, material + "/") == 0 ||
            url.compare(url.size() - material.size() - 1, std::string::npos, "/" + material) == 0);
}

// Whether the line is one that a saved state has: "17d f2 0.5 1".
bool isStateLine(const std::string& line) {
    std::istringstream pieces(line);
    std::string uid, format;
    pieces >> uid >> format;
    unsigned int number = 0;
    if (uid.empty() || uid.back() != 'd' || !support::convertWhole(uid.substr(0, uid.size() - 1), number))
        return false;
    if (format.size() != 2 || (format[0] != 'i' && format[0] != 'f') || format[1] < '1' || format[1] > '4')
        return false;
    int count = 0;
    for (std::string piece; pieces >> piece; ++count) {
        float real = 0;
        int whole = 0;
        if (format[0] == 'i' ? !support::convertWhole(piece, whole) : !support::convertWhole(piece, real))
            return false;
    }
    return count == format[1] - '0';
}

// The library passes over what it cannot read.
void checkStateLines(const std::string& path, std::string_view text) {
    std::istringstream lines{std::string(text)};
    std::string line;
    for (int number = 1; std::getline(lines, line); ++number) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (number > 1 && !line.empty() && !isStateLine(line))
            throw Failure(path + ":" + std::to_string(number) + ": " + embedded::quoted(line.substr(0, 80)) +
                          " is no value; expected a line such as \"17d f2 0.5 1\", as \"render "
                          "--save-state\" writes it");
    }
}

void applyState(const std::string& path, const MaterialReference& material, bool isStack) {
    const kv::vector<char> content = readFileContent(path);
    const std::string_view text = asText(content);
    const size_t headerSize = text.substr(0, text.find('\n')).size();
    const std::string url = material->getPackageURL().asChar();
    std::string header(text.substr(0, headerSize));
    if (!speaksOf(header, url, isStack)) {
        for (char& c : header)
            if (c < ' ' || c > '~') c = '?';
        throw Failure(path + ":1: the values are those of " + embedded::quoted(header.substr(0, 80)) +
                      ", but the material is " + embedded::quoted(url));
    }
    checkStateLines(path, text);
    const std::string state = url + std::string(text.substr(headerSize));
    material->applyStateString(kvString::CString(state.data(), state.size()));
}

void applyAssignment(const std::string& assignment, const MaterialReference& material) {
    const auto [identifier, text] = splitAssignment(assignment, "--set", "");
    const std::string place = "--set " + identifier;
    kvSubstance::SubstanceInput& input = requireInput(*material, identifier, place);
    noteIfAmbiguous(*material, identifier, place);
    setInputValue(material, input, parseInputValue(input, text, place));
}

// False when the size of the material is fixed.
bool setResolution(const MaterialReference& material, int widthExponent, int heightExponent) {
    kvSubstance::SubstanceInput* const input = material->getInput("$resolution");
    if (!input || input->getType() != kvSubstance::TypeInt2) return false;
    input->setValue2I(widthExponent, heightExponent);
    kvSubstance::syncValueFromSubstanceInputToInputInstanceBase(material, input);
    return true;
}

} // namespace

void ValueOptions::addTo(CLI::App& command) {
    command.add_option("--size", size, "Pixels, powers of two from 1 to 16384; else what the package says")
        ->type_name("N|WxH");
    command.add_option("--preset", preset, "Start from a preset")->type_name("NAME");
    command
        .add_option("--state", stateFile,
                    "Then apply the values that \"render --save-state\" has written to this file")
        ->type_name("FILE");
    command
        .add_option("--set", assignments,
                    "Then set an input; a colour as #rrggbb, a choice also by its text; repeatable")
        ->type_name("IDENTIFIER=V[,V...]")
        ->allow_extra_args(false);
}

void ValueOptions::check() const {
    for (const std::string& assignment : assignments)
        splitAssignment(assignment, "--set", "IDENTIFIER=V[,V...]");
    parseSize(size);
}

void applyOptions(const ValueOptions& options, const MaterialReference& material,
                  const MaterialGraphs& graphs, const std::string& package) {
    if (!options.preset.empty())
        for (const std::string& remark : applyPreset(options.preset, graphs, material))
            std::cerr << "note: " << remark << "\n";
    if (!options.stateFile.empty()) applyState(options.stateFile, material, graphs.top != nullptr);
    for (const std::string& assignment : options.assignments) applyAssignment(assignment, material);
    const auto resolution = parseSize(options.size);
    if (resolution && !setResolution(material, resolution->first, resolution->second))
        throw Failure(package + ": has no input \"$resolution\", so its size cannot be changed; leave out "
                                "--size");
}

std::pair<std::string, std::string> splitAssignment(const std::string& text, const std::string& option,
                                                    const std::string& form) {
    const size_t equals = text.find('=');
    if (equals == 0 || equals == std::string::npos || equals + 1 == text.size())
        throw UsageError(option + " " + text + ": expected " + form);
    return {text.substr(0, equals), text.substr(equals + 1)};
}

} // namespace tool
