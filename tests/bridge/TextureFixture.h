// What tests of textures share.
#pragma once

#include "framework/render/GraphInstance.h"
#include "tests/bridge/TestPackages.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

namespace kvSubstance {

class Texture : public testing::Test {
protected:
    Texture() { packages::beginTest(); }
    void TearDown() override { EXPECT_EQ(packages::faults(), ""); }

    // A material whose outputs have these identifiers, in the order of their uids, all altered by pick.
    static kv::Reference<Substance> materialWith(std::initializer_list<const char*> identifiers) {
        std::string outputs, uids;
        for (const char* const identifier : identifiers) {
            const unsigned int uid = packages::freshUids(1);
            outputs += outputTag(uid, identifier);
            uids += std::to_string(uid) + ",";
        }
        const std::string pick = inputTag("pick", 0, "0") + "alteroutputs='" + uids + "'/>";
        return createSubstance(plainPackage(), packageOf("top", outputs, pick));
    }
    static void edit(const kv::Reference<Substance>& material) {
        SubstanceInput* const pick = material->getInput("pick");
        pick->setValueF(pick->getValueF(0) + 1, 0);
        syncValueFromSubstanceInputToInputInstanceBase(material, pick);
    }
};

} // namespace kvSubstance
