// The table of clauses, in parts by topic. A judge function returns when its clause is kept, and throws
// Broken or NotJudged when it is not.
#pragma once

#include "conformance/Trial.h"

#include <vector>

namespace kvSubstance::conformance {

struct Entry {
    Clause clause;
    void (*judge)(Trial& trial);
};

std::vector<Entry> refusalClauses();  // nulls, versions, codes
std::vector<Entry> deliveryClauses(); // taking packages apart
std::vector<Entry> linkClauses();     // linked assemblies, formats
std::vector<Entry> stackClauses();    // several packages as one
std::vector<Entry> runClauses();      // pushes, starts, completions
std::vector<Entry> valueClauses();    // inputs
std::vector<Entry> textureClauses();  // who owns buffers

} // namespace kvSubstance::conformance
