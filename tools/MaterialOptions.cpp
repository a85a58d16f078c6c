#include "tools/MaterialOptions.h"

#include "embedded/compiler/Suggestion.h"
#include "framework/description/ChannelUsage.h"
#include "platform/engine.h"
#include "tools/Failure.h"
#include "tools/PassThroughTop.h"
#include "tools/Stacking.h"

#include <algorithm>
#include <iostream>

namespace tool {
namespace {

constexpr const char* usualChannel = "diffuse";

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

// Checks the options, before files are read.
std::string chooseChannel(const MaterialOptions& options) {
    checkChannel(options);
    options.values.check();
    if (!options.top.empty()) return "";
    return options.channel.empty() ? usualChannel : options.channel;
}

PackageFile makeTop(const MaterialOptions& options, const PackageFile& bottom) {
    if (!options.top.empty()) return readPackageFile(options.top);
    if (!options.channel.empty() && !offersChannel(bottom.graph(), options.channel))
        throw Failure(bottom.name + ": has no output for " + options.channel +
                      embedded::suggestion("", outputIdentifiers(bottom.graph())));
    return makePassThroughTop(options.channel.empty() ? usualChannel : options.channel);
}

bool hasSrgbOutput(const SubstanceAir::GraphDesc& top) {
    return std::any_of(top.outputs.begin(), top.outputs.end(), [](const SubstanceAir::OutputDesc& output) {
        return output.identifier == "Output" && (output.format & SubstanceFormatSrgb) != 0;
    });
}

} // namespace

void MaterialOptions::addTo(CLI::App& command) {
    command.add_option("BOTTOM", bottom, "The package whose outputs are used")->type_name("")->required();
    command
        .add_option("TOP", top,
                    "The package stacked on it, whose output \"Output\" is the result; without it a channel "
                    "of the bottom is shown")
        ->type_name("");
    command
        .add_option("--channel", channel, "What to show when there is no TOP, such as normal; else diffuse")
        ->type_name("USAGE");
    values.addTo(command);
    command.get_option("--preset")
        ->description("Start from a preset; bottom:NAME or top:NAME when both have "
                      "it");
}

PreparedMaterial::PreparedMaterial(const MaterialOptions& options)
    : shownChannel(chooseChannel(options))
    , bottomPackage(readPackageFile(options.bottom))
    , topPackage(makeTop(options, bottomPackage))
    , session(bottomPackage.bytes, topPackage.bytes) {
    checkConnections();
    applyOptions(options.values, material(), {&bottomPackage.graph(), &topPackage.graph()},
                 bottomPackage.name);
}

void PreparedMaterial::checkConnections() const {
    if (hasConnections(*material())) return;
    if (!shownChannel.empty())
        throw Failure(bottomPackage.name + ": has no output for " + usualChannel +
                      " to show; name another usage with --channel" +
                      embedded::suggestion("", outputIdentifiers(bottomPackage.graph())));
    std::cerr << "note: " << topPackage.name << " uses nothing of " << bottomPackage.name
              << ": no name or usage fits; see --explain\n";
}

Texture PreparedMaterial::render() {
    std::optional<Texture> texture = session.render();
    if (!texture || isOutOfDate(*material()))
        throw Failure(whyNoTexture(bottomPackage, topPackage, *material()));
    texture->isSrgb = hasSrgbOutput(topPackage.graph());
    return std::move(*texture);
}

Receipt PreparedMaterial::receiptFor(const Texture& texture) const {
    Receipt receipt;
    receipt.packages.push_back(markOf(bottomPackage));
    if (shownChannel.empty()) receipt.packages.push_back(markOf(topPackage));
    receipt.channel = shownChannel;
    receipt.values = valuesOf(material()->getGraphInstances());
    return completed(std::move(receipt), texture);
}

} // namespace tool
