#include "tests/material/ModelText.h"

#include <sstream>

namespace kvSubstance {

namespace {

using In = SubstanceInput;

std::string slots(const In& input, int (In::*getInt)(int) const, float (In::*getFloat)(int) const) {
    std::ostringstream text;
    for (int k = 0; k < 4; ++k) {
        if (k) text << ",";
        input.getType() & 0x20 ? text << (input.*getInt)(k) : text << (input.*getFloat)(k);
    }
    return text.str();
}

std::string quoted(const kvString::IString& text) {
    return std::string(" \"") + text.asMultibyte(kvString::EncodingUtf8).asChar() + "\"";
}

} // namespace

std::string valueText(const In& input) {
    return slots(input, &In::getValueI, &In::getValueF);
}

std::string inputText(In& input) {
    std::ostringstream text;
    text << input.getIdentifier().asChar() << " " << input.getType() << " = " << valueText(input);
    if (input.hasDefault()) text << " default " << slots(input, &In::getDefaultI, &In::getDefaultF);
    if (input.hasMin()) text << " min " << slots(input, &In::getMinI, &In::getMinF);
    if (input.hasMax()) text << " max " << slots(input, &In::getMaxI, &In::getMaxF);
    if (input.hasStep()) text << " step " << slots(input, &In::getStepI, &In::getStepF);
    if (input.shouldClamp()) text << " clamp";
    if (input.showInGUI()) text << " widget " << input.getWidget();
    if (!input.getLabel().empty()) text << quoted(input.getLabel());
    if (!input.getDescription().empty()) text << " described" << quoted(input.getDescription());
    if (input.isCombo()) text << " combo";
    for (const kvString::IString& item : input.getComboItem()) text << quoted(item);
    return text.str();
}

std::string modelText(Substance& material, std::initializer_list<const char*> outputs) {
    std::ostringstream text;
    text << material.getPackageURL().asChar() << quoted(material.getLabel()) << " "
         << (material.isModified() ? "modified\n" : "\n");
    for (const char* const identifier : outputs) {
        const SubstanceOutput& output = *material.getOutput(identifier);
        text << output.getUID() << " " << identifier << " format " << output.getFormat() << " "
             << output.getXSize() << "x" << output.getYSize() << " " << output.getNumMipMaps() << " levels"
             << (output.getDynamicSize() ? " dynamic\n" : "\n");
    }
    for (const kvString::CString& identifier : material.getInputIds()) {
        In& input = *material.getInput(identifier);
        text << input.getUID() << " " << inputText(input) << "\n";
    }
    return text.str();
}

} // namespace kvSubstance
