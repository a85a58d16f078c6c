// kvsubstance gallery: packages shown on a page of HTML.

#include "tools/AtomicFile.h"
#include "tools/Failure.h"
#include "tools/FileNames.h"
#include "tools/GalleryPage.h"
#include "tools/GraphSession.h"
#include "tools/MaterialOptions.h"
#include "tools/PngFile.h"
#include "tools/Progress.h"
#include "tools/commands/Commands.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <set>

namespace tool {
namespace {

constexpr const char* pageName = "gallery.html";
constexpr const char* pictureFolder = "gallery"; // beside the page, with a folder for each package

constexpr const char* chiefSize = "512"; // pixels a side
constexpr const char* presetSize = "256";

struct Options {
    std::vector<std::string> packages;
    std::string folder;
    std::string below;
};

bool takesImages(const PackageFile& package) {
    const auto& inputs = package.graph().inputs;
    return std::any_of(inputs.begin(), inputs.end(), [](const auto& input) { return input->isImage(); });
}

bool hasFixedSize(const PackageFile& package) {
    const auto& inputs = package.graph().inputs;
    return std::none_of(inputs.begin(), inputs.end(),
                        [](const auto& input) { return input->identifier == "$resolution"; });
}

// The pictures of one package: of its first graph, which is the one that materials are made of.
class SampleRendering {
public:
    // Below is what a package that takes images is shown on; null when there is nothing.
    SampleRendering(const PackageFile& packageFile, const PackageFile* below, const std::string& outputFolder,
                    std::string sampleName)
        : package(packageFile)
        , bottom(below && takesImages(packageFile) && below->uid != packageFile.uid ? below : nullptr)
        , folder(outputFolder)
        , name(std::move(sampleName)) {
        makeFolder(inFolder(inFolder(folder, pictureFolder), name));
    }

    GallerySample render() {
        GallerySample sample{name, summarize(package.graph()), {}, {}, {}};
        renderMaps(sample);
        if (bottom) sample.picture = renderOverBottom("picture", chiefSize, "");
        sample.picture.title = sample.graph.label;
        sample.picture.text = bottom ? "over " + stemOf(bottom->name) : "";
        for (const SubstanceAir::Preset& preset : package.graph().presets) {
            const std::string file = "preset_" + preset.label;
            sample.presets.push_back(bottom ? renderOverBottom(file, presetSize, "top:" + preset.label)
                                            : renderPreset(file, preset.label));
            sample.presets.back().title = preset.label;
            sample.presets.back().text = preset.description;
        }
        return sample;
    }

private:
    GalleryPicture write(const std::string& wantedName, const Texture& texture, const Receipt& receipt) {
        const std::string file =
            std::string(pictureFolder) + "/" + name + "/" + files.choose(wantedName) + ".png";
        writePng(inFolder(folder, file), texture, toText(receipt));
        return {file, "", ""};
    }

    void renderMaps(GallerySample& sample) {
        const std::string& chief = chiefOutput(package.graph()).identifier;
        GraphSession session(package, package.graph(), {sizeAlone(chiefSize), "", "", {}});
        for (const auto& [output, texture, receipt] : session.render()) {
            GalleryPicture picture = write(output->identifier, texture, receipt);
            picture.title = output->label.empty() ? output->identifier : output->label;
            picture.text = describeLayout(texture);
            if (output->identifier == chief) sample.picture = picture;
            sample.maps.push_back(std::move(picture));
        }
    }

    GalleryPicture renderPreset(const std::string& file, const std::string& preset) {
        GraphSession session(package, package.graph(), {sizeAlone(presetSize), preset, "", {}});
        session.selectOutput(chiefOutput(package.graph()).identifier);
        const RenderedOutput rendered = std::move(session.render().front());
        return write(file, rendered.texture, rendered.receipt);
    }

    GalleryPicture renderOverBottom(const std::string& file, const char* size, const std::string& preset) {
        const bool isFixed = hasFixedSize(package) && hasFixedSize(*bottom);
        PreparedMaterial prepared({bottom->name, package.name, "", {isFixed ? "" : size, preset, "", {}}});
        const Texture texture = prepared.render();
        return write(file, texture, prepared.receiptFor(texture));
    }

    const char* sizeAlone(const char* wanted) const { return hasFixedSize(package) ? "" : wanted; }

    const PackageFile& package;
    const PackageFile* bottom;
    const std::string& folder;
    std::string name;
    FileNames files;
};

std::vector<PackageFile> readPackages(const std::vector<std::string>& paths) {
    std::vector<PackageFile> packages;
    std::set<unsigned int> uids;
    for (const std::string& path : paths) {
        packages.push_back(readPackageFile(path));
        if (!uids.insert(packages.back().uid).second)
            throw Failure(path + ": another package that was given has its uid; show it in another gallery");
    }
    return packages;
}

void run(const Options& options) {
    makeFolder(options.folder);
    const std::string page = inFolder(options.folder, pageName);
    checkDestination(page);
    const std::vector<PackageFile> packages = readPackages(options.packages);
    std::optional<PackageFile> chosen;
    if (!options.below.empty()) chosen = readPackageFile(options.below);
    const auto first = std::find_if_not(packages.begin(), packages.end(), takesImages);
    const PackageFile* const below = chosen ? &*chosen : first == packages.end() ? nullptr : &*first;

    std::vector<GallerySample> samples;
    FileNames names;
    Progress progress(static_cast<int>(packages.size()));
    for (const PackageFile& package : packages) {
        const std::string name = names.choose(stemOf(package.name));
        samples.push_back(SampleRendering(package, below, options.folder, name).render());
        progress.advance(package.name);
    }
    writeFileAtomically(page, makeGalleryPage(samples));
}

} // namespace

void addGallery(CLI::App& app, int&) {
    const auto options = std::make_shared<Options>();
    CLI::App* const command =
        app.add_subcommand("gallery", "Show packages, their outputs, presets and inputs on a page of HTML");
    command->add_option("PACKAGE", options->packages, "The packages, bottoms and tops")
        ->type_name("")
        ->required();
    command
        ->add_option("-o,--output", options->folder,
                     "The folder for gallery.html and, below gallery/, its pictures; created when missing")
        ->type_name("FOLDER")
        ->required();
    command
        ->add_option("--over", options->below,
                     "The package that tops are shown on; else the first that takes no images")
        ->type_name("BOTTOM");
    command->footer("The pictures have 512 pixels a side, those of presets 256.\n"
                    "Example: kvsubstance gallery samples/*.kvpkg -o out");
    command->callback([options] { run(*options); });
}

} // namespace tool
