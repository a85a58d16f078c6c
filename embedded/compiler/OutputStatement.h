// What the compiler states of each output: whether it tiles.
#pragma once

#include <string>
#include <vector>

namespace embedded {

struct Program;
struct SourceGraph;

struct OutputStatement {
    std::string graph;               // its URL
    std::string output;              // identifier
    std::string seam;                // by which it may not tile, such as: node "sun" (wave), parameter layout
    std::vector<std::string> images; // identifiers of inputs; unless there is a seam it tiles if they do
};

// For all outputs of the program that these graphs became. Node names are those of the program's nodes.
std::vector<OutputStatement> stateOutputs(const Program& program, const std::vector<SourceGraph>& graphs,
                                          const std::vector<std::string>& nodeNames);

// Without the graph, such as: output height: tiles
std::string toString(const OutputStatement& statement);

} // namespace embedded
