// A host with a linker and an engine of its own: they are linked into the program together with the library's
// static form, whose calls they answer.
//
//   own_host stripes.xml varnish.xml
//
// The exit status is 0 when an edit of the bottom shows in what lies on top of it.
#include "bridge/Bridge.h"

#include <cstddef>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using Material = kv::Reference<kvSubstance::Substance>;
using Pixels = std::vector<unsigned char>;

kv::vector<char> load(const char* path) {
    kv::vector<char> content;
    kvSubstance::readSubstanceContent(kvString::IString(path, kvString::EncodingMultibyte), content);
    if (content.empty()) throw std::runtime_error(std::string(path) + " cannot be read");
    return content;
}

Pixels render(const Material& material) {
    const kv::TempReference<ilSIDImage> texture = kvSubstance::getTextureFromSubstance(material.get());
    if (!texture) throw std::runtime_error("there is no texture");
    const ilSize size = texture->getSize();
    std::cout << "rendered " << size.x << " x " << size.y << "\n";
    const unsigned char* const bytes = texture->getBytes();
    return Pixels(bytes, bytes + 4 * static_cast<std::size_t>(size.x) * static_cast<std::size_t>(size.y));
}

void run(const char* bottom, const char* top) {
    const Material material = kvSubstance::createSubstance(load(bottom), load(top));
    if (!material) throw std::runtime_error("the packages make no material");
    const Pixels before = render(material);

    kvSubstance::SubstanceInput* const tint = material->getInput("tint");
    if (!tint) throw std::runtime_error("there is no input tint");
    tint->setValue3F(0.1f, 0.4f, 0.8f);
    kvSubstance::syncValueFromSubstanceInputToInputInstanceBase(material, tint);
    if (render(material) == before) throw std::runtime_error("the edit does not show");
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: own_host BOTTOM TOP\n";
        return 2;
    }
    try {
        run(argv[1], argv[2]);
    } catch (const std::exception& error) {
        std::cerr << "error: " << error.what() << "\n";
        return 1;
    }
    return 0;
}
