// kvsubstance info: what is in a package.

#include "tools/GraphSummary.h"
#include "tools/PackageFile.h"
#include "tools/ProgramSummary.h"
#include "tools/commands/Commands.h"

#include <iostream>
#include <memory>

namespace tool {
namespace {

struct Options {
    std::string package;
    bool asJson = false;
};

void run(const Options& options) {
    const PackageFile package = readPackageFile(options.package);
    std::vector<GraphSummary> graphs;
    for (const auto& graph : package.graphs) graphs.push_back(summarize(graph));
    addProgramFacts(package, graphs);
    if (options.asJson) {
        nlohmann::ordered_json json{{"uid", package.uid}, {"graphs", nlohmann::ordered_json::array()}};
        for (const GraphSummary& graph : graphs) json["graphs"].push_back(toJson(graph));
        printJson(std::cout, json);
        return;
    }
    std::cout << "package " << options.package << ", uid " << package.uid << "\n";
    for (const GraphSummary& graph : graphs) {
        std::cout << "\n";
        printSummary(std::cout, graph);
    }
}

} // namespace

void addInfo(CLI::App& app, int&) {
    const auto options = std::make_shared<Options>();
    CLI::App* const command = app.add_subcommand(
        "info", "Show a package's graphs, inputs, outputs and presets, and whether it tiles");
    command->add_option("PACKAGE", options->package, "The package")->type_name("")->required();
    command->add_flag("--json", options->asJson, "Print everything as JSON");
    command->footer("Example: kvsubstance info brick_wall.kvpkg");
    command->callback([options] { run(*options); });
}

} // namespace tool
