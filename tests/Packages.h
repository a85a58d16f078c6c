// Packages for whichever linker and engine a test program is linked with: the recording double, or the
// example's.
#pragma once

#include <string>

namespace packages {

// A package with this description. Where calls are recorded they name its assembly by the tag.
std::string bytes(const std::string& descriptionXml, const std::string& tag);

// The first of so many uids that nobody in this process was given before.
unsigned int freshUids(unsigned int count);

// The XML with a fresh uid for each of #0 to #9, ascending with the digit.
std::string withFreshUids(std::string xml);

// Forgets what earlier tests left behind in the engine and the linker.
void beginTest();

// What the library did wrong in its calls so far, and the textures that it has not freed. Empty where nobody
// watches.
std::string faults();

} // namespace packages
