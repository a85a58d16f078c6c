// Materials as text, to be compared whole.
#pragma once

#include "material/Substance.h"

#include <initializer_list>
#include <ostream>
#include <string>

namespace kvSubstance {

// Counts how often it is called.
struct Listener {
    kvRTB::SignalBase tracking;
    int calls = 0;

    void called() { ++calls; }
    void listenTo(SubstanceEntity& entity) {
        entity.getModifiedSignal().connect(kvRTB::FunctionVoidMember<Listener>(this, &Listener::called),
                                           tracking);
    }
};

// All four slots, as ints when the input's type says so.
std::string valueText(const SubstanceInput& input);

// Everything an input tells, on one line; what is unset is left out.
std::string inputText(SubstanceInput& input);

// The material, the outputs of these identifiers, and the inputs in the order of their ids, one a line.
std::string modelText(Substance& material, std::initializer_list<const char*> outputs = {});

} // namespace kvSubstance
