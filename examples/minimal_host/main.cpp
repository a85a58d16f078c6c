// A host in one file: loads a bottom and a top package, edits, renders, saves and restores.
//
//   minimal_host bottom.kvpkg top.kvpkg
//
// The exit status is 0 when all of that worked.
#include "bridge/Bridge.h"

#include <algorithm>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using kvSubstance::Substance;
using kvSubstance::SubstanceInput;
using Material = kv::Reference<Substance>;
using Pixels = std::vector<unsigned char>;

void require(bool isMet, const std::string& what) {
    if (!isMet) throw std::runtime_error(what);
}

kv::vector<char> load(const char* path) {
    kv::vector<char> content;
    kvSubstance::readSubstanceContent(kvString::IString(path, kvString::EncodingMultibyte), content);
    require(!content.empty(), std::string(path) + " cannot be read");
    return content;
}

SubstanceInput& find(const Material& material, const char* identifier) {
    SubstanceInput* const input = material->getInput(identifier);
    require(input != nullptr, std::string("there is no input ") + identifier);
    return *input;
}

// Textures are 8-bit RGBA. The image is valid as long as the reference to it is held.
Pixels render(const Material& material) {
    const kv::TempReference<ilSIDImage> texture = kvSubstance::getTextureFromSubstance(material.get());
    require(bool(texture), "there is no texture");
    const ilSize size = texture->getSize();
    std::cout << "rendered " << size.x << " x " << size.y << "\n";
    const unsigned char* const bytes = texture->getBytes();
    return Pixels(bytes, bytes + 4 * static_cast<size_t>(size.x) * static_cast<size_t>(size.y));
}

// What a user interface would be told. The connection ends with the listener.
struct ChangeCounter {
    void changed() { ++changes; }
    int changes = 0;
    kvRTB::SignalBase tracking;
};

void run(const char* bottomPath, const char* topPath) {
    const kv::vector<char> bottom = load(bottomPath);
    const kv::vector<char> top = load(topPath);
    const Material material = kvSubstance::createSubstance(bottom, top);
    require(bool(material), "the packages make no material");

    // Sizes are powers of two. An edited input has to be carried over to the engine's side.
    SubstanceInput& resolution = find(material, "$resolution");
    resolution.setValue2I(7, 7);
    kvSubstance::syncValueFromSubstanceInputToInputInstanceBase(material, &resolution);
    const Pixels before = render(material);
    require(before.size() == 4 * 128 * 128, "the resolution was not taken over");

    ChangeCounter listener;
    SubstanceInput& coverage = find(material, "coverage");
    coverage.getModifiedSignal().connect(
        kvRTB::FunctionVoidMember<ChangeCounter>(&listener, &ChangeCounter::changed), listener.tracking);
    coverage.setValueF(0.9f, 0);
    coverage.setValueF(0.9f, 0); // no change
    require(listener.changes == 1, "a change was not reported once");
    kvSubstance::syncValueFromSubstanceInputToInputInstanceBase(material, &coverage);
    const Pixels edited = render(material);
    require(edited != before, "the edit does not show");

    const kvString::CString saved = material->getStateString();
    const Material restored = kvSubstance::createSubstance(bottom, top);
    require(bool(restored), "the packages make no second material");
    restored->applyStateString(saved);
    require(restored->getStateString() == saved, "the restored state is another one");
    material->applyStateString(saved); // which keeps six decimals of each number
    require(render(restored) == render(material), "the restored material looks different");
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: minimal_host bottom.kvpkg top.kvpkg\n";
        return 2;
    }
    try {
        run(argv[1], argv[2]);
    } catch (const std::exception& error) {
        std::cerr << "error: " << error.what() << "\n";
        return 1;
    }
}
