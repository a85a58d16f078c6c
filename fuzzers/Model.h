// Materials for the fuzz targets, and what holds for every one, whatever it was made from.
#pragma once

#include "framework/description/GraphDesc.h"
#include "framework/render/GraphInstance.h"
#include "fuzzers/Fuzzing.h"
#include "material/Substance.h"

namespace fuzzing {

// An input of the first, second ... numerical type, whose uid is that number and whose name is "i" and the
// number. The next bytes are its default.
constexpr unsigned int numericalTypes = 8;
std::unique_ptr<SubstanceAir::InputDescBase> numericalInput(unsigned int number, Choices& choices);

// A graph with all of them.
SubstanceAir::GraphDesc graphOfAllTypes();

// A material of one graph, with its inputs and its URL.
kv::Reference<kvSubstance::Substance> materialOf(const boost::shared_ptr<SubstanceAir::GraphInstance>& graph);

// Gives the input of the name the value: refused, or taken and written as text that is taken again.
void tryValue(SubstanceAir::GraphInstance& graph, const std::string& identifier, const std::string& value);

// Reads everything that the inputs tell.
void readInputs(kvSubstance::Substance& material);

// What is read back after writing is what was written: from the first time on a state string is its own.
void checkStateString(kvSubstance::Substance& material);

// Ends the process's renderer, so that no input of a fuzzer meets what an earlier one left. No graph instance
// may be alive, no stack of packages, and no render thread. The next package makes a new one.
void resetRenderer();

} // namespace fuzzing
