// Whatever a host calls, memory may run out in it: the interface, and through it the framework and the host's
// libraries, with the recording linker and engine, which themselves always have memory.
#include "framework/description/PackageDesc.h"
#include "framework/render/GraphInstance.h"
#include "framework/render/PackageStackDesc.h"
#include "framework/render/RenderJob.h"
#include "framework/render/Renderer.h"
#include "framework/render/RendererAccess.h"
#include "tests/Hosting.h"
#include "tests/faults/AllocationLoop.h"
#include "tests/framework/description/DescriptionText.h"
#include "tests/material/ModelText.h"
#include "tests/recording/Recording.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <utility>

namespace {

using namespace kvSubstance;
using faults::Promise;
using hosting::Image;
using hosting::Material;
using kvString::CString;
using kvString::EncodingUtf8;
using kvString::IString;
using SubstanceAir::PackageDesc;
using SubstanceAir::PackageStackDesc;
using Numerical = SubstanceAir::InputInstanceNumericalBase;

const std::string wide(70, 'x'); // more than a string keeps inside itself
const CString wideName(wide.c_str());

// ---- What is read

// A stack of the two has two connections and two fused inputs; one output is left over.
const char* const bottomXml = R"(<sbsdescription asmuid='59'><graphs count='2'>
    <graph pkgurl='pkg://bottom_WIDE' label='The graph of bottom'><outputs count='9'>
    <output uid='40' identifier='the_map_of_number_0'><outputgui label='Label of the map of number 0'><channels>
        <channel names='height'/></channels></outputgui></output>
    <output uid='41' identifier='the_map_of_number_1'/><output uid='44' identifier='left over'/></outputs>
    <inputs count='9'><input uid='46' identifier='$seed' type='4' default='2' alteroutputs='40,44'/>
    <input uid='47' identifier='$resolution' type='8' default='2' alteroutputs='40,44'/>
    <input uid='48' identifier='scale' type='0' default='2' alteroutputs='40,44'>GUI</input></inputs>
    <sbspresets><sbspreset label='A preset of bottom' description='WIDE'><presetinput uid='48' value='1'/></sbspreset>
    </sbspresets></graph><graph pkgurl='pkg://second'><outputs><output uid='9'/></outputs></graph>
    </graphs></sbsdescription>)";
const char* const topXml = R"(<sbsdescription asmuid='39'><graphs count='1'>
    <graph pkgurl='pkg://top_WIDE' label='The graph of top'><outputs count='9'>
    <output uid='20' identifier='Output' mipmaps='1'/><output uid='24' identifier='left over'/></outputs>
    <inputs count='9'><input uid='32' identifier='the_map_of_number_0' type='5' alteroutputs='20'/>
    <input uid='33' identifier='the_map_of_number_1' type='5' alteroutputs='20'/>
    <input uid='26' identifier='$seed' type='4' default='2' alteroutputs='20,24'/>
    <input uid='27' identifier='$resolution' type='8' default='2' alteroutputs='20,24'/>
    <input uid='28' identifier='amount' type='0' default='2' alteroutputs='20,24'>GUI</input>
    <input uid='29' identifier='pattern_of_the_top' type='4' default='2' alteroutputs='20,24'>GUI</input></inputs>
    </graph></graphs></sbsdescription>)";
const char* const gui =
    R"(<inputgui label="A label of more than sixteen" widget="combobox" description="described">
    <guislider min="0,0.25" max="1" step="0.125" clamp="on"/><guicombobox><guicomboboxitem value="0" text="nothing"/>
    <guicomboboxitem value="2" text="a text of more than sixteen"/></guicombobox></inputgui>)";

std::string description(bool isTop) {
    std::string xml = isTop ? topXml : bottomXml;
    for (const auto& [word, text] : {std::pair("WIDE", wide), {"GUI", gui}})
        for (size_t at = 0; (at = xml.find(word)) != std::string::npos;)
            xml.replace(at, std::strlen(word), text);
    return xml;
}

std::string package(bool isTop) {
    return recording::packageBytes(description(isTop), isTop ? "top" : "bottom");
}

const std::string presetsDocument = "<sbspresets><sbspreset pkgurl='pkg://x' label='" + wide +
                                    "'><presetinput uid='5' identifier='a' type='0' "
                                    "value='1'/></sbspreset><sbspreset label='2'/></sbspresets>";

const IString samplePath(KVSUBSTANCE_SAMPLES "/bottoms/brick_wall.xml", EncodingUtf8);

// ---- What operations work on, all of it

struct World {
    World() { recording::reset(); }

    std::string text;
    kv::vector<char> content, bottomContent, topContent;
    std::unique_ptr<PackageDesc> bottom, top, stack;
    std::vector<boost::shared_ptr<SubstanceAir::GraphInstance>> graphs;
    std::vector<SubstanceAir::Preset> presets;
    Material material, other;
    Image image;
    bool showsInstances = false;

    void makeMaterial() {
        const Material made(new Substance);
        made->setPackageURL(wideName);
        made->newInput(1, "ints", TypeInt3)->setDefault({{7, 8, 9}}, false);
        made->newInput(2, (wide + "2").c_str(), TypeFloat4)->setWidget(WidgetSlider);
        made->newOutput(3, "color", Format0, 4, 4, 1, false);
        material = made;
    }
    SubstanceInput& ints() const { return *material->getInput("ints"); }
    SubstanceInput& floats() const { return *material->getInput((wide + "2").c_str()); }

    void load(bool isTop) {
        const std::string bytes = package(isTop);
        const SubstanceAir::OutputFormatOptions options{1, 2};
        (isTop ? top : bottom) = std::make_unique<PackageDesc>(bytes.data(), bytes.size(), &options);
    }
    void loadBoth() {
        load(false);
        load(true);
    }
    void stackThem() {
        SubstanceAir::ConnectionList list;
        list.bottomOutputs = 1;
        stack = std::make_unique<PackageStackDesc>(bottom->graphs()[0], top->graphs()[0], list);
    }
    void instantiate() {
        decltype(graphs) made;
        SubstanceAir::instantiateGraphs(made, *top);
        auto& number = dynamic_cast<Numerical&>(*made.at(0)->findInput("pattern_of_the_top"));
        if (number.setValueFromText("5")) text = number.valueAsText() + wide;
        graphs = made;
    }

    void begin() {
        bottomContent = hosting::content(package(false));
        topContent = hosting::content(package(true));
        recording::setTexture({4, 2, 0, true, {1}});
    }
    void create() { material = createSubstance(bottomContent, topContent); }
    void beginWithMaterial() {
        begin();
        create();
    }
    void beginRendered() {
        beginWithMaterial();
        render();
        recording::setTexture({4, 2, 0, true, {2}});
        showsInstances = true;
    }
    void beginEdited(const char* identifier) {
        beginRendered();
        showsInstances = false;
        sync(identifier, 9);
    }
    // The next result of the output that nobody takes from needs more room.
    void beginWithManyResults() {
        beginEdited("amount");
        SubstanceAir::OutputInstance& output = *material->getGraphInstances().at(0)->outputs.at(1);
        for (int results = 1; results < 63; ++results)
            output.appendResult(
                std::make_unique<SubstanceAir::RenderResult>(SubstanceTexture{}, nullptr, nullptr));
    }
    // The engine has failed once: the job waits.
    void beginWaiting() {
        beginWithMaterial();
        recording::fail("substanceHandleStart");
        render();
    }
    void beginWithAnotherWaiting() {
        beginWaiting();
        std::swap(material, other);
        create();
    }
    void sync(const char* identifier, float value) const { hosting::setValue(material, identifier, value); }
    void render() { image = hosting::render(material); }

    // In vain, while a newer job comes in.
    void renderBesideNewerJob() {
        recording::onNextStart([this](const auto&) {
            sync("amount", 8);
            const SubstanceAir::RendererAccess renderer;
            renderer->pushJob(SubstanceAir::makeRenderJob(*material->getGraphInstances().at(0)));
            return 7u;
        });
        render();
    }

    std::string look() const;
    std::string probe();
};

void print(ClassicText& text, Substance& material) {
    text << material.getPackageURL().asChar() << quoted(material.getLabel()) << material.numInputs() << ","
         << material.numOutputs() << (material.isModified() ? " modified" : "") << "\n";
    for (const CString& identifier : material.getInputIds()) {
        SubstanceInput& input = *material.getInput(identifier);
        text << inputText(input) << (input.isModified() ? " modified" : "") << " listeners "
             << input.getModifiedSignal().numConnections()
             << (material.getEntity(input.getUID()) ? "\n" : " lost\n");
    }
    text << material.getStateString().asChar();
}

void print(ClassicText& text, const SubstanceAir::GraphInstance& graph) {
    for (const auto& input : graph.inputs)
        if (const auto* const number = dynamic_cast<Numerical*>(input.get()))
            text << number->desc.identifier << "=" << number->valueAsText() << " ";
    for (const auto& output : graph.outputs) text << (output->dirty ? "dirty " : "clean ");
}

std::string World::look() const {
    ClassicText all;
    all << text << ", " << graphs.size() << " graphs, " << std::string(content.begin(), content.end());
    for (const auto* const package : {bottom.get(), top.get(), stack.get()})
        for (size_t i = 0; package && i < package->graphs().size(); ++i)
            all << descriptiontext::print(package->graphs()[i]);
    for (const auto& preset : presets) all << preset.label << preset.inputValues.size();
    if (image) all << "pixel " << +image->getBytes()[23];
    if (material) print(all, *material);
    if (material && material->getCachedTexture()) all << "cached";
    if (showsInstances && material) print(all, *material->getGraphInstances().at(0));
    return all.str() + recording::misuses();
}

// The calls that the next edits come to. Two, because the lists of a state are exchanged in each run: then
// both have had something in them.
std::string World::probe() {
    if (!material || !material->getInput("amount")) return {};
    recording::onNextStart({});
    render(); // what has failed for another material, or for another output
    for (const auto& output : material->getGraphInstances().at(0)->outputs)
        while (output->grabResult()) { // what came late is not kept as long as what did not
        }
    recording::reset();
    for (const unsigned char value : {3, 4}) {
        recording::setTexture({4, 2, 0, true, {value}});
        sync("amount", value);
        render();
    }
    const std::string trace = recording::takeTrace();
    if (!other) return trace + look();
    material = std::exchange(other, {});
    return trace + probe();
}

// ---- The operations

const auto nothing = [](World&) {};
const auto small = [](World& w) { w.makeMaterial(); };
const auto rendered = [](World& w) { w.beginRendered(); };
const auto render = [](World& w) { w.render(); };

const faults::Row<World> rows[] = {
    // The material model
    {"material", nothing, small},
    {"newInput", small, [](World& w) { w.material->newInput(9, wideName, TypeFloat1); }},
    {"newOutput", small, [](World& w) { w.material->newOutput(9, wideName, Format0, 1, 1, 1, true); }},
    {"reset", small, [](World& w) { w.material->reset(); }},
    {"clearModified", small, [](World& w) { w.ints().setValue3I(1, 2, 3), w.material->clearModified(); }},
    {"texts", small,
     [](World& w) { w.material->setPackageURL(wide.c_str()), w.material->setLabel(samplePath); },
     Promise::Basic},
    {"getStateString", small, [](World& w) { w.text = w.material->getStateString().asChar(); }},
    {"applyStateString", small,
     [](World& w) {
         w.material->applyStateString((wide + "\n1d i3 4 5 6\n2d f4 0.5 1.5 2.5 3.5\n").c_str());
     },
     Promise::Basic},
    {"endOfMaterial", small, [](World& w) { w.material.reset(); }},
    {"setLabel", small, [](World& w) { w.ints().setLabel(wide.c_str()); }},
    {"addComboItem", small, [](World& w) { w.ints().addComboItem(samplePath); }},
    {"getUniqueLabel", small, [](World& w) { w.text = w.floats().getUniqueLabel(3).asMultibyte().asChar(); }},
    {"setters", small,
     [](World& w) {
         for (SubstanceInput* const input : {&w.ints(), &w.floats()}) {
             input->setValueF(2, 1);
             input->setValue4I(1, 2, 3, 4);
             input->setMin({{1}});
             input->setStep({{2}});
             input->setCombo(true);
             input->setWidget(WidgetColor);
             input->reset();
         }
     },
     Promise::Basic},
    {"readFromXMLData", [](World& w) { w.text = description(true); },
     [](World& w) { w.material = SubstanceReader::getInstance().readFromXMLData(w.text.c_str()); },
     Promise::Strong, false},
    {"readContent", nothing, [](World& w) { readSubstanceContent(samplePath, w.content); }},

    // Packages and the framework
    {"packageDesc",
     [](World& w) {
         static std::string tag; // a larger assembly each time: it needs more room than the one before
         w.topContent = hosting::content(recording::packageBytes(description(true), tag += wide));
     },
     [](World& w) {
         w.top = std::make_unique<PackageDesc>(w.topContent.data(), w.topContent.size(), nullptr);
     },
     Promise::Strong, false},
    {"packageStackDesc", [](World& w) { w.loadBoth(); }, [](World& w) { w.stackThem(); }},
    {"instantiateGraphs", [](World& w) { w.loadBoth(); }, [](World& w) { w.instantiate(); }, Promise::Basic},
    {"presetsDocument", nothing,
     [](World& w) { SubstanceAir::parsePresetsDocument(w.presets, presetsDocument.c_str()); },
     Promise::Strong, false},

    // The way to the engine and back
    {"createFromContents", [](World& w) { w.begin(); }, [](World& w) { w.create(); }, Promise::Strong, false},
    {"createFromPackages", [](World& w) { w.loadBoth(); },
     [](World& w) { w.material = createSubstance(w.bottom.get(), w.top.get()); }, Promise::Strong, false},
    {"synchronise", rendered, [](World& w) { w.sync("amount", 9); }},
    {"synchroniseStateKey",
     [](World& w) { w.beginRendered(), w.material->getInput("$seed")->setValueI(9, 0); },
     [](World& w) { w.sync("$seed", 9); }},
    {"applyStateStringRendered",
     [](World& w) {
         w.beginRendered();
         w.text = std::string(w.material->getPackageURL().asChar()) + "\n28d f1 6\n46d i1 9\n47d i2 3 4\n";
     },
     [](World& w) { w.material->applyStateString(w.text.c_str()); }, Promise::Basic},
    {"textureFirst", [](World& w) { w.beginWithMaterial(); }, render, Promise::Silent},
    {"textureEdited", [](World& w) { w.beginEdited("amount"); }, render, Promise::Silent},
    {"textureOfAnotherSeed", [](World& w) { w.beginEdited("$seed"); }, render, Promise::Silent},
    {"textureMergedIntoWaiting", [](World& w) { w.beginWaiting(), w.sync("amount", 7); }, render,
     Promise::Silent},
    {"textureWhileAnotherWaits", [](World& w) { w.beginWithAnotherWaiting(); }, render, Promise::Silent},
    {"textureBesideManyResults", [](World& w) { w.beginWithManyResults(); }, render, Promise::Silent},
    {"textureBesideNewerJob", [](World& w) { w.beginEdited("amount"); },
     [](World& w) { w.renderBesideNewerJob(); }, Promise::Silent},
    {"endOfWaitingMaterial", [](World& w) { w.beginWaiting(); }, [](World& w) { w.material.reset(); }},
    {"endOfRenderedMaterial", rendered, [](World& w) { w.material.reset(); }},
};

class Allocation : public testing::TestWithParam<faults::Row<World>> {};

TEST_P(Allocation, everyFailureIsSurvived) {
    faults::failEveryAllocation(GetParam(), &recording::isInsideDouble);
    EXPECT_EQ(recording::liveTextures(), 0u);
}

INSTANTIATE_TEST_SUITE_P(Operations, Allocation, testing::ValuesIn(rows),
                         [](const auto& row) { return row.param.name; });

} // namespace
