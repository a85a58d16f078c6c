#include "tools/MaterialOptions.h"

#include "embedded/compiler/Literal.h"
#include "embedded/compiler/Suggestion.h"
#include "framework/description/ChannelUsage.h"
#include "tools/Failure.h"
#include "tools/FileContent.h"
#include "tools/InputValue.h"
#include "tools/PassThroughTop.h"
#include "tools/Preset.h"
#include "tools/Stacking.h"

#include <algorithm>
#include <iostream>

namespace tool {
namespace {

constexpr const char* usualChannel = "diffuse";

// The exponent of a power of two from 1 to maxPictureSide.
std::optional<int> exponentOf(std::string_view text) {
    const auto number = embedded::parseInteger(text);
    for (int exponent = 0; number && 1 << exponent <= maxPictureSide; ++exponent)
        if (*number == 1 << exponent) return exponent;
    return std::nullopt;
}

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

void checkChannel(const MaterialOptions& options) {
    if (options.channel.empty()) return;
    if (!options.top.empty())
        throw UsageError("--channel shows a channel of the bottom alone; leave out --channel or " +
                         options.top);
    const char* const* const names = SubstanceAir::channelUsageNames();
    const std::vector<std::string> usages(names, names + SubstanceAir::ChannelUsageCount);
    if (std::find(usages.begin(), usages.end(), options.channel) == usages.end())
        throw UsageError("--channel " + options.channel + ": there is no such usage" +
                         embedded::suggestion(options.channel, usages));
}

std::optional<std::pair<int, int>> checkOptions(const MaterialOptions& options) {
    checkChannel(options);
    for (const std::string& assignment : options.assignments)
        splitAssignment(assignment, "--set", "IDENTIFIER=V[,V...]");
    return parseSize(options.size);
}

PackageFile makeTop(const MaterialOptions& options, const PackageFile& bottom) {
    if (!options.top.empty()) return readPackageFile(options.top);
    if (!options.channel.empty() && !offersChannel(bottom.graph(), options.channel))
        throw Failure(bottom.name + ": has no output for " + options.channel +
                      embedded::suggestion("", outputIdentifiers(bottom.graph())));
    return makePassThroughTop(options.channel.empty() ? usualChannel : options.channel);
}

} // namespace

void MaterialOptions::addTo(CLI::App& command) {
    const auto option = [&command](const char* name, std::string& value, const char* type, const char* text) {
        return command.add_option(name, value, text)->type_name(type);
    };
    option("BOTTOM", bottom, "", "The package whose outputs are used")->required();
    option("TOP", top, "",
           "The package stacked on it, whose output \"Output\" is the result; without it a channel of the "
           "bottom is "
           "shown");
    option("--size", size, "N|WxH", "Pixels, powers of two from 1 to 16384; else what the bottom says");
    option("--channel", channel, "USAGE", "What to show when there is no TOP, such as normal; else diffuse");
    option("--preset", preset, "NAME", "Start from a preset; bottom:NAME or top:NAME when both have it");
    option("--state", stateFile, "FILE", "Then apply the values that --save-state has written to this file");
    command
        .add_option("--set", assignments,
                    "Then set an input; a colour as #rrggbb, a choice also by its text; repeatable")
        ->type_name("IDENTIFIER=V[,V...]")
        ->allow_extra_args(false);
}

std::pair<std::string, std::string> splitAssignment(const std::string& text, const std::string& option,
                                                    const std::string& form) {
    const size_t equals = text.find('=');
    if (equals == 0 || equals == std::string::npos || equals + 1 == text.size())
        throw UsageError(option + " " + text + ": expected " + form);
    return {text.substr(0, equals), text.substr(equals + 1)};
}

PreparedMaterial::PreparedMaterial(const MaterialOptions& options)
    : resolution(checkOptions(options))
    , bottomPackage(readPackageFile(options.bottom))
    , topPackage(makeTop(options, bottomPackage))
    , session(bottomPackage.bytes, topPackage.bytes) {
    checkConnections(options);
    if (!options.preset.empty())
        for (const std::string& remark : applyPreset(options.preset, bottomPackage, topPackage, material()))
            std::cerr << "note: " << remark << "\n";
    if (!options.stateFile.empty()) applyState(options.stateFile);
    for (const std::string& assignment : options.assignments) {
        const auto [identifier, text] = splitAssignment(assignment, "--set", "");
        kvSubstance::SubstanceInput& input = requireInput(*material(), identifier, "--set " + identifier);
        if (isAmbiguous(*material(), identifier))
            std::cerr << "note: --set " << identifier
                      << ": both packages have an input of that name, and only one "
                         "of them is set\n";
        setInputValue(material(), input, parseInputValue(input, text, "--set " + identifier));
    }
    if (resolution && !session.setResolution(resolution->first, resolution->second))
        throw Failure(bottomPackage.name +
                      ": has no input \"$resolution\", so its size cannot be changed; leave out "
                      "--size");
}

void PreparedMaterial::checkConnections(const MaterialOptions& options) const {
    if (hasConnections(*material())) return;
    const std::string outputs = embedded::suggestion("", outputIdentifiers(bottomPackage.graph()));
    if (options.top.empty())
        throw Failure(bottomPackage.name + ": has no output for " + usualChannel +
                      " to show; name another usage with "
                      "--channel" +
                      outputs);
    std::cerr << "note: " << topPackage.name << " uses nothing of " << bottomPackage.name
              << ": no name or usage fits; see --explain\n";
}

void PreparedMaterial::applyState(const std::string& path) {
    const kv::vector<char> content = readFileContent(path);
    const std::string_view text = asText(content);
    const std::string url = material()->getPackageURL().asChar();
    std::string header(text.substr(0, text.find('\n')));
    if (header != url) {
        for (char& c : header)
            if (c < ' ' || c > '~') c = '?';
        throw Failure(path + ":1: the values are those of " + embedded::quoted(header.substr(0, 80)) +
                      ", but the material is " + embedded::quoted(url));
    }
    material()->applyStateString(kvString::CString(text.data(), text.size()));
}

Picture PreparedMaterial::render() {
    std::optional<Picture> picture = session.render();
    if (!picture || isOutOfDate(*material()))
        throw Failure(whyNoTexture(bottomPackage, topPackage, *material()));
    return std::move(*picture);
}

} // namespace tool
