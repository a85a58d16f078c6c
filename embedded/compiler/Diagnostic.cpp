#include "embedded/compiler/Diagnostic.h"

#include <algorithm>
#include <tuple>

namespace embedded {

std::string toString(const Diagnostic& diagnostic, std::string_view file) {
    const bool isError = diagnostic.severity == Diagnostic::Severity::Error;
    return std::string(file) + ":" + std::to_string(diagnostic.place.line) + ":" +
           std::to_string(diagnostic.place.column) + (isError ? ": error: " : ": warning: ") +
           diagnostic.element + ": " + diagnostic.message;
}

void Diagnostics::error(SourcePlace place, std::string element, std::string message) {
    diagnostics.push_back({Diagnostic::Severity::Error, place, std::move(element), std::move(message)});
}

void Diagnostics::warning(SourcePlace place, std::string element, std::string message) {
    diagnostics.push_back({Diagnostic::Severity::Warning, place, std::move(element), std::move(message)});
}

bool Diagnostics::hasErrors() const {
    return std::any_of(diagnostics.begin(), diagnostics.end(), [](const Diagnostic& diagnostic) {
        return diagnostic.severity == Diagnostic::Severity::Error;
    });
}

std::vector<Diagnostic> Diagnostics::sorted() const {
    auto result = diagnostics;
    std::stable_sort(result.begin(), result.end(), [](const Diagnostic& a, const Diagnostic& b) {
        return std::tie(a.place.line, a.place.column) < std::tie(b.place.line, b.place.column);
    });
    return result;
}

} // namespace embedded
