// The package compiler: an author's XML source (see docs/package-source.md) becomes a package file.
#pragma once

#include "embedded/compiler/Diagnostic.h"
#include "embedded/compiler/OutputStatement.h"

#include <string_view>
#include <vector>

namespace embedded {

struct CompileResult {
    std::vector<unsigned char> package;  // empty when there are errors
    std::vector<Diagnostic> diagnostics; // all errors and warnings of the source, in the order of their lines
    std::vector<OutputStatement>
        outputs; // one for each output, in the order of the source; none after errors
};

// The same source always gives the same bytes.
CompileResult compilePackage(std::string_view source);

} // namespace embedded
