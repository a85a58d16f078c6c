/// @file
/// Makes a material from two packages, one stacked on the other.
///
/// Outputs of the first package's first graph (the bottom) feed the image inputs of the second package's
/// first graph (the top). The material gets an input for every number that the stacked graph takes, with
/// default, range, widget and combo items as its author described them. Of an input without a known widget
/// only the default is taken; a range that makes no sense is set all the same (docs/quirks.md). The material
/// gets no outputs: its texture comes from getTextureFromSubstance.
///
/// An empty reference means that a package is missing or has no graph. Packages that cannot be stacked make a
/// material without graphs, inputs, URL and label, whose texture is null: when the description of one
/// announces fewer graphs than it has, or when connecting the two would tie more inputs to outputs than any
/// material needs (4,000,000 pairs). Memory that is not to be had throws std::bad_alloc.
///
/// Threads: one call at a time in a process; packages are read through process-wide buffers.
#pragma once

#include "material/Substance.h"

namespace kvSubstance {

/// For programs that are built inside this source tree: packages' classes do not ship. The packages stay the
/// caller's, outlive the material, and are never deleted by it. The stack that is made of them is never
/// deleted either: on purpose, it lives as long as the process.
KVSUBSTANCE_API kv::Reference<Substance> createSubstance(SubstanceAir::PackageDesc* first,
                                                         SubstanceAir::PackageDesc* second);

/// From the bytes of two package files, which are not kept. Buffers of 2 GiB and more give an empty
/// reference. The packages live as long as the process when there is a material.
KVSUBSTANCE_API kv::Reference<Substance> createSubstance(const kv::vector<char>& first,
                                                         const kv::vector<char>& second);

} // namespace kvSubstance
