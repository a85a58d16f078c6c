#include "material/Substance.h"

namespace kvSubstance {

Substance::Substance()
    : SubstanceEntity(0, kvString::CString()) {}

// The members die from the last to the first: the texture, then the graphs, the texts, and the tables of
// entities, inputs and outputs.
Substance::~Substance() {
    for (SubstanceInput* const input : livingInputs) input->owner = nullptr;
}

void Substance::listenTo(SubstanceEntity& entity) {
    const kvRTB::FunctionVoidMember<SubstanceEntity> callback(this, &SubstanceEntity::onModified);
    entity.getModifiedSignal().connect(callback, getReceiver());
}

// Whatever needs memory comes first, so that a material that runs out of it is as it was: but for a uid that
// stands for no entity, which nobody sees.
// A second input of one identifier takes the place of the first by name, and both stay by uid. On purpose: a
// stack of two graphs may have both, and hosts know inputs by their names.
SubstanceInput* Substance::newInput(unsigned int inputUid, const kvString::CString& inputIdentifier,
                                    Type type) {
    const kv::Reference<SubstanceInput> input(new SubstanceInput(this, inputUid, inputIdentifier, type));
    listenTo(*input);
    kv::Reference<SubstanceEntity>& byUid = entities.getOrInsert(inputUid);
    inputIds.push_back(input->getIdentifier()); // the caller's may be among these, or die below
    try {
        inputs.getOrInsert(input->getIdentifier()) = input;
    } catch (...) {
        inputIds.pop_back();
        throw;
    }
    byUid = input;
    return input.get();
}

SubstanceOutput* Substance::newOutput(unsigned int outputUid, const kvString::CString& outputIdentifier,
                                      Format format, int xSize, int ySize, int numMipMaps, bool dynamicSize) {
    const kv::Reference<SubstanceOutput> output(new SubstanceOutput(this, outputUid, outputIdentifier, format,
                                                                    xSize, ySize, numMipMaps, dynamicSize));
    listenTo(*output);
    kv::Reference<SubstanceEntity>& byUid = entities.getOrInsert(outputUid);
    outputs.getOrInsert(outputIdentifier) = output;
    byUid = output;
    return output.get();
}

SubstanceInput* Substance::getInput(const kvString::CString& wantedIdentifier) const {
    const auto* const found = inputs.find(wantedIdentifier);
    return found ? found->get() : nullptr;
}

SubstanceOutput* Substance::getOutput(const kvString::CString& wantedIdentifier) const {
    const auto* const found = outputs.find(wantedIdentifier);
    return found ? found->get() : nullptr;
}

SubstanceEntity* Substance::getEntity(unsigned int wantedUid) const {
    const auto* const found = entities.find(wantedUid);
    return found ? found->get() : nullptr;
}

// Listeners may add and replace inputs, and drop the material: the walk is over a list of its own.
void Substance::reset() {
    std::vector<kv::Reference<SubstanceInput>> all;
    for (const auto& item : inputs) all.push_back(item.value);
    for (const auto& input : all) input->reset();
}

void Substance::clearModified() {
    for (const auto& item : entities)
        if (item.value) item.value->clearModified();
    SubstanceEntity::clearModified();
}

void Substance::setPackageDesc(SubstanceAir::PackageStackDesc* stack, SubstanceAir::PackageDesc* first,
                               SubstanceAir::PackageDesc* second) {
    packageStack = stack;
    firstPackage = first;
    secondPackage = second;
}

} // namespace kvSubstance
