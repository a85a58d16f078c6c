// The sample packages, compiled. Whoever includes this says in KVSUBSTANCE_SAMPLE_SOURCES where they are.
#pragma once

#include "embedded/compiler/Compiler.h"
#include "embedded/program/Package.h"
#include "tests/ReadFile.h"

#include <map>
#include <stdexcept>

namespace embedded {

// The assemblies by name, so that their order is the same on every machine.
inline std::map<std::string, std::vector<unsigned char>> sampleAssemblies() {
    std::map<std::string, std::vector<unsigned char>> assemblies;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(KVSUBSTANCE_SAMPLE_SOURCES)) {
        if (entry.path().extension() != ".xml") continue;
        const CompileResult compiled = compilePackage(readFile(entry.path()));
        const auto package = decodePackage(compiled.package.data(), compiled.package.size());
        if (!package) throw std::runtime_error(entry.path().string() + " does not compile");
        assemblies[entry.path().stem().string()] = package->assembly;
    }
    return assemblies;
}

} // namespace embedded
