/// @file
/// A parameter of a material: its value, default and range, and how a host shows it.
#pragma once

#include "material/SubstanceEntity.h"
#include "material/Types.h"

namespace kvSubstance {

class Substance;

/// Created by Substance::newInput. Values have one to four components (the low three bits of the type) in
/// slots 0 to 3; component indices below must be in that range and are checked in debug builds only. Image
/// inputs have no components.
///
/// Setters of values compare first: listeners are called once for each call that changes something, and not
/// at all for one that changes nothing. A NaN always counts as a change. A listener may have destroyed the
/// input by the time a setter returns, unless the caller holds a reference.
///
/// An edit reaches the engine's side when it is carried over (bridge/Synchronisation.h), not before.
class KVSUBSTANCE_API SubstanceInput : public SubstanceEntity {
public:
    /// Four slots, read as the type of the input says.
    union IntOrFloat {
        int i[4];   ///< Of integer inputs.
        float f[4]; ///< Of float inputs.
    };

    /// Inputs are made by Substance::newInput, which also connects them to the material. The owner is not
    /// held; an input that outlives it forgets it.
    SubstanceInput(Substance* owner, unsigned int uid, const kvString::CString& identifier, Type type);
    ~SubstanceInput() override;

    Type getType() const { return type; } ///< Never changes.

    /// @{
    /// Texts for people, empty when the package has none or gives the input no known widget. The reference is
    /// valid as long as the input lives, and shows later changes.
    const kvString::IString& getLabel() const { return label; }
    const kvString::IString& getDescription() const { return description; }
    /// @}

    /// @{
    /// UTF-8 is copied; a null pointer stores an empty text. No listener is told.
    void setLabel(const char* text);
    void setDescription(const char* text);
    /// @}

    /// @{
    /// One component of the value. A float input read as int is cut toward zero, saturating, and 0 for a NaN;
    /// an integer input read as float is converted.
    int getValueI(int index) const;
    float getValueF(int index) const;
    /// @}

    /// @{
    /// Store the components as named, whatever the input's type: the caller picks the family that fits it.
    /// Slots that are not named stay as they are. They do not look at the range; a host that wants values
    /// inside it asks shouldClamp and clamps.
    void setValueI(int v, int index);
    void setValueF(float v, int index);
    void setValue2I(int a, int b);
    void setValue3I(int a, int b, int c);
    /// @}

    /// On purpose unlike its siblings: a fourth value that differs from slot 3 goes to slot 2, over the
    /// third. Slot 3 is never written, so such a call always tells the listeners. To set four integers call
    /// setValueI for each.
    void setValue4I(int a, int b, int c, int d);

    /// @{
    /// As setValue2I and setValue3I, for floats; four of them go where they belong.
    void setValue2F(float a, float b);
    void setValue3F(float a, float b, float c);
    void setValue4F(float a, float b, float c, float d);
    /// @}

    /// The default. With alsoSetValue all four slots are copied to the value too, without telling listeners.
    void setDefault(IntOrFloat values, bool alsoSetValue);
    /// Whether a default was set; a range that was read from a host-side description counts too, on purpose.
    bool hasDefault() const { return defaultKnown; }

    /// @{
    /// One component of the default, converted as getValueI and getValueF do; 0 when none was set.
    int getDefaultI(int index) const;
    float getDefaultF(int index) const;
    /// @}

    /// Whether all components equal the default's, which is zero when none was set. Components of integer
    /// inputs are compared as floats of the same bits: -1, for instance, never equals itself. On purpose.
    bool isDefaultValue() const;

    /// Sets every component to the default's, one after the other; each that changes calls the listeners.
    void reset();

    /// @{
    /// The range of the value and the step of its widget, in the value's units, for each component. Zero, and
    /// not known, until set; setting one tells no listener and does not look at the value. Getters convert as
    /// getValueI and getValueF do. Where one is not known a host offers what it likes.
    void setMin(IntOrFloat values);
    bool hasMin() const { return minKnown; }
    int getMinI(int index) const;
    float getMinF(int index) const;
    void setMax(IntOrFloat values);
    bool hasMax() const { return maxKnown; }
    int getMaxI(int index) const;
    float getMaxF(int index) const;
    void setStep(IntOrFloat values);
    bool hasStep() const { return stepKnown; }
    int getStepI(int index) const;
    float getStepF(int index) const;
    /// @}

    /// Says whether the host is to keep values inside the range. The library never does.
    void setClamp(bool newClamp) { clamp = newClamp; }
    bool shouldClamp() const { return clamp; } ///< False until it is said.

    /// How the input is shown. Setting a widget, WidgetNone included, makes the input shown.
    void setWidget(Widget newWidget);
    Widget getWidget() const { return widget; } ///< WidgetNone until one is set.
    bool showInGUI() const { return shown; }    ///< Whether a host shows the input at all.

    /// Whether the value is the index of a combo item. Only inputs of TypeInt1 can be combos; others ignore
    /// the call.
    void setCombo(bool newCombo);
    bool isCombo() const { return combo; } ///< False until it is said.

    void addComboItem(kvString::IString item); ///< At the end: its position is the value it stands for.

    /// The items by value, from 0; "-" stands where the package has none. The list itself, valid as long as
    /// the input lives; a host may edit it.
    kv::vector<kvString::IString>& getComboItem() { return comboItems; }

    /// A label for each component: the input's label, with " 0" to " 3" behind it when the host shows the
    /// components apart (more than one, and neither a colour nor an image widget).
    kvString::IString getUniqueLabel(int index) const;

    /// A name for each component that is unique among a host's materials: "$substance$:URL:IDENTIFIER", with
    /// "_0" to "_3" behind it in the same cases. The URL is the material's, empty once the material is gone.
    kvString::CString getIndexIdentifier(int index) const;

private:
    friend class Substance;       // makes its inputs forget it when it dies, and writes their values
    friend class SubstanceReader; // stores what a description says without telling listeners

    int numComponents() const { return type & 7; }
    bool holdsInts() const { return (type & 0x20) != 0; }
    bool showsComponentsApart() const;
    int readInt(const IntOrFloat& values, int index) const;
    float readFloat(const IntOrFloat& values, int index) const;

    Substance* owner; // null once it died
    Type type;
    bool shown = false;
    kvString::IString label;
    kvString::IString description;
    IntOrFloat value{};
    IntOrFloat defaultValue{};
    IntOrFloat minValue{};
    IntOrFloat maxValue{};
    IntOrFloat stepValue{};
    bool defaultKnown = false;
    bool minKnown = false;
    bool maxKnown = false;
    bool stepKnown = false;
    bool clamp = false;
    Widget widget = WidgetNone;
    bool combo = false;
    kv::vector<kvString::IString> comboItems;
};

} // namespace kvSubstance
