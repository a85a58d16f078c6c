// Packages for whichever linker and engine a test program is linked with: the recording double, or the
// example's.
#pragma once

#include <string>

namespace packages {

// A package with this description. Where calls are recorded they name its assembly by the tag.
std::string bytes(const std::string& descriptionXml, const std::string& tag);

// A description of one graph with these children.
inline std::string descriptionOf(const std::string& asmUid, const std::string& url,
                                 const std::string& children) {
    return "<sbsdescription asmuid='" + asmUid + "'><graphs count='1'><graph pkgurl='" + url + "' label='" +
           url + " label'>" + children + "</graph></graphs></sbsdescription>";
}

// The first of so many uids that nobody in this process was given before.
unsigned int freshUids(unsigned int count);

// The XML with a fresh uid for each of #0 to #9, ascending with the digit.
inline std::string withFreshUids(std::string xml) {
    const unsigned int first = freshUids(10);
    for (std::size_t at = 0; (at = xml.find('#', at)) != std::string::npos;)
        xml.replace(at, 2, std::to_string(first + static_cast<unsigned int>(xml[at + 1] - '0')));
    return xml;
}

// Forgets what earlier tests left behind in the engine and the linker.
void beginTest();

// What the library did wrong in its calls so far, and the textures that it has not freed. Empty where nobody
// watches.
std::string faults();

} // namespace packages
