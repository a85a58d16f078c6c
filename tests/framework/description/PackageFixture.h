// What tests of whole packages share: loading and pushing them through the recording linker.
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
    load(const std::string& xml, const std::string& tag = "test",
         const SubstanceAir::OutputFormatOptions* options = nullptr) {
        const std::string bytes = recording::packageBytes(xml, tag);
        return std::make_unique<SubstanceAir::PackageDesc>(bytes.data(), bytes.size(), options);
    }

    // The calls that pushing the package makes, and "pushed" when it reports so.
    static std::string push(const SubstanceAir::PackageDesc& package) {
        SubstanceLinkerContext* context = nullptr;
        SubstanceLinkerHandle* handle = nullptr;
        substanceLinkerContextInit(&context, SubstanceLinkerApiVersion, SubstanceLinkerEngineId);
        substanceLinkerHandleInit(&handle, context);
        recording::takeTrace();
        const bool isPushed = package.pushToLinker(handle);
        const std::string trace = recording::takeTrace();
        substanceLinkerContextRelease(context);
        return trace + (isPushed ? "pushed" : "");
    }

    static bool isTaken(unsigned int uid) {
        const SubstanceAir::RendererAccess renderer;
        return renderer->isPackageUidTaken(uid);
    }
};
