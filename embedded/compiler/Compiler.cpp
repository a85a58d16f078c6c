#include "embedded/compiler/Compiler.h"

#include "embedded/compiler/DescriptionWriter.h"
#include "embedded/compiler/SourceDocument.h"
#include "embedded/compiler/SourceReader.h"
#include "embedded/compiler/Suggestion.h"
#include "embedded/compiler/Uid.h"
#include "embedded/program/Assembly.h"
#include "embedded/program/Package.h"
#include "embedded/program/Verifier.h"

#include <map>

namespace embedded {

namespace {

std::uint32_t packageUid(const std::vector<SourceGraph>& graphs) {
    std::vector<std::string_view> words = {"package"};
    for (const SourceGraph& graph : graphs) words.push_back(graph.url);
    return deriveUid(words);
}

// Different names can have one hash, though hardly ever.
void checkUids(const std::vector<SourceGraph>& graphs, Diagnostics& diagnostics) {
    std::map<std::uint32_t, std::string> owners;
    const auto check = [&](std::uint32_t uid, SourcePlace place, const std::string& name) {
        const auto [owner, isNew] = owners.emplace(uid, name);
        if (!isNew)
            diagnostics.error(place, name, "has the same uid as " + owner->second + "; rename one of them");
    };
    for (const SourceGraph& graph : graphs) {
        for (const SourceInput& input : graph.inputs)
            check(inputUid(graph, input), input.place, "input " + quoted(input.identifier));
        for (const SourceOutput& output : graph.outputs)
            check(outputUid(graph, output), output.place, "output " + quoted(output.identifier));
    }
}

// All but the diagnostics.
CompileResult compile(std::string_view source, Diagnostics& diagnostics) {
    const auto document = parseSource(source, diagnostics);
    if (!document) return {};
    const std::vector<SourceGraph> graphs = readSource(*document, diagnostics);

    Program program;
    std::vector<AlteredOutputs> altered;
    std::vector<std::string> nodeNames;
    altered.reserve(graphs.size());
    for (const SourceGraph& graph : graphs)
        altered.push_back(appendGraph(graph, program, nodeNames, diagnostics));
    if (diagnostics.hasErrors()) return {};

    checkUids(graphs, diagnostics);
    program.uid = packageUid(graphs);
    for (const ProgramProblem& problem : verify(program))
        diagnostics.error({}, "program, " + problem.place, problem.reason);
    if (diagnostics.hasErrors()) return {};
    CompileResult result;
    result.package = encodePackage({writeDescription(program.uid, graphs, altered), encodeAssembly(program)});
    result.outputs = stateOutputs(program, graphs, nodeNames);
    return result;
}

} // namespace

CompileResult compilePackage(std::string_view source) {
    Diagnostics diagnostics;
    CompileResult result = compile(source, diagnostics);
    result.diagnostics = diagnostics.sorted();
    return result;
}

} // namespace embedded
