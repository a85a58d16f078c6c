// kvsubstance verify: renders a picture again, as its receipt says, and compares.

#include "embedded/engine/Revision.h"
#include "tools/Failure.h"
#include "tools/GraphSession.h"
#include "tools/MaterialOptions.h"
#include "tools/PngFile.h"
#include "tools/commands/Commands.h"

#include <algorithm>
#include <iostream>
#include <memory>
#include <optional>

namespace tool {
namespace {

struct Options {
    std::string picture;
    std::string bottom;
    std::string top;
};

using Differences = std::vector<std::string>;

std::string pixelText(const Texture& texture, size_t index) {
    std::string text;
    const unsigned char* const sample = &texture.samples[index * texture.bytesPerPixel()];
    for (int c = 0; c < texture.channels; ++c)
        text +=
            (c ? "," : "") +
            std::to_string(texture.bytesPerSample == 1 ? sample[c] : sample[2 * c] * 256 + sample[2 * c + 1]);
    return text;
}

void comparePixels(const Texture& picture, const Texture& rendered, Differences& differences) {
    const size_t size = picture.bytesPerPixel();
    const size_t count = picture.samples.size() / size;
    std::optional<size_t> first;
    size_t different = 0;
    for (size_t i = 0; i < count; ++i) {
        const auto pixel = picture.samples.begin() + static_cast<std::ptrdiff_t>(i * size);
        if (std::equal(pixel, pixel + static_cast<std::ptrdiff_t>(size),
                       rendered.samples.begin() + static_cast<std::ptrdiff_t>(i * size)))
            continue;
        if (!first) first = i;
        ++different;
    }
    if (!first) return;
    const auto width = static_cast<size_t>(picture.width);
    differences.push_back("pixels: " + std::to_string(different) + " of " + std::to_string(count) +
                          ", the first at x " + std::to_string(*first % width) + ", y " +
                          std::to_string(*first / width) + ": " + pixelText(picture, *first) +
                          " in the picture, " + pixelText(rendered, *first) + " rendered");
}

// What the picture shows against what was rendered. True when the pixels are the same.
bool compare(const Texture& picture, const Texture& rendered, Differences& differences) {
    const size_t before = differences.size();
    const auto differ = [&](const char* what, const std::string& inPicture, const std::string& inRendered) {
        if (inPicture != inRendered)
            differences.push_back(std::string(what) + ": " + inPicture + " in the picture, " + inRendered +
                                  " rendered");
    };
    differ("size", describeSize(picture), describeSize(rendered));
    const bool isComparable = picture.width == rendered.width && picture.height == rendered.height &&
                              picture.channels == rendered.channels &&
                              picture.bytesPerSample == rendered.bytesPerSample;
    if (isComparable) comparePixels(picture, rendered, differences);
    const bool isSame = isComparable && differences.size() == before;
    differ("layout", describeLayout(picture), describeLayout(rendered));
    return isSame;
}

// That the picture is what its receipt was written for.
void checkPicture(const Texture& picture, const Receipt& receipt, Differences& differences) {
    if (picture.width != receipt.width || picture.height != receipt.height ||
        digestOf(picture) != receipt.pixels)
        differences.emplace_back("picture: it was changed after its receipt was written");
}

void checkPackage(const std::string& path, const PackageMark& mark, Differences& differences) {
    const PackageMark given = markOf(readPackageFile(path));
    if (given.digest != mark.digest)
        differences.push_back("package: " + path + " is not the " + mark.name +
                              " that the picture was made of; its digest is " + given.digest + ", not " +
                              mark.digest);
}

void checkPackages(const Options& options, const Receipt& receipt, Differences& differences) {
    const size_t needed = receipt.packages.size();
    if (needed < 1 || needed > 2)
        throw Failure(options.picture + ": its receipt is damaged, so it cannot be made again");
    if (options.bottom.empty())
        throw Failure(options.picture + ": name the package that it was made of, " +
                      receipt.packages.front().name);
    if (needed == 2 && options.top.empty())
        throw Failure(options.picture + ": it was made with a top; name that package too, " +
                      receipt.packages.back().name);
    if (needed == 1 && !options.top.empty())
        throw Failure(options.picture + ": it was made of one package, " + receipt.packages.front().name +
                      "; leave out " + options.top);
    checkPackage(options.bottom, receipt.packages.front(), differences);
    if (needed == 2) checkPackage(options.top, receipt.packages.back(), differences);
}

void applyReceipt(const GraphInstances& graphs, const Receipt& receipt, Differences& differences) {
    for (const std::string& refusal : applyValues(graphs, receipt.values))
        differences.push_back("values: " + refusal);
}

Texture renderMap(const Options& options, const Receipt& receipt, Differences& differences) {
    const PackageFile package = readPackageFile(options.bottom);
    const auto graph = std::find_if(package.graphs.begin(), package.graphs.end(), [&](const auto& candidate) {
        return candidate.packageUrl == receipt.graph;
    });
    if (graph == package.graphs.end())
        throw Failure(package.name + ": has no graph " + receipt.graph + ", of which the picture shows " +
                      receipt.output);
    GraphSession session(package, *graph, {});
    session.selectOutput(receipt.output);
    applyReceipt(session.graphs(), receipt, differences);
    return std::move(session.render().front().texture);
}

Texture renderMaterial(const Options& options, const Receipt& receipt, Differences& differences) {
    PreparedMaterial prepared({options.bottom, options.top, receipt.channel, {}});
    applyReceipt(prepared.material()->getGraphInstances(), receipt, differences);
    return prepared.render();
}

int report(const Options& options, const Differences& differences, bool hasSamePixels) {
    if (differences.empty()) {
        std::cout << "equal: " << options.picture << "\n";
        return Succeeded;
    }
    for (const std::string& difference : differences) std::cout << "differs: " << difference << "\n";
    if (hasSamePixels) std::cout << "equal all the same: the pixels\n";
    return Failed;
}

int run(const Options& options) {
    const PngContent content = readPng(options.picture);
    if (content.receipt.empty())
        throw Failure(options.picture + ": has no receipt; only pictures that kvsubstance has written can be "
                                        "verified");
    const Receipt receipt = parseReceipt(content.receipt, options.picture);
    Differences differences;
    checkPicture(content.texture, receipt, differences);
    if (receipt.isSheet()) return report(options, differences, false);

    checkPackages(options, receipt, differences);
    if (receipt.engineRevision != embedded::engineRevision)
        differences.push_back("engine: revision " + std::to_string(receipt.engineRevision) +
                              " made the picture, this tool has revision " +
                              std::to_string(embedded::engineRevision));
    bool hasSamePixels = false;
    try {
        const Texture rendered = receipt.isMap() ? renderMap(options, receipt, differences)
                                                 : renderMaterial(options, receipt, differences);
        hasSamePixels = compare(content.texture, rendered, differences);
    } catch (const UsageError& error) { // nobody gave the option that it speaks of
        throw Failure(options.picture + ": its receipt makes no sense: " + error.what());
    } catch (const Failure& failure) { // no wonder, if something differs
        if (differences.empty()) throw;
        differences.emplace_back(failure.what());
    }
    return report(options, differences, hasSamePixels);
}

} // namespace

void addVerify(CLI::App& app, int& status) {
    const auto options = std::make_shared<Options>();
    CLI::App* const command =
        app.add_subcommand("verify", "Render a picture again, as its receipt says, and compare");
    command->add_option("FILE.png", options->picture, "A picture that kvsubstance has written")
        ->type_name("")
        ->required();
    command->add_option("BOTTOM", options->bottom, "The package that it was made of; sheets need none")
        ->type_name("");
    command->add_option("TOP", options->top, "The package that was stacked on it, if one was")->type_name("");
    command->footer(
        "Prints \"equal\", or a line for everything that differs, and then ends with status 1. Of "
        "a sheet\nonly the pixels are checked.\n"
        "Example: kvsubstance verify mossy_wall.png brick_wall.kvpkg moss_overgrowth.kvpkg");
    command->callback([options, &status] { status = run(*options); });
}

} // namespace tool
