#include "tools/PackageFile.h"

#include "framework/description/PackageDesc.h"
#include "tools/Failure.h"
#include "tools/FileContent.h"

namespace tool {

PackageFile readPackageFile(const std::string& path) {
    return describePackage(path, readFileContent(path));
}

PackageFile describePackage(const std::string& name, kv::vector<char> bytes) {
    const SubstanceAir::OutputFormatOptions options{SubstanceAir::AllFormatClasses, 0};
    const SubstanceAir::PackageDesc package(bytes.data(), bytes.size(), &options);
    if (package.graphs().empty()) {
        const std::string_view text = asText(bytes).substr(0, 256);
        const size_t begin = text.find_first_not_of(" \t\r\n\xEF\xBB\xBF");
        if (begin != std::string_view::npos && text[begin] == '<')
            throw Failure(name + ": not a package: it looks like a source; make a package of it with "
                                 "\"kvsubstance compile\"");
        throw Failure(name + ": not a package: expected a file that \"kvsubstance compile\" has written");
    }
    PackageFile file{name, std::move(bytes), package.asmUid(), package.graphs()};
    for (size_t i = 0; i < file.graphs.size(); ++i) file.graphs[i].presets = package.graphs()[i].presets;
    return file;
}

std::vector<std::string> outputIdentifiers(const SubstanceAir::GraphDesc& graph) {
    std::vector<std::string> identifiers;
    for (const SubstanceAir::OutputDesc& output : graph.outputs) identifiers.push_back(output.identifier);
    return identifiers;
}

} // namespace tool
