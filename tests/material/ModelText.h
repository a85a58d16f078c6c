// Materials as text, to be compared whole, and listeners to count with.
#pragma once

#include "material/Substance.h"

#include <functional>
#include <initializer_list>
#include <string>

namespace kvSubstance {

// Counts how often it is called, and then acts.
struct Listener {
    kvRTB::SignalBase tracking;
    int calls = 0;
    std::function<void()> act = [] {};

    void called() {
        ++calls;
        const std::function<void()> outlivesThis = act;
        outlivesThis();
    }
    void listenTo(SubstanceEntity& entity) {
        entity.getModifiedSignal().connect(kvRTB::FunctionVoidMember<Listener>(this, &Listener::called),
                                           tracking);
    }
};

// All four slots, as ints when the input's type says so.
std::string valueText(const SubstanceInput& input);

// What an input tells but its uid, on one line; what is unset is left out.
std::string inputText(SubstanceInput& input);

// The material, the outputs of these identifiers, and the inputs in the order of their ids, one a line.
std::string modelText(Substance& material, std::initializer_list<const char*> outputs);

} // namespace kvSubstance
