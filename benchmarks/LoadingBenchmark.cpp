// Loading a package: from its bytes to graphs, inputs, outputs and presets. The package stays until the next
// one is loaded; its end is not timed.
//
// The floor is TinyXML alone: a copy of the text, as its own loading of files makes one, the parse with
// positions not tracked, and the end of the document, which loading includes.
//
// Creating a material of it does more (a second package, copies of all inputs in the stack, instances, host
// inputs with their ranges) and stands beside the same floor for information.
#include "benchmarks/LibraryBenchmarks.h"
#include "benchmarks/PackageText.h"
#include "bridge/CreateSubstance.h"
#include "framework/description/PackageDesc.h"

#include <tinyxml.h>

#include <memory>
#include <stdexcept>

namespace benchmarks {

namespace {

constexpr int Outputs = 5;
constexpr unsigned int FirstUid = 1000;
constexpr unsigned int UidOfBottom = 1;

void require(bool isTrue, const char* complaint) {
    if (!isTrue) throw std::runtime_error(complaint);
}

Piece loadPackage(int inputs) {
    const auto package = std::make_shared<std::unique_ptr<SubstanceAir::PackageDesc>>();
    return {[text = packageText(FirstUid, inputs, Outputs), inputs, package] {
                *package =
                    std::make_unique<SubstanceAir::PackageDesc>(text.c_str(), text.size() + 1, nullptr);
                require((*package)->graphs().front().inputs.size() == static_cast<std::size_t>(inputs),
                        "inputs are missing");
            },
            [package] { package->reset(); }};
}

Piece parseText(int inputs) {
    return {[text = packageText(FirstUid, inputs, Outputs)] {
                TiXmlDocument document;
                document.SetTabSize(0);
                const std::vector<char> copy(text.c_str(), text.c_str() + text.size() + 1);
                document.Parse(copy.data(), nullptr, TIXML_ENCODING_UTF8);
                require(!document.Error(), "the text is no XML");
            },
            {}};
}

kv::vector<char> packageBytes(const std::string& text) {
    return {text.c_str(), text.c_str() + text.size() + 1};
}

// What materials are made from stays for the life of the process.
Piece createMaterial(int inputs) {
    return {[bottom = packageBytes(packageText(UidOfBottom, 0, 1)),
             top = packageBytes(packageText(FirstUid, inputs, Outputs))] {
                require(bool(kvSubstance::createSubstance(bottom, top)), "no material");
            },
            {}};
}

} // namespace

void addLoading() {
    add({"load a package", "inputs", {2000, 20000}, loadPackage, parseText, 1.5, 1.3});
    add({"create a material", "inputs", {2000, 20000}, createMaterial, parseText, 0, 1.3});
}

} // namespace benchmarks
