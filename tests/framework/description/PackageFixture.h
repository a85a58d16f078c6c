// What tests of whole packages share: loading them through the linker.
#pragma once

#include "framework/description/PackageDesc.h"
#include "framework/render/Renderer.h"
#include "framework/render/RendererAccess.h"
#include "tests/Packages.h"
#include "tests/framework/description/DescriptionText.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

// A package of graphs that each have one output and one preset.
inline std::string graphsXml(const std::string& asmUid, const std::string& count, int graphs) {
    std::string xml = "<sbsdescription asmuid='" + asmUid + "'><graphs" + count + ">";
    for (int i = 1; i <= graphs; ++i)
        xml += "<graph pkgurl='" + std::to_string(i) +
               "'><outputs><output/></outputs><inputs><input type='5'/>" +
               "</inputs><sbspresets><sbspreset/></sbspresets></graph>";
    return xml + "</graphs></sbsdescription>";
}

class PackageFixture : public testing::Test {
protected:
    void SetUp() override {
        SubstanceAir::RendererAccess(); // its calls are not looked at here
        packages::beginTest();
    }
    void TearDown() override { EXPECT_EQ(packages::faults(), ""); }

    static std::unique_ptr<SubstanceAir::PackageDesc>
    load(const std::string& xml, const SubstanceAir::OutputFormatOptions* options = nullptr) {
        const std::string bytes = packages::bytes(xml, "test");
        return std::make_unique<SubstanceAir::PackageDesc>(bytes.data(), bytes.size(), options);
    }

    static bool isTaken(unsigned int uid) {
        const SubstanceAir::RendererAccess renderer;
        return renderer->isPackageUidTaken(uid);
    }
};
