// The revision of what the engine makes.
#pragma once

namespace embedded {

// Grows whenever the bytes that the engine makes of any program change, so that a picture can tell whether
// the engine that made it is this one.
constexpr int engineRevision = 2;

} // namespace embedded
