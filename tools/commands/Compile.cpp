// kvsubstance compile: an author's source becomes a package.

#include "embedded/compiler/Compiler.h"
#include "tools/AtomicFile.h"
#include "tools/Failure.h"
#include "tools/FileContent.h"
#include "tools/commands/Commands.h"

#include <iostream>
#include <memory>

namespace tool {
namespace {

struct Options {
    std::string source;
    std::string package;
};

// One line for each output; where there are several graphs, below the graph's URL.
void printStatements(const std::vector<embedded::OutputStatement>& outputs) {
    const bool hasSeveralGraphs = !outputs.empty() && outputs.front().graph != outputs.back().graph;
    std::string graph;
    for (const embedded::OutputStatement& output : outputs) {
        if (hasSeveralGraphs && output.graph != graph) std::cout << "graph " << output.graph << "\n";
        graph = output.graph;
        std::cout << toString(output) << "\n";
    }
}

int run(const Options& options) {
    checkDestination(options.package, {options.source});
    const kv::vector<char> source = readFileContent(options.source);
    const embedded::CompileResult result = embedded::compilePackage(asText(source));
    for (const embedded::Diagnostic& diagnostic : result.diagnostics)
        std::cerr << toString(diagnostic, options.source) << "\n";
    if (result.package.empty()) return Failed;
    const auto* const bytes = reinterpret_cast<const char*>(result.package.data());
    writeFileAtomically(options.package, {bytes, result.package.size()});
    printStatements(result.outputs);
    return Succeeded;
}

} // namespace

void addCompile(CLI::App& app, int& status) {
    const auto options = std::make_shared<Options>();
    CLI::App* const command =
        app.add_subcommand("compile", "Check a package source and make a package of it");
    command->add_option("SOURCE", options->source, "The source, an XML file")->type_name("")->required();
    command->add_option("-o,--output", options->package, "The package to write")
        ->type_name("PACKAGE")
        ->required();
    command->footer("Says of each output whether it tiles. Nothing is written when there are errors.\n"
                    "Example: kvsubstance compile brick_wall.xml -o brick_wall.kvpkg");
    command->callback([options, &status] { status = run(*options); });
}

} // namespace tool
