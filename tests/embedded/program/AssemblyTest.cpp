#include "embedded/program/Assembly.h"
#include "embedded/program/Package.h"
#include "embedded/program/Verifier.h"
#include "tests/embedded/program/ProgramText.h"
#include "tests/embedded/program/SamplePrograms.h"

#include <gtest/gtest.h>

namespace embedded {
namespace {

using Bytes = std::vector<unsigned char>;

TEST(Package, RoundTripAtAnyAddress) {
    const Package package{"<description \xC3\xA4/>", encodeAssembly(sampleProgram())};
    Bytes shifted = encodePackage(package);
    shifted.insert(shifted.begin(), 0);
    const auto decoded = decodePackage(shifted.data() + 1, shifted.size() - 1);
    ASSERT_TRUE(decoded);
    EXPECT_EQ(decoded->description, package.description);
    EXPECT_EQ(decoded->assembly, package.assembly);
    const auto program = decodeAssembly(decoded->assembly.data(), decoded->assembly.size());
    ASSERT_TRUE(program);
    EXPECT_EQ(program->uid, 77u);
    EXPECT_EQ(toText(*program), toText(sampleProgram()));
}

TEST(Package, OtherFilesAreRefused) {
    Program unsound = sampleProgram();
    unsound.nodes[2].sources[0] = 2;
    for (const Bytes& bytes :
         {encodeAssembly(unsound), encodePackage({std::string("a\0b", 3), {1}}), Bytes()}) {
        EXPECT_FALSE(decodeAssembly(bytes.data(), bytes.size()));
        EXPECT_FALSE(decodePackage(bytes.data(), bytes.size()));
    }
}

// What is accepted has to be sound.
bool readAssembly(const Bytes& bytes) {
    const auto program = decodeAssembly(bytes.data(), bytes.size());
    if (!program) return false;
    EXPECT_TRUE(verify(*program).empty());
    return true;
}

// A file cut anywhere is refused, but for up to three last bytes, which may be padding; with any byte changed
// it is safe to read.
TEST(Package, HostileBytes) {
    const Bytes bytes = encodeAssembly(sampleProgram());
    for (std::size_t size = 0; size + 3 < bytes.size(); ++size)
        EXPECT_FALSE(readAssembly({bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size)}))
            << size;
    std::size_t refused = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        for (const unsigned char flip : {0x01, 0x10, 0x80, 0xFF}) {
            Bytes changed = bytes;
            changed[i] ^= flip;
            refused += readAssembly(changed) ? 0 : 1;
        }
    }
    EXPECT_GT(refused, bytes.size());
}

} // namespace
} // namespace embedded
