#include "tools/PassThroughTop.h"

#include "embedded/compiler/Compiler.h"
#include "tools/Failure.h"

#include <algorithm>
#include <array>

namespace tool {
namespace {

// Usages that stand in for each other when packages are stacked. The pass-through top has an input for each
// of them, so that the one that is asked for takes no other's output.
const std::vector<std::vector<std::string>> relatedUsages = {
    {"specular", "specularColor", "specularLevel", "glossiness", "roughness"},
    {"bump", "height", "displacement"},
};

std::string imageInput(const std::string& usage) {
    return "<input identifier=\"" + usage + "\" type=\"image\"/>\n";
}

std::string sourceFor(const std::string& channel) {
    std::string inputs = imageInput(channel);
    for (const auto& usages : relatedUsages)
        if (std::find(usages.begin(), usages.end(), channel) != usages.end())
            for (const std::string& usage : usages)
                if (usage != channel) inputs += imageInput(usage);
    return R"(<package>
  <graph url="pkg://pass_through" label="Pass-through">
    <input identifier="$resolution" type="integer2" default="9,9"/>
    )" + inputs +
           R"(
    <node name="shown" kind="imageInput" image="{)" +
           channel + R"(}"/>
    <output identifier="Output" usage=")" +
           channel + R"(" node="shown"/>
  </graph>
</package>
)";
}

} // namespace

PackageFile makePassThroughTop(const std::string& channel) {
    const embedded::CompileResult result = embedded::compilePackage(sourceFor(channel));
    if (result.package.empty())
        throw Failure("the pass-through top cannot be compiled: " +
                      (result.diagnostics.empty() ? "no reason given"
                                                  : toString(result.diagnostics.front(), "source")));
    return describePackage("the pass-through top", {result.package.begin(), result.package.end()});
}

} // namespace tool
