#include "conformance/Clauses.h"
#include "conformance/Findings.h"
#include "conformance/Recorder.h"

#include <algorithm>

namespace kvSubstance::conformance {

namespace {

std::vector<Delivery> deliveriesOf(Linking& linking, const std::string& package) {
    takeDeliveries();
    linking.push(package);
    return takeDeliveries();
}

void inPush(Trial& trial) {
    Linking linking(trial.linker);
    for (const Part* const part : trial.parts()) {
        const auto deliveries = deliveriesOf(linking, part->package);
        const auto texts =
            std::count_if(deliveries.begin(), deliveries.end(), [](const auto& each) { return each.isText; });
        expect(deliveries.size() == 2 && texts == 1, "one text and one call with bytes from a push",
               deliveries.size());
        for (const Delivery& delivery : deliveries) {
            expect(delivery.thread == std::this_thread::get_id(), "callbacks on the pushing thread",
                   "another");
            expect(!delivery.content.empty(), "a text and bytes", "an empty one");
        }
    }
}

void index(Trial& trial) {
    Linking linking(trial.linker);
    SubstanceLinkerHandle* const second = linking.newHandle();
    const std::string& package = trial.bottom().package;
    for (unsigned int push = 0; push < 3; ++push)
        for (const Delivery& delivery : deliveriesOf(linking, package))
            expect(delivery.index == push, "indices that count the pushes from 0", delivery.index);
    takeDeliveries();
    expectSuccess(trial.linker.push(second, package.data(), package.size()), "a push into a second handle");
    for (const Delivery& delivery : takeDeliveries())
        expect(delivery.index == 0, "each handle to count for itself", delivery.index);
}

void handle(Trial& trial) {
    Linking linking(trial.linker);
    for (const Delivery& delivery : deliveriesOf(linking, trial.bottom().package))
        expect(delivery.handle == linking.handle(), "the handle that was pushed into", "another");
}

void removal(Trial& trial) {
    Linking linking(trial.linker);
    for (const bool isText : {true, false}) {
        expectSuccess(trial.linker.contextSetCallback(
                          linking.context(),
                          isText ? SubstanceLinkerCallbackText : SubstanceLinkerCallbackBytes, nullptr),
                      "substanceLinkerContextSetCallback with null");
        const auto deliveries = deliveriesOf(linking, trial.bottom().package);
        expect(deliveries.size() == (isText ? 1 : 0), "no call of a callback that was removed",
               deliveries.size());
    }
}

void description(Trial& trial) {
    for (const Part* const part : trial.parts()) {
        const auto running = trial.run(trial.link({part}));
        for (const SubstanceInputDesc& input : running->handle.inputs()) {
            const auto& told = part->description.inputs;
            expect(std::any_of(
                       told.begin(), told.end(),
                       [&](const Port& port) { return port.uid == input.uid && port.type == input.type; }),
                   "the engine's inputs in the description, with their types", input.uid);
        }
        for (const Port& output : part->description.outputs)
            static_cast<void>(running->handle.outputIndex(output.uid));
    }
}

void bareAssembly(Trial& trial) {
    const Part& part = trial.bottom();
    Linking linking(trial.linker);
    expectSuccess(linking.tryToPush(part.assembly), "a push of an assembly that the linker delivered");
    for (const Port& output : part.description.outputs)
        trial.linker.setOutputFormat(linking.handle(), output.uid, SubstanceFormatRgba8, 1);
    const unsigned int uid = part.description.outputs.at(0).uid;
    const Picture expected = trial.run(trial.link({&part}))->handle.render(uid);
    expect(trial.run(linking.link())->handle.render(uid) == expected, "the picture that the package gives",
           "another");
}

// What the caller had is gone before anything is linked.
void copies(Trial& trial) {
    const Part& part = trial.bottom();
    Linking linking(trial.linker);
    std::string bytes = part.package;
    linking.push(bytes);
    std::fill(bytes.begin(), bytes.end(), '\x5a');
    Linking other(trial.linker);
    other.push(part.package);
    const auto running = trial.run(linking.link());
    expect(running->handle.inputUids() == trial.inputsOf(other.link()), "what was pushed, as it was then",
           "other inputs");
}

void failedPush(Trial& trial) {
    for (const bool isFirst : {true, false}) {
        Linking linking(trial.linker);
        if (!isFirst) linking.push(trial.bottom().package);
        expectRefusal(linking.tryToPush("no package"), "a push of what is no package");
        if (isFirst) linking.push(trial.bottom().package);
        linking.expectNoLink("after a push that failed");
    }
}

} // namespace

std::vector<Entry> deliveryClauses() {
    return {
        {{"delivery-in-push",
          "A push calls both callbacks once each, on the pushing thread, before it returns."},
         inPush},
        {{"delivery-index", "The callbacks' index counts the pushes into the handle from 0."}, index},
        {{"delivery-handle", "The callbacks name the handle that was pushed into."}, handle},
        {{"delivery-removal", "A null callback removes the one set before."}, removal},
        {{"description-matches", "Uids and types of the description are those that the engine knows."},
         description},
        {{"bare-assembly", "A delivered assembly can be pushed in place of its package."}, bareAssembly},
        {{"push-copies", "A push copies: the caller's buffer may change before linking."}, copies},
        {{"failed-push", "After a failed push the handle does not link, and says so in its out-parameters."},
         failedPush},
    };
}

} // namespace kvSubstance::conformance
