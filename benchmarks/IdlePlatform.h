// A linker and an engine that do next to nothing, so that benchmarks measure the library alone.
//
// A package file is a description text with a zero behind it. The linker hands it over as it stands; its
// assemblies are one byte. The engine delivers an image of 4 by 4 pixels for each output at once; its
// programs are these.
#pragma once

#include <cstddef>
#include <vector>

namespace benchmarks {

// What the engine finds in every assembly.
struct EngineProgram {
    std::vector<unsigned int> inputUids; // floats
    std::vector<unsigned int> outputUids;
};

// For all handles that are made from now on.
void setEngineProgram(const EngineProgram& program);

} // namespace benchmarks
