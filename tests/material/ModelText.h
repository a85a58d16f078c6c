// Inputs as text, to be compared whole, and listeners to count with.
#pragma once

#include "material/Substance.h"
#include "tests/ClassicText.h"

#include <functional>
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
inline std::string valueText(const SubstanceInput& input,
                             int (SubstanceInput::*getInt)(int) const = &SubstanceInput::getValueI,
                             float (SubstanceInput::*getFloat)(int) const = &SubstanceInput::getValueF) {
    ClassicText text;
    for (int k = 0; k < 4; ++k) {
        if (k) text << ",";
        input.getType() & 0x20 ? text << (input.*getInt)(k) : text << (input.*getFloat)(k);
    }
    return text.str();
}

inline std::string quoted(const kvString::IString& text) {
    return std::string(" \"") + text.asMultibyte(kvString::EncodingUtf8).asChar() + "\"";
}

// What an input tells but its uid, on one line; what is unset is left out.
inline std::string inputText(SubstanceInput& input) {
    using In = SubstanceInput;
    ClassicText text;
    text << input.getIdentifier().asChar() << " " << input.getType() << " = " << valueText(input);
    if (input.hasDefault()) text << " default " << valueText(input, &In::getDefaultI, &In::getDefaultF);
    if (input.hasMin()) text << " min " << valueText(input, &In::getMinI, &In::getMinF);
    if (input.hasMax()) text << " max " << valueText(input, &In::getMaxI, &In::getMaxF);
    if (input.hasStep()) text << " step " << valueText(input, &In::getStepI, &In::getStepF);
    if (input.shouldClamp()) text << " clamp";
    if (input.showInGUI()) text << " widget " << input.getWidget();
    if (!input.getLabel().empty()) text << quoted(input.getLabel());
    if (!input.getDescription().empty()) text << " described" << quoted(input.getDescription());
    if (input.isCombo()) text << " combo";
    for (const kvString::IString& item : input.getComboItem()) text << " " << item.asMultibyte().asChar();
    return text.str();
}

} // namespace kvSubstance
