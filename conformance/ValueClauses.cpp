#include "conformance/Clauses.h"
#include "conformance/Findings.h"

#include <cstdint>
#include <vector>

namespace kvSubstance::conformance {

namespace {

void repeatable(Trial& trial) {
    const Part& part = trial.bottom();
    const std::string assembly = trial.link({&part});
    const auto first = trial.run(assembly), second = trial.run(assembly);
    for (const Port& output : part.description.outputs) {
        const Picture picture = first->handle.render(output.uid);
        expect(first->handle.render(output.uid) == picture, "equal bytes from two runs", "others");
        expect(second->handle.render(output.uid) == picture, "equal bytes from two handles", "others");
    }
}

void shows(Trial& trial) {
    bool isTold = false;
    for (const Part* const part : trial.parts()) {
        for (const Port& input : part->description.inputs)
            isTold = isTold || (isNumeric(input) && !isSystem(input) && input.altersOutputs);
        if (trial.findEdit(*part, false)) return;
    }
    if (!isTold) throw NotJudged{"no numeric input alters an output"};
    throw Broken{"expected a value to show in an output that it alters, saw none that did"};
}

void defaults(Trial& trial) {
    const Edit& edit = trial.numericEdit();
    for (const Part* const part : trial.parts()) {
        const std::string assembly = trial.link({part});
        const auto untouched = trial.run(assembly), set = trial.run(assembly);
        const auto known = set->handle.inputUids();
        for (const Port& input : part->description.inputs)
            if (isNumeric(input) && input.identifier != "$resolution" && known.count(input.uid) > 0)
                set->handle.set(input.uid, valueFromText(input.type, input.defaultValue));
        for (const Port& output : part->description.outputs)
            expect(untouched->handle.render(output.uid) == set->handle.render(output.uid),
                   "values to start at the description's defaults", "another picture");
    }
    const auto restored = trial.run(edit.assembly);
    expect(restored->handle.render(edit.outputUid) == edit.before, "a new handle to start at the defaults",
           "another picture");
}

void persist(Trial& trial) {
    const Edit& edit = trial.numericEdit();
    const auto running = trial.run(edit.assembly);
    running->handle.set(edit.inputUid, edit.value);
    for (int run = 0; run < 3; ++run)
        expect(running->handle.render(edit.outputUid) == edit.after, "a value to stay until it is set again",
               "another picture");
}

void readAtOnce(Trial& trial) {
    const Edit& edit = trial.numericEdit();
    const auto running = trial.run(edit.assembly);
    Value value = edit.value;
    expectSuccess(trial.engine.pushSetInput(running->handle.get(), SubstancePushInput,
                                            running->handle.inputIndex(edit.inputUid), value.type,
                                            value.words.data(), 0),
                  "substanceHandlePushSetInput");
    value.words = {};
    expect(running->handle.render(edit.outputUid) == edit.after, "a value to be read when it is pushed",
           "a later one");
}

// The pointer leads nowhere: whoever reads it does not come back.
void wrongType(Trial& trial) {
    const Edit& edit = trial.numericEdit();
    const auto running = trial.run(edit.assembly);
    const auto* const nowhere = reinterpret_cast<const void*>(std::uintptr_t(16));
    for (int type = SubstanceInputFloat; type <= SubstanceInputInteger4; ++type) {
        if (type == edit.value.type) continue;
        expectRefusal(trial.engine.pushSetInput(running->handle.get(), SubstancePushInput,
                                                running->handle.inputIndex(edit.inputUid), type, nowhere, 0),
                      "a value of another type");
    }
    expect(running->handle.render(edit.outputUid) == edit.before, "a refused value to change nothing",
           "another picture");
}

// ---- Images

unsigned int setImage(Trial& trial, Running& running, const SubstanceTextureInput* image) {
    return trial.engine.pushSetInput(running.handle.get(), SubstancePushInput,
                                     running.handle.inputIndex(trial.imageEdit().inputUid),
                                     SubstanceInputImage, image, 0);
}

void imageShows(Trial& trial) {
    bool isTold = false;
    for (const Part* const part : trial.parts()) {
        for (const Port& input : part->description.inputs)
            isTold = isTold || (input.type == SubstanceInputImage && input.altersOutputs);
        if (trial.findEdit(*part, true)) return;
    }
    if (!isTold) throw NotJudged{"no image input alters an output"};
    throw Broken{"expected an image to show in an output that it alters, saw none that did"};
}

void imageReadAtOnce(Trial& trial) {
    const Edit& edit = trial.imageEdit();
    const auto running = trial.run(edit.assembly);
    SubstanceTextureInput image = testImage();
    const auto* const bytes = static_cast<const unsigned char*>(image.pixels);
    std::vector<unsigned char> pixels(bytes, bytes + 64);
    image.pixels = pixels.data();
    expectSuccess(setImage(trial, *running, &image), "an image in format 0");
    pixels.assign(pixels.size(), 255);
    image = {};
    expect(running->handle.render(edit.outputUid) == edit.after, "an image to be read when it is pushed",
           "later pixels");
}

void nullImage(Trial& trial) {
    const Edit& edit = trial.imageEdit();
    const auto running = trial.run(edit.assembly);
    const SubstanceTextureInput noPixels{};
    for (const SubstanceTextureInput* const none :
         {static_cast<const SubstanceTextureInput*>(nullptr), &noPixels}) {
        running->handle.set(edit.inputUid, edit.value);
        expectSuccess(setImage(trial, *running, none), "a null image");
        expect(running->handle.render(edit.outputUid) == edit.before, "null to be no image",
               "another picture");
    }
}

} // namespace

std::vector<Entry> valueClauses() {
    return {
        {{"repeatable", "The same values give the same texture, byte for byte."}, repeatable},
        {{"value-shows", "A value shows in an output that it alters."}, shows},
        {{"defaults", "Values start at the description's defaults."}, defaults},
        {{"values-persist", "A value stays from run to run until it is set again."}, persist},
        {{"value-read-at-once", "A value is read when it is pushed."}, readAtOnce},
        {{"wrong-type", "A value of another type is refused unread."}, wrongType},
        {{"image-shows", "An image shows in an output that it alters."}, imageShows},
        {{"image-read-at-once", "An image is read when it is pushed."}, imageReadAtOnce},
        {{"null-image", "A null record, and null pixels, are no image."}, nullImage},
    };
}

} // namespace kvSubstance::conformance
