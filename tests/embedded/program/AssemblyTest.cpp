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

// A file cut anywhere is refused, but for up to three last bytes, which may be padding; what is accepted with
// any byte changed is sound.
TEST(Package, HostileBytes) {
    const Bytes bytes = encodeAssembly(sampleProgram());
    for (std::size_t size = 0; size + 3 < bytes.size(); ++size)
        EXPECT_FALSE(decodeAssembly(Bytes(bytes.data(), bytes.data() + size).data(), size)) << size;
    for (std::size_t i = 0; i < 4 * bytes.size(); ++i) {
        Bytes changed = bytes;
        changed[i / 4] ^= "\x01\x10\x80\xFF"[i % 4];
        const auto program = decodeAssembly(changed.data(), changed.size());
        EXPECT_TRUE(!program || verify(*program).empty()) << i;
    }
}

} // namespace
} // namespace embedded
