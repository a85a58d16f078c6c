#include "benchmarks/PackageText.h"

namespace benchmarks {

using namespace SubstanceAir;

namespace {

constexpr int IndexOfCombo = 6;
constexpr int IndexOfToggle = 12;

std::string attribute(const char* name, const std::string& value) {
    return std::string(" ") + name + "=\"" + value + "\"";
}

std::string repeated(const std::string& number, int count) {
    std::string text = number;
    for (int i = 1; i < count; ++i) text += "," + number;
    return text;
}

bool isInteger(InputType type) {
    return type == Integer || type == Integer2;
}

std::string sliderText(const char* element, InputType type) {
    const int count = componentCount(type);
    return std::string("              <") + element + attribute("min", repeated("0", count)) +
           attribute("max", repeated(isInteger(type) ? "16" : "1", count)) +
           attribute("step", repeated(isInteger(type) ? "1" : "0.01", count)) + attribute("clamp", "on") +
           " />\n";
}

std::string comboText() {
    std::string text = "              <guicombobox>\n";
    for (int item = 0; item < 4; ++item)
        text += "                <guicomboboxitem" + attribute("value", std::to_string(item)) +
                attribute("text", "Choice " + std::to_string(item)) + " />\n";
    return text + "              </guicombobox>\n";
}

std::string guiText(int index, InputType type) {
    const int turn = index % 20;
    const bool isColour = type == Float3 || type == Float4;
    const char* const widget = turn == IndexOfCombo    ? "combobox"
                               : turn == IndexOfToggle ? "togglebutton"
                               : isColour              ? "color"
                                                       : "slider";
    return "            <inputgui" + attribute("label", "Parameter " + std::to_string(index)) +
           attribute("description", "How much of it there is &amp; where") +
           attribute("group", "Group " + std::to_string(index / 25)) + attribute("widget", widget) + ">\n" +
           (turn == IndexOfCombo ? comboText() : sliderText(isColour ? "guicolor" : "guislider", type)) +
           "            </inputgui>\n";
}

std::string inputText(unsigned int uid, int index, const std::string& outputUids) {
    const InputType type = inputTypeAt(index);
    const int count = componentCount(type);
    const std::string number = isInteger(type) ? std::to_string(index % 7) : "0.4375";
    return "          <input" + attribute("uid", std::to_string(uid)) +
           attribute("identifier", "parameter_" + std::to_string(index)) +
           attribute("type", std::to_string(static_cast<int>(type))) +
           attribute("default", repeated(number, count)) + attribute("min", repeated("0", count)) +
           attribute("max", repeated(isInteger(type) ? "16" : "1", count)) +
           attribute("alteroutputs", outputUids) + ">\n" + guiText(index, type) + "          </input>\n";
}

std::string outputText(unsigned int uid, const std::string& identifier) {
    return "          <output" + attribute("uid", std::to_string(uid)) + attribute("identifier", identifier) +
           attribute("format", "0") + attribute("width", "512") + attribute("height", "512") +
           attribute("mipmaps", "1") + ">\n            <outputgui" + attribute("label", identifier) +
           ">\n              <channels>\n                <channel" + attribute("names", "roughness") +
           " />\n              </channels>\n            </outputgui>\n          </output>\n";
}

std::string presetText(const std::string& label, unsigned int firstInputUid, int inputs) {
    std::string text = "          <sbspreset" + attribute("pkgurl", "pkg://benchmark") +
                       attribute("label", label) + attribute("description", "") + ">\n";
    for (int i = 0; i < inputs; i += 10)
        text += "            <presetinput" +
                attribute("uid", std::to_string(firstInputUid + static_cast<unsigned int>(i))) +
                attribute("identifier", "parameter_" + std::to_string(i)) + attribute("type", "0") +
                attribute("value", "0.75") + " />\n";
    return text + "          </sbspreset>\n";
}

} // namespace

InputType inputTypeAt(int index) {
    switch (index % 20) {
    case 2:
    case IndexOfCombo:
    case IndexOfToggle:
    case 14:
        return Integer;
    case 4:
    case 10:
        return Float3;
    case 16:
        return Float4;
    case 8:
        return Float2;
    case 18:
        return Integer2;
    default:
        return Float;
    }
}

int componentCount(InputType type) {
    switch (type) {
    case Float2:
    case Integer2:
        return 2;
    case Float3:
        return 3;
    case Float4:
        return 4;
    default:
        return 1;
    }
}

std::string packageText(unsigned int firstUid, int inputs, int outputs) {
    std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\n<sbsdescription" +
                       attribute("asmuid", std::to_string(firstUid)) + ">\n  <graphs" +
                       attribute("count", "1") + ">\n    <graph" + attribute("pkgurl", "pkg://benchmark") +
                       attribute("label", "Benchmark") + ">\n      <outputs" +
                       attribute("count", std::to_string(outputs)) + ">\n";
    std::string outputUids;
    for (int i = 0; i < outputs; ++i) {
        const unsigned int uid = firstUid + static_cast<unsigned int>(i);
        text += outputText(uid, i + 1 == outputs ? "Output" : "output_" + std::to_string(i));
        outputUids += (i > 0 ? "," : "") + std::to_string(uid);
    }
    const unsigned int firstInputUid = firstUid + static_cast<unsigned int>(outputs);
    text += "      </outputs>\n      <inputs" + attribute("count", std::to_string(inputs)) + ">\n";
    for (int i = 0; i < inputs; ++i)
        text += inputText(firstInputUid + static_cast<unsigned int>(i), i, outputUids);
    text += "      </inputs>\n      <sbspresets>\n";
    text += presetText("Calm", firstInputUid, inputs) + presetText("Wild", firstInputUid, inputs);
    return text + "      </sbspresets>\n    </graph>\n  </graphs>\n</sbsdescription>\n";
}

} // namespace benchmarks
