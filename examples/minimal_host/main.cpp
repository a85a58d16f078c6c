// The smallest host: loads two packages, lists the inputs, sets one, renders, and writes a picture (PAM,
// which most viewers of pictures read).
//
//   minimal_host bottom.kvpkg top.kvpkg picture.pam
#include "bridge/Bridge.h"

#include <fstream>
#include <iostream>

namespace {

int fail(const char* what) {
    std::cerr << "error: " << what << "\n";
    return 1;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 4) return fail("expected minimal_host bottom.kvpkg top.kvpkg picture.pam");

    kv::vector<char> bottom, top;
    kvSubstance::readSubstanceContent(kvString::IString(argv[1], kvString::EncodingMultibyte), bottom);
    kvSubstance::readSubstanceContent(kvString::IString(argv[2], kvString::EncodingMultibyte), top);
    const kv::Reference<kvSubstance::Substance> material = kvSubstance::createSubstance(bottom, top);
    if (!material) return fail("the two files make no material");

    for (const kvString::CString& identifier : material->getInputIds())
        std::cout << identifier.asChar() << "\n";

    // Sizes are powers of two. An edited input has to be carried over to the engine's side.
    kvSubstance::SubstanceInput* const resolution = material->getInput("$resolution");
    if (!resolution) return fail("the material has a fixed size");
    resolution->setValue2I(9, 8);
    kvSubstance::syncValueFromSubstanceInputToInputInstanceBase(material, resolution);

    // 8-bit RGBA, valid as long as the reference is held.
    const kv::TempReference<ilSIDImage> texture = kvSubstance::getTextureFromSubstance(material.get());
    if (!texture) return fail("there is no texture");
    const ilSize size = texture->getSize();
    std::ofstream picture(argv[3], std::ios::binary);
    picture << "P7\nWIDTH " << size.x << "\nHEIGHT " << size.y
            << "\nDEPTH 4\nMAXVAL 255\nTUPLTYPE RGB_ALPHA\nENDHDR\n";
    picture.write(reinterpret_cast<const char*>(texture->getBytes()), std::streamsize{4} * size.x * size.y);
    if (!picture.flush()) return fail("the picture cannot be written");
}
