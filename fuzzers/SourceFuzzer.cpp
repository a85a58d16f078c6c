// Any text as a package source. The compiler tells errors with their places, or gives a package, the same
// each time, which the library loads with all its graphs and which the engine renders.
#include "embedded/compiler/Compiler.h"
#include "embedded/program/Assembly.h"
#include "embedded/program/Package.h"
#include "framework/description/PackageDesc.h"
#include "fuzzers/Model.h"
#include "fuzzers/SmallRender.h"

#include <set>
#include <string_view>

namespace {

using namespace fuzzing;
using embedded::Diagnostic;

void checkDiagnostics(const embedded::CompileResult& result) {
    bool hasErrors = false;
    for (const Diagnostic& diagnostic : result.diagnostics) {
        hasErrors = hasErrors || diagnostic.severity == Diagnostic::Severity::Error;
        require(diagnostic.place.line >= 1 && diagnostic.place.column >= 1, "places are counted from 1");
    }
    require(hasErrors == result.package.empty(), "there is a package, or an error");
    require(!hasErrors || result.outputs.empty(), "nothing is stated about a broken source");
}

// The library loads the package, and whatever is described is in the program.
void checkDescribed(const Bytes& package, const embedded::Program& program, std::size_t outputCount) {
    const SubstanceAir::PackageDesc loaded(package.data(), package.size(), nullptr);
    require(!loaded.graphs().empty() && loaded.asmUid() == program.uid, "the library loads the package");
    std::set<unsigned int> outputs;
    std::set<std::pair<unsigned int, unsigned int>> inputs; // with their types
    for (const auto& output : program.outputs) outputs.insert(output.uid);
    for (const auto& input : program.inputs) inputs.emplace(input.uid, static_cast<unsigned int>(input.type));
    std::size_t described = 0;
    for (const SubstanceAir::GraphDesc& graph : loaded.graphs()) {
        described += graph.outputs.size();
        for (const auto& output : graph.outputs)
            require(outputs.count(output.uid) > 0, "a described output is in the program");
        for (const auto& input : graph.inputs)
            require(inputs.count({input->uid, input->type}) > 0, "a described input is in the program");
    }
    require(described == outputCount, "every output is described");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view source(reinterpret_cast<const char*>(data), size);
    const embedded::CompileResult result = embedded::compilePackage(source);
    checkDiagnostics(result);
    if (result.package.empty()) return 0;
    require(embedded::compilePackage(source).package == result.package, "compiling is repeatable");
    const auto package = embedded::decodePackage(result.package.data(), result.package.size());
    require(package.has_value(), "a package can be read");
    Choices values(data, size);
    require(renderSmall(package->assembly.data(), package->assembly.size(), values), "the engine runs it");
    const auto program = embedded::decodeAssembly(package->assembly.data(), package->assembly.size());
    checkDescribed(result.package, *program, result.outputs.size());
    resetRenderer();
    return 0;
}
