#include "embedded/program/Assembly.h"
#include "embedded/program/Package.h"
#include "embedded/program/Verifier.h"
#include "tests/embedded/program/ProgramText.h"
#include "tests/embedded/program/SamplePrograms.h"

#include <gtest/gtest.h>

#include <functional>
#include <ostream>

namespace embedded {
namespace {

using Bytes = std::vector<unsigned char>;

TEST(Assembly, RoundTrip) {
    const Bytes bytes = encodeAssembly(sampleProgram());
    const auto program = decodeAssembly(bytes.data(), bytes.size());
    ASSERT_TRUE(program);
    EXPECT_EQ(program->uid, 77u);
    EXPECT_EQ(toText(*program), toText(sampleProgram()));
    EXPECT_EQ(encodeAssembly(*program), bytes);
}

TEST(Assembly, MayStandAtAnyAddress) {
    Bytes shifted = encodeAssembly(sampleProgram());
    shifted.insert(shifted.begin(), 0);
    EXPECT_TRUE(decodeAssembly(shifted.data() + 1, shifted.size() - 1));
}

TEST(Assembly, UnsoundProgramIsRefused) {
    Program program = sampleProgram();
    program.nodes[2].sources[0] = 2;
    const Bytes bytes = encodeAssembly(program);
    EXPECT_FALSE(decodeAssembly(bytes.data(), bytes.size()));
}

TEST(Package, RoundTrip) {
    const Package package{"<description \xC3\xA4/>", encodeAssembly(sampleProgram())};
    const Bytes bytes = encodePackage(package);
    const auto decoded = decodePackage(bytes.data(), bytes.size());
    ASSERT_TRUE(decoded);
    EXPECT_EQ(decoded->description, package.description);
    EXPECT_EQ(decoded->assembly, package.assembly);
}

TEST(Package, KindsOfFilesAreToldApart) {
    const Bytes assembly = encodeAssembly(sampleProgram());
    const Bytes package = encodePackage({"text", assembly});
    EXPECT_FALSE(decodePackage(assembly.data(), assembly.size()));
    EXPECT_FALSE(decodeAssembly(package.data(), package.size()));
    EXPECT_FALSE(decodePackage(nullptr, 0));
    EXPECT_FALSE(decodeAssembly(nullptr, 8));
}

TEST(Package, TextWithZeroByteIsRefused) {
    const Bytes bytes = encodePackage({std::string("a\0b", 3), {1}});
    EXPECT_FALSE(decodePackage(bytes.data(), bytes.size()));
}

// What is accepted has to be sound, and has to survive a round trip.
bool readAssembly(const Bytes& bytes) {
    const auto program = decodeAssembly(bytes.data(), bytes.size());
    if (!program) return false;
    EXPECT_TRUE(verify(*program).empty());
    const Bytes again = encodeAssembly(*program);
    const auto decodedAgain = decodeAssembly(again.data(), again.size());
    EXPECT_TRUE(decodedAgain);
    if (decodedAgain) {
        EXPECT_EQ(toText(*decodedAgain), toText(*program));
    }
    return true;
}

bool readPackage(const Bytes& bytes) {
    const auto package = decodePackage(bytes.data(), bytes.size());
    if (!package) return false;
    EXPECT_EQ(package->description.find('\0'), std::string::npos);
    return readAssembly(package->assembly);
}

struct HostileCase {
    const char* name;
    Bytes bytes;
    std::function<bool(const Bytes&)> read;
};

std::ostream& operator<<(std::ostream& out, const HostileCase& tested) {
    return out << tested.name;
}

// Up to this many last bytes of a file may be padding.
constexpr std::size_t maxPadding = 3;

class Hostile : public testing::TestWithParam<HostileCase> {};

TEST_P(Hostile, TruncationIsRefused) {
    const auto& [name, bytes, read] = GetParam();
    ASSERT_TRUE(read(bytes));
    for (std::size_t size = 0; size < bytes.size(); ++size)
        EXPECT_FALSE(read(Bytes(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size))) &&
                     size + maxPadding < bytes.size())
            << size;
}

TEST_P(Hostile, ChangedBytesAreSafe) {
    const auto& [name, bytes, read] = GetParam();
    std::size_t refused = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        for (const unsigned char flip : {0x01, 0x02, 0x10, 0x40, 0x80, 0xFF}) {
            Bytes changed = bytes;
            changed[i] ^= flip;
            if (!read(changed)) ++refused;
        }
    }
    EXPECT_GT(refused, bytes.size());
}

INSTANTIATE_TEST_SUITE_P(
    All, Hostile,
    testing::Values(HostileCase{"assembly", encodeAssembly(sampleProgram()), readAssembly},
                    HostileCase{"package", encodePackage({"<d/>", encodeAssembly(sampleProgram())}),
                                readPackage}),
    [](const auto& tested) { return tested.param.name; });

} // namespace
} // namespace embedded
