// Packages that the linker fails to take apart.
#include "tests/framework/description/PackageFixture.h"
#include "tests/recording/Recording.h"

using namespace SubstanceAir;

namespace {

class FailingPackages : public PackageFixture {};

} // namespace

TEST_F(FailingPackages, ARefusedPushGivesNoGraphs) {
    recording::fail("substanceLinkerHandlePushAssemblyMemory");
    EXPECT_TRUE(load(graphsXml("1006", "", 1))->graphs().empty());
}

// Hosts rely on it: what a silent linker does not deliver is what it delivered last.
TEST_F(FailingPackages, ASilentLinkerLeavesTheContentBefore) {
    const auto before = load(graphsXml("1007", " count='2'", 2));
    recording::fail("substanceLinkerHandleInit");
    const PackageDesc after("other", 5, nullptr);
    EXPECT_EQ(after.asmUid(), 1007u);
    EXPECT_EQ(after.graphs().size(), 2u);
}
