// Prints rows of texts in aligned columns.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace tool {

class Table {
public:
    explicit Table(std::vector<std::string> headings);

    // As many texts as there are headings; empty ones are printed as "-".
    void add(std::vector<std::string> row);

    // Indents every line. A table without rows prints nothing.
    void print(std::ostream& out, int indent) const;

private:
    std::vector<std::vector<std::string>> rows; // the headings first
};

} // namespace tool
