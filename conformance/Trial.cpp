#include "conformance/Trial.h"

#include "conformance/Findings.h"
#include "conformance/Recorder.h"

namespace kvSubstance::conformance {

std::vector<Value> unusualValues(int type) {
    if (type == SubstanceInputImage) return {{type, {}}};
    if (isIntegerType(type)) return {{type, {3, 2, 5, 1}}, {type, {1, 3, 2, 4}}};
    return {valueFromText(type, "0.83,0.21,0.64,0.9"), valueFromText(type, "0.17,0.71,0.36,0.4")};
}

Part Trial::read(const std::string& package) {
    Linking linking(linker);
    takeDeliveries();
    linking.push(package);
    Part part{package, {}, {}, {}};
    for (const Delivery& delivery : takeDeliveries())
        (delivery.isText ? part.text : part.assembly) = delivery.content;
    part.description = readDescription(part.text);
    expect(part.description.isReadable,
           "a description that is XML: sbsdescription with asmuid, and graphs in it", "another text");
    return part;
}

const Part& Trial::bottom() {
    if (!bottom_) bottom_ = read(packages_.bottom);
    return *bottom_;
}

const Part& Trial::top() {
    if (packages_.top.empty()) throw NotJudged{"there is no second package"};
    if (!top_) top_ = read(packages_.top);
    return *top_;
}

std::vector<const Part*> Trial::parts() {
    if (packages_.top.empty()) return {&bottom()};
    return {&top(), &bottom()};
}

const Part& Trial::partWithTwoOutputs() {
    for (const Part* const part : parts())
        if (part->description.outputs.size() > 1) return *part;
    throw NotJudged{"no package has two outputs"};
}

std::set<unsigned int> Trial::resolutionUids() {
    std::set<unsigned int> uids;
    for (const Part* const part : parts())
        for (const Port& input : part->description.inputs)
            if (input.identifier == "$resolution") uids.insert(input.uid);
    return uids;
}

std::string Trial::link(const std::vector<const Part*>& stack, const Preparation& prepare) {
    Linking linking(linker);
    for (const Part* const part : stack) {
        linking.push(part->assembly); // as the library does, which keeps no packages
        for (const Port& output : part->description.outputs)
            expectSuccess(linker.setOutputFormat(linking.handle(), output.uid, SubstanceFormatRgba8, 1),
                          "substanceLinkerHandleSetOutputFormat with format 0");
    }
    if (prepare) prepare(linking.handle());
    return linking.link();
}

std::string Trial::linkStack(const Preparation& prepare) {
    std::set<unsigned int> uids;
    std::size_t count = 0;
    for (const Part* const part : {&bottom(), &top()})
        for (const auto* const ports : {&part->description.inputs, &part->description.outputs})
            for (const Port& port : *ports) {
                uids.insert(port.uid);
                ++count;
            }
    if (uids.size() != count) throw NotJudged{"uids of the two packages coincide"};
    return link({&bottom(), &top()}, prepare);
}

std::unique_ptr<Running> Trial::run(const std::string& assembly) {
    return std::make_unique<Running>(engine, assembly, resolutionUids());
}

std::set<unsigned int> Trial::inputsOf(const std::string& assembly) {
    return run(assembly)->handle.inputUids();
}

std::optional<Edit> Trial::findEdit(const Part& part, bool ofImage) {
    const std::string assembly = link({&part});
    for (const Port& input : part.description.inputs) {
        if (isSystem(input) || (ofImage ? input.type != SubstanceInputImage : !isNumeric(input))) continue;
        const auto running = run(assembly);
        if (running->handle.inputUids().count(input.uid) == 0) continue; // linked away
        for (const Port& output : part.description.outputs) {
            const auto fresh = run(assembly);
            const Picture before = fresh->handle.render(output.uid);
            for (const Value& value : unusualValues(input.type)) {
                fresh->handle.set(input.uid, value);
                const Picture after = fresh->handle.render(output.uid);
                if (after != before) return Edit{assembly, input.uid, value, output.uid, before, after};
            }
        }
    }
    return std::nullopt;
}

const Edit& Trial::numericEdit() {
    for (const Part* const part : parts())
        if (!numericEdit_) numericEdit_ = findEdit(*part, false);
    if (!numericEdit_) throw NotJudged{"no number that an input is set to shows in an output"};
    return *numericEdit_;
}

const Edit& Trial::imageEdit() {
    for (const Part* const part : parts())
        if (!imageEdit_) imageEdit_ = findEdit(*part, true);
    if (!imageEdit_) throw NotJudged{"no image that an input is given shows in an output"};
    return *imageEdit_;
}

} // namespace kvSubstance::conformance
