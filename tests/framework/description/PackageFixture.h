// What tests of whole packages share: loading them through the recording linker.
#pragma once

#include "framework/description/PackageDesc.h"
#include "framework/render/Renderer.h"
#include "framework/render/RendererAccess.h"
#include "tests/framework/description/DescriptionText.h"
#include "tests/recording/Recording.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

class PackageFixture : public testing::Test {
protected:
    void SetUp() override {
        SubstanceAir::RendererAccess(); // its calls are not looked at here
        recording::reset();
    }
    void TearDown() override { EXPECT_EQ(recording::misuses(), ""); }

    static std::unique_ptr<SubstanceAir::PackageDesc>
    load(const std::string& xml, const SubstanceAir::OutputFormatOptions* options = nullptr) {
        const std::string bytes = recording::packageBytes(xml, "test");
        return std::make_unique<SubstanceAir::PackageDesc>(bytes.data(), bytes.size(), options);
    }

    static bool isTaken(unsigned int uid) {
        const SubstanceAir::RendererAccess renderer;
        return renderer->isPackageUidTaken(uid);
    }
};
