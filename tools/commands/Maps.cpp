// kvsubstance maps: every output of a package becomes a picture.

#include "embedded/compiler/Suggestion.h"
#include "tools/Failure.h"
#include "tools/FileNames.h"
#include "tools/GraphSession.h"
#include "tools/PngFile.h"
#include "tools/commands/Commands.h"

#include <algorithm>
#include <iostream>
#include <memory>

namespace tool {
namespace {

using SubstanceAir::GraphDesc;

struct Options {
    std::string package;
    std::string folder;
    std::string graph;
    ValueOptions values;
};

// What comes last in a URL: "brick" of "pkg://walls/brick".
std::string shortName(const GraphDesc& graph) {
    return graph.packageUrl.substr(graph.packageUrl.find_last_of("/:") + 1);
}

bool isShortNameUnique(const PackageFile& package, const GraphDesc& graph) {
    const auto hasIt = [&](const GraphDesc& other) { return shortName(other) == shortName(graph); };
    return std::count_if(package.graphs.begin(), package.graphs.end(), hasIt) == 1;
}

std::vector<const GraphDesc*> chooseGraphs(const PackageFile& package, const Options& options) {
    std::vector<const GraphDesc*> chosen;
    std::vector<std::string> names;
    for (const GraphDesc& graph : package.graphs) {
        const bool isCalledSo = options.graph == graph.packageUrl || options.graph == shortName(graph);
        if (options.graph.empty() || isCalledSo) chosen.push_back(&graph);
        names.push_back(isShortNameUnique(package, graph) ? shortName(graph) : graph.packageUrl);
    }
    if (chosen.empty())
        throw Failure("--graph " + options.graph + ": " + package.name + " has no such graph" +
                      embedded::suggestion(options.graph, names));
    if (chosen.size() > 1 && !options.graph.empty())
        throw Failure("--graph " + options.graph + ": " + package.name +
                      " has several graphs of that name; give the URL of one" +
                      embedded::suggestion("", names));
    if (chosen.size() > 1 && options.values.areGiven())
        throw Failure(package.name +
                      ": has several graphs; choose the one that the values are for with --graph" +
                      embedded::suggestion("", names));
    return chosen;
}

void writeMaps(GraphSession& session, const std::string& folder) {
    makeFolder(folder);
    FileNames names;
    for (const auto& [output, texture, receipt] : session.render()) {
        const std::string path = inFolder(folder, names.choose(output->identifier) + ".png");
        writePng(path, texture, toText(receipt));
        std::cout << path << "  " << describeLayout(texture) << "\n";
    }
}

void run(const Options& options) {
    options.values.check();
    const PackageFile package = readPackageFile(options.package);
    const auto graphs = chooseGraphs(package, options);
    FileNames folders;
    for (const GraphDesc* const graph : graphs) {
        GraphSession session(package, *graph, options.values);
        writeMaps(session, graphs.size() == 1 ? options.folder
                                              : inFolder(options.folder, folders.choose(shortName(*graph))));
    }
}

} // namespace

void addMaps(CLI::App& app, int&) {
    const auto options = std::make_shared<Options>();
    CLI::App* const command =
        app.add_subcommand("maps", "Render every output of a package to a PNG file of its own");
    command->add_option("PACKAGE", options->package, "The package, a bottom or a top")
        ->type_name("")
        ->required();
    command->add_option("-o,--output", options->folder, "The folder for the files; created when missing")
        ->type_name("FOLDER")
        ->required();
    command->add_option("--graph", options->graph, "One graph of several, by its URL or the URL's last part")
        ->type_name("NAME");
    options->values.addTo(*command);
    command->footer("Files are named after the outputs and have their depth and channels: 8 or 16 bits, gray "
                    "or RGBA.\nSeveral graphs get a folder each.\n"
                    "Example: kvsubstance maps brick_wall.kvpkg -o brick_wall --size 2048 --preset \"Old "
                    "warehouse\"");
    command->callback([options] { run(*options); });
}

} // namespace tool
