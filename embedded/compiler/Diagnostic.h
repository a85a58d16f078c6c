// What the compiler has to say about a source.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace embedded {

// Counted from 1.
struct SourcePlace {
    int line = 1;
    int column = 1;
};

struct Diagnostic {
    enum class Severity { Warning, Error };

    Severity severity = Severity::Error;
    SourcePlace place;
    std::string element; // such as: node "stone", attribute mode
    std::string message; // what is wrong, what was expected
};

// One line, such as: wall.xml:12:5: error: node "stone", attribute mode: ...
std::string toString(const Diagnostic& diagnostic, std::string_view file);

class Diagnostics {
public:
    void error(SourcePlace place, std::string element, std::string message);
    void warning(SourcePlace place, std::string element, std::string message);
    bool hasErrors() const;

    // In the order of their places.
    std::vector<Diagnostic> sorted() const;

private:
    std::vector<Diagnostic> diagnostics;
};

} // namespace embedded
