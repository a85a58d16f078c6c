// Whatever a host calls, memory may run out in it: the whole interface, and the framework below it, with the
// recording linker and engine, which themselves always have memory.
#include "bridge/Bridge.h"
#include "framework/description/PackageDesc.h"
#include "framework/render/GraphInstance.h"
#include "framework/render/PackageStackDesc.h"
#include "tests/faults/AllocationLoop.h"
#include "tests/framework/description/DescriptionText.h"
#include "tests/material/ModelText.h"
#include "tests/recording/Recording.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

using namespace kvSubstance;
using faults::Promise;
using kvString::CString;
using kvString::EncodingUtf8;
using kvString::IString;
using SubstanceAir::PackageDesc;
using SubstanceAir::PackageStackDesc;
using Material = kv::Reference<Substance>;
using Image = kv::TempReference<ilSIDImage>;
using Numerical = SubstanceAir::InputInstanceNumericalBase;

const std::string wide(70, 'x'); // more than a string keeps inside itself
const CString wideName(wide.c_str());

// ---- What is read

const char* const gui = R"(<inputgui label="A label of more than sixteen" widget="%s" description="described">
    <guislider min="0,0.25" max="1" step="0.125" clamp="on"/><guicombobox><guicomboboxitem value="0" text="nothing"/>
    <guicomboboxitem value="2" text="a text of more than sixteen"/></guicombobox></inputgui>)";

// A stack of a bottom and a top has three connections and two fused inputs.
std::string package(bool isTop) {
    const unsigned int first = isTop ? 20 : 40;
    const std::string name = isTop ? "top" : "bottom";
    const auto tag = [first](const char* kind, unsigned int uid, const std::string& identifier) {
        return std::string("<") + kind + " uid='" + std::to_string(first + uid) + "' identifier='" +
               identifier + "' ";
    };
    std::string outputs = isTop ? tag("output", 0, "Output") + "mipmaps='1'/>" : "", inputs;
    for (unsigned int k = 0; k < 3; ++k) {
        const std::string map = "the_map_of_number_" + std::to_string(k);
        if (isTop)
            inputs += tag("input", 12 + k, map) + "type='5' alteroutputs='20'/>";
        else
            outputs += tag("output", k, map) + "><outputgui label='Label of " + map +
                       "'><channels><channel names='height'/></channels></outputgui></output>";
    }
    const auto number = [&](unsigned int uid, const std::string& identifier, int type, const char* widget) {
        CString shown;
        shown.format(gui, widget);
        inputs += tag("input", uid, identifier) + "type='" + std::to_string(type) +
                  "' default='2' alteroutputs='" + std::to_string(first) + "," + std::to_string(first + 4) +
                  "'>" + (*widget ? shown.asChar() : "") + "</input>";
    };
    number(6, "$seed", 4, "");
    number(7, "$resolution", 8, "");
    number(8, isTop ? "amount" : "scale", 0, "slider");
    number(9, "pattern_of_the_" + name, 4, "combobox");
    const std::string presets = "<sbspresets><sbspreset label='A preset of " + name + "' description='" +
                                wide + "'><presetinput uid='" + std::to_string(first + 8) +
                                "' value='1'/></sbspreset></sbspresets>";
    return recording::packageBytes("<sbsdescription asmuid='" + std::to_string(first + 19) +
                                       "'><graphs count='2'><graph pkgurl='pkg://" + name + wide +
                                       "' label='The graph of " + name + "'><outputs count='9'>" + outputs +
                                       tag("output", 4, "left over") + "/></outputs><inputs count='9'>" +
                                       inputs + "</inputs>" + presets +
                                       "</graph><graph pkgurl='pkg://second'><outputs><output "
                                       "uid='9'/></outputs></graph></graphs></sbsdescription>",
                                   name);
}

const char* const hostDescription = R"(<?xml version="1.0"?><!-- a comment of some length, for the parser -->
    <sbsdescription content="full"><graphs count="1"><graph pkgurl="pkg://bricks_and_mortar" label="Bricks &amp; mortar">
    <outputs><output uid="1" identifier="color" format="12" width="512" height="256" mipmaps="3"/></outputs>
    <inputs><input uid="5" identifier="scale" type="1" default="0.5,2" alteroutputs="1,99"><inputgui widget="slider"
        label="A label longer than sixteen characters" description="How large"><guislider min="1" max="3,4"
        clamp="on"/></inputgui></input>text of twenty characters<input uid="6" identifier="mode" type="4"/></inputs>
    </graph></graphs></sbsdescription>)";

const std::string presetsDocument = "<sbspresets><sbspreset pkgurl='pkg://x' label='" + wide +
                                    "'><presetinput uid='5' identifier='a' type='0' "
                                    "value='1'/></sbspreset><sbspreset label='2'/></sbspresets>";

const IString samplePath(KVSUBSTANCE_SAMPLES "/bottoms/brick_wall.xml", EncodingUtf8);

// ---- What operations work on, all of it

struct World {
    kvRTB::SignalBase signal;
    Listener listener;
    kv::StringTable<CString> table;
    std::string text;
    kv::vector<char> content, bottomContent, topContent;
    std::unique_ptr<PackageDesc> bottom, top, stack;
    std::vector<boost::shared_ptr<SubstanceAir::GraphInstance>> graphs;
    std::vector<SubstanceAir::Preset> presets;
    Material material, other;
    Image image;
    bool showsInstances = false;

    void fillTable() {
        for (const CString& piece : kvUtil::split((wide + "," + wide + "2").c_str(), ',', true, true))
            table.getOrInsert(piece) = wideName;
    }
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
        for (const bool isTop : {false, true}) load(isTop);
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
        const std::string bottomBytes = package(false), topBytes = package(true);
        bottomContent.assign(bottomBytes.begin(), bottomBytes.end());
        topContent.assign(topBytes.begin(), topBytes.end());
        recording::setTexture({4, 2, 0, true, {1}});
    }
    void create() { material = createSubstance(bottomContent, topContent); }
    void beginWithMaterial() { begin(), create(); }
    void beginRendered() {
        beginWithMaterial(), render();
        recording::setTexture({4, 2, 0, true, {2}});
        showsInstances = true;
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
    void edit(const char* identifier, int value) const {
        SubstanceInput& input = *material->getInput(identifier);
        input.getType() & 0x20 ? input.setValueI(value, 0) : input.setValueF(static_cast<float>(value), 0);
    }
    void sync(const char* identifier, int value) const {
        edit(identifier, value);
        syncValueFromSubstanceInputToInputInstanceBase(material, material->getInput(identifier));
    }
    void render() { image = getTextureFromSubstance(material.get()); }
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

std::string look(const World& world) {
    ClassicText text;
    text << world.signal.numConnections() << " connections, " << world.text << ", " << world.graphs.size()
         << " graphs, " << std::string(world.content.begin(), world.content.end());
    for (const auto& item : world.table)
        text << item.key.asChar() << item.value.asChar() << (world.table.find(item.key) ? "\n" : " lost\n");
    for (const auto* const package : {world.bottom.get(), world.top.get(), world.stack.get()})
        for (size_t i = 0; package && i < package->graphs().size(); ++i)
            text << descriptiontext::print(package->graphs()[i]);
    for (const auto& preset : world.presets) text << preset.label << preset.inputValues.size();
    if (world.image) text << "pixel " << +world.image->getBytes()[23];
    if (world.material) print(text, *world.material);
    if (world.material && world.material->getCachedTexture()) text << "cached";
    if (world.showsInstances && world.material) print(text, *world.material->getGraphInstances().at(0));
    return text.str() + recording::misuses();
}

// The calls that the next edits come to. Two, because the lists of a state are exchanged in each run: then
// both have had something in them.
std::string probe(World& world) {
    if (!world.material || !world.material->getInput("amount")) return {};
    world.render(); // what has failed for another material, or for another output
    recording::reset();
    for (const unsigned char value : {3, 4}) {
        recording::setTexture({4, 2, 0, true, {value}});
        world.sync("amount", value);
        world.render();
    }
    const std::string trace = recording::takeTrace();
    if (!world.other) return trace + look(world);
    world.material = std::exchange(world.other, {});
    return trace + probe(world);
}

// ---- The operations

struct Row {
    const char* name;
    void (*prepare)(World&);
    void (*act)(World&);
    Promise promise = Promise::Strong;
};

void PrintTo(const Row& row, std::ostream* stream) {
    *stream << row.name;
}

const auto nothing = [](World&) {};
const auto small = [](World& w) { w.makeMaterial(); };
const auto rendered = [](World& w) { w.beginRendered(); };
const auto render = [](World& w) { w.render(); };

const Row rows[] = {
    // The base and the image library
    {"format", nothing, [](World& w) { w.text = CString().format("%s%d", wideName.asChar(), 3).asChar(); }},
    {"append", nothing, [](World& w) { w.text = CString(wideName).append(wideName).asChar(); }},
    {"asMultibyte", nothing,
     [](World& w) { w.text = IString(samplePath).append(samplePath).asMultibyte().asChar(); }},
    {"table", nothing, [](World& w) { w.fillTable(); }, Promise::Basic},
    {"tableClear", [](World& w) { w.fillTable(); }, [](World& w) { w.table.clear(); }},
    {"connect", nothing,
     [](World& w) {
         w.signal.connect(kvRTB::FunctionVoidMember<Listener>(&w.listener, &Listener::called),
                          w.listener.tracking);
     }},
    {"memoryImage", nothing,
     [](World& w) {
         const Image made(new ilSPMemoryImg({3, 2, 1, 4}, ilUChar, ilInterleaved, false));
         if (made->setTile(0, 0, 3, 2, wideName.asChar()) == ilOKAY) w.image = made;
     },
     Promise::Silent},

    // The material model
    {"material", nothing, small},
    {"newInput", small, [](World& w) { w.material->newInput(9, wideName, TypeFloat1); }},
    {"newInputReplacing", small,
     [](World& w) { w.material->newInput(9, w.material->getInputIds()[0], TypeInt1); }},
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
    {"setDescription", small, [](World& w) { w.ints().setDescription(wide.c_str()); }},
    {"addComboItem", small, [](World& w) { w.ints().addComboItem(samplePath); }},
    {"getUniqueLabel", small, [](World& w) { w.text = w.floats().getUniqueLabel(3).asMultibyte().asChar(); }},
    {"getIndexIdentifier", small, [](World& w) { w.text = w.floats().getIndexIdentifier(3).asChar(); }},
    {"setters", small,
     [](World& w) {
         for (SubstanceInput* const input : {&w.ints(), &w.floats()}) {
             input->setValueI(1, 0), input->setValueF(2, 1), input->setValue4I(1, 2, 3, 4),
                 input->setValue4F(1, 2, 3, 4);
             input->setMin({{1}}), input->setMax({{9}}), input->setStep({{2}}), input->setClamp(true),
                 input->setCombo(true);
             input->setWidget(WidgetColor), input->reset();
         }
     },
     Promise::Basic},
    {"readFromXMLData", nothing,
     [](World& w) { w.material = SubstanceReader::getInstance().readFromXMLData(hostDescription); }},
    {"readContent", nothing, [](World& w) { readSubstanceContent(samplePath, w.content); }},
    {"readContentAsChar", nothing, [](World& w) { readSubstanceContentAsChar(samplePath, w.content); }},

    // Packages and the framework
    {"packageDesc", nothing, [](World& w) { w.load(true); }},
    {"packageStackDesc", [](World& w) { w.loadBoth(); }, [](World& w) { w.stackThem(); }},
    {"instantiateGraphs", [](World& w) { w.loadBoth(); }, [](World& w) { w.instantiate(); }, Promise::Basic},
    {"presetsDocument", nothing,
     [](World& w) { SubstanceAir::parsePresetsDocument(w.presets, presetsDocument.c_str()); }},

    // The way to the engine and back
    {"createFromContents", [](World& w) { w.begin(); }, [](World& w) { w.create(); }},
    {"createFromPackages", [](World& w) { w.loadBoth(); },
     [](World& w) { w.material = createSubstance(w.bottom.get(), w.top.get()); }},
    {"synchronise", rendered, [](World& w) { w.sync("amount", 9); }},
    {"synchroniseStateKey", [](World& w) { w.beginRendered(), w.edit("$seed", 9); },
     [](World& w) { w.sync("$seed", 9); }},
    {"synchroniseByIndexIdentifier", [](World& w) { w.beginRendered(), w.edit("scale", 6); },
     [](World& w) {
         syncValueFromSubstanceInputToInputInstanceBase(w.material,
                                                        w.material->getInput("scale")->getIndexIdentifier(0));
     }},
    {"applyStateStringRendered",
     [](World& w) {
         w.beginRendered();
         w.text = std::string(w.material->getPackageURL().asChar()) + "\n28d f1 6\n46d i1 9\n47d i2 3 4\n";
     },
     [](World& w) { w.material->applyStateString(w.text.c_str()); }, Promise::Basic},
    {"textureFirst", [](World& w) { w.beginWithMaterial(); }, render, Promise::Silent},
    {"textureEdited", [](World& w) { w.beginRendered(), w.showsInstances = false, w.sync("amount", 9); },
     render, Promise::Silent},
    {"textureOfAnotherSeed",
     [](World& w) { w.beginRendered(), w.showsInstances = false, w.sync("$seed", 9); }, render,
     Promise::Silent},
    {"textureIdle", rendered, render, Promise::Silent},
    {"textureMergedIntoWaiting", [](World& w) { w.beginWaiting(), w.sync("amount", 7); }, render,
     Promise::Silent},
    {"textureWhileAnotherWaits", [](World& w) { w.beginWithAnotherWaiting(); }, render, Promise::Silent},
    {"endOfWaitingMaterial", [](World& w) { w.beginWaiting(); }, [](World& w) { w.material.reset(); }},
    {"endOfRenderedMaterial", rendered, [](World& w) { w.material.reset(); }},
};

class Allocation : public testing::TestWithParam<Row> {};

TEST_P(Allocation, everyFailureIsSurvived) {
    const Row& row = GetParam();
    const auto prepare = [&row] {
        recording::reset();
        const auto world = std::make_shared<World>();
        row.prepare(*world);
        return faults::Scene{[&row, world] { row.act(*world); }, [world] { return look(*world); },
                             [world] { return probe(*world); }};
    };
    faults::failEveryAllocation({row.name, prepare, row.promise}, &recording::isInsideDouble);
    EXPECT_EQ(recording::liveTextures(), 0u);
}

INSTANTIATE_TEST_SUITE_P(Operations, Allocation, testing::ValuesIn(rows),
                         [](const auto& row) { return row.param.name; });

} // namespace
