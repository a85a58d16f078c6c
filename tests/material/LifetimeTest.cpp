// Who outlives whom.
#include "tests/material/ModelText.h"

#include <gtest/gtest.h>

namespace kvSubstance {

namespace {

TEST(Lifetime, InputsThatOutliveTheirMaterialForgetIt) {
    kv::Reference<Substance> material(new Substance);
    material->setPackageURL("pkg:/x");
    const kv::Reference<SubstanceInput> replaced(material->newInput(1, "a", TypeInt1));
    // By a caller whose texts belong to what is being replaced.
    const kv::Reference<SubstanceInput> kept(
        material->newInput(replaced->getUID(), replaced->getIdentifier(), TypeInt1));
    const SubstanceInput* const gone = material->newInput(2, "b", TypeInt1);
    EXPECT_EQ(material->newInput(gone->getUID(), gone->getIdentifier(), TypeInt1), material->getInput("b"));
    EXPECT_EQ(replaced->numReferences(), 1);

    replaced->setValueI(1, 0); // replaced is not disconnected
    EXPECT_TRUE(material->isModified());
    EXPECT_STREQ(replaced->getIndexIdentifier(0).asChar(), "$substance$:pkg:/x:a");
    material.reset();
    for (const auto& input : {replaced, kept}) {
        EXPECT_STREQ(input->getIndexIdentifier(0).asChar(), "$substance$::a");
        EXPECT_EQ(input->getModifiedSignal().numConnections(), 0);
        input->setValueI(7, 0);
    }
}

// Tells what is still there of the material when it dies.
class Witness : public ilSPMemoryImg {
public:
    Witness(const kv::Reference<SubstanceOutput>& watched, int& seen)
        : ilSPMemoryImg(ilSize{1, 1, 1, 4}, ilUChar, ilInterleaved, true)
        , output(watched)
        , references(seen) {}
    ~Witness() override { references = output->numReferences(); }

private:
    const kv::Reference<SubstanceOutput> output;
    int& references;
};

TEST(Lifetime, TheTextureGoesBeforeTheEntities) {
    kv::Reference<Substance> material(new Substance);
    const kv::Reference<SubstanceOutput> output(material->newOutput(1, "out", Format0, 1, 1, 1, false));
    int references = 0;
    material->setCachedTexture(new Witness(output, references));
    material.reset();
    EXPECT_EQ(references, 4); // two tables, this test and the witness
    EXPECT_EQ(output->numReferences(), 1);
}

} // namespace

} // namespace kvSubstance
