// Packages from sources.
#pragma once

#include "embedded/compiler/Compiler.h"
#include "tests/Hosting.h"

#include <stdexcept>

namespace hosting {

inline kv::vector<char> compile(const std::string& source) {
    const embedded::CompileResult result = embedded::compilePackage(source);
    if (!result.diagnostics.empty())
        throw std::runtime_error(toString(result.diagnostics.front(), "package"));
    return {result.package.begin(), result.package.end()};
}

} // namespace hosting
