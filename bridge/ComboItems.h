// The items of a combo box, from its description.
#pragma once

class TiXmlElement;

namespace kvSubstance {

class SubstanceInput;

constexpr int MaxComboItems = 36; // positions, for the values 0 to 35

// Adds the "guicomboboxitem" children of a "guicombobox" element to the input, each at the position of its
// "value", with "-" where values in between are missing. Of several items with one value the first counts. It
// ends when as many items were placed as there are children, or positions: so a value that repeats another or
// lies beyond the last position fills the rest with "-".
void addComboItems(const TiXmlElement& comboBox, SubstanceInput& input);

} // namespace kvSubstance
