/// @file
/// The enumerations of the material model.
#pragma once

namespace kvSubstance {

/// What an input holds. The low three bits are the number of components, 0x10 marks floats, 0x20 integers.
enum Type {
    TypeFloat1 = 0x11, ///< 1 float
    TypeFloat2 = 0x12, ///< 2 floats
    TypeFloat3 = 0x13, ///< 3 floats
    TypeFloat4 = 0x14, ///< 4 floats
    TypeInt1 = 0x21,   ///< 1 int
    TypeInt2 = 0x22,   ///< 2 ints
    TypeInt3 = 0x23,   ///< 3 ints
    TypeInt4 = 0x24,   ///< 4 ints
    TypeImage = 0x40,  ///< An image; no components. Only description readers make such inputs.
};

/// How a host shows an input.
enum Widget {
    WidgetNone = 0,         ///< Unknown, or not said. See SubstanceInput::showInGUI.
    WidgetSlider = 1,       ///< A slider for each component, over the range.
    WidgetAngle = 2,        ///< A dial; the unit is the package's.
    WidgetToggleButton = 3, ///< A switch: 0 or 1.
    WidgetColor = 4,        ///< A colour picker: components 0 to 1, sRGB-encoded; a fourth is the opacity.
    WidgetImage = 5,        ///< A picture chooser.
    WidgetComboBox = 6,     ///< A list: the value is the position of one of the combo items.
};

/// An output's pixel format as its description says; carried for the host, not interpreted. Format0 to
/// Format7 are the codes 0, 4, 8 to 28 of descriptions.
enum Format {
    FormatInvalid = -1, ///< Any other code.
    Format0 = 0,        ///< Code 0
    Format1 = 1,        ///< Code 4
    Format2 = 2,        ///< Code 8
    Format3 = 3,        ///< Code 12
    Format4 = 4,        ///< Code 16
    Format5 = 5,        ///< Code 20
    Format6 = 6,        ///< Code 24
    Format7 = 7,        ///< Code 28
};

} // namespace kvSubstance
