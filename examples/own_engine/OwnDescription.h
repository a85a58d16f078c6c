// The format of the own packages: a description text, as the library reads it, and nothing else. The program
// follows from what it says about inputs, outputs and what alters what.
#pragma once

#include "OwnProgram.h"

#include <optional>
#include <string>

namespace own {

// Nothing for what is no description.
std::optional<Program> readDescription(const std::string& text);

} // namespace own
