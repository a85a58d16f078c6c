#include "bridge/ComboItems.h"

#include "material/SubstanceInput.h"
#include "support/Numbers.h"

#include <tinyxml.h>

#include <array>

namespace kvSubstance {

namespace {

constexpr const char* ItemName = "guicomboboxitem";

struct Positions {
    int numItems = 0;                                       // children, placed or not
    std::array<const TiXmlElement*, MaxComboItems> items{}; // by value
};

Positions readPositions(const TiXmlElement& comboBox) {
    Positions positions;
    const TiXmlElement* item = comboBox.FirstChildElement(ItemName);
    for (; item; item = item->NextSiblingElement(ItemName)) {
        ++positions.numItems;
        const char* const text = item->Attribute("value");
        if (!text) continue; // no value is not the value 0
        const int value = support::leadingInteger(text);
        if (value < 0 || value >= MaxComboItems) continue;
        const TiXmlElement*& place = positions.items[static_cast<size_t>(value)];
        if (!place) place = item;
    }
    return positions;
}

} // namespace

// As many items as the box has children: a value that comes twice, or beyond the positions, leaves fillers at
// the end. On purpose: positions are values, and a list that were cut short would shift them.
void addComboItems(const TiXmlElement& comboBox, SubstanceInput& input) {
    const Positions positions = readPositions(comboBox);
    int added = 0;
    for (const TiXmlElement* const item : positions.items) {
        if (added >= positions.numItems) return;
        const char* const text = item ? item->Attribute("text") : nullptr;
        input.addComboItem(kvString::IString(text ? text : "-", kvString::EncodingMultibyte));
        if (text) ++added;
    }
}

} // namespace kvSubstance
