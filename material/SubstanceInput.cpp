#include "material/SubstanceInput.h"

#include "material/Substance.h"
#include "support/Numbers.h"

#include <cassert>
#include <cstring>

namespace kvSubstance {

namespace {

using IntOrFloat = SubstanceInput::IntOrFloat;

// Slots are read and written as bytes: a union remembers but the member written last, and inputs may be
// written as one type and read as the other.
template <class T>
T slot(const IntOrFloat& values, int index) {
    assert(index >= 0 && index < 4);
    T result;
    std::memcpy(&result, reinterpret_cast<const unsigned char*>(&values) + sizeof(T) * index, sizeof(T));
    return result;
}

// True when the slot held something else. A NaN always counts as something else.
template <class T>
bool store(IntOrFloat& values, int index, T v) {
    if (slot<T>(values, index) == v) return false;
    std::memcpy(reinterpret_cast<unsigned char*>(&values) + sizeof(T) * index, &v, sizeof(T));
    return true;
}

// In order; true when any slot held something else.
template <class T, size_t Count>
bool storeAll(IntOrFloat& values, const T (&components)[Count]) {
    bool changed = false;
    for (size_t k = 0; k < Count; ++k) changed |= store(values, static_cast<int>(k), components[k]);
    return changed;
}

} // namespace

SubstanceInput::SubstanceInput(Substance* owningMaterial, unsigned int inputUid,
                               const kvString::CString& inputIdentifier, Type inputType)
    : SubstanceEntity(inputUid, inputIdentifier)
    , owner(owningMaterial)
    , type(inputType) {
    if (owner) owner->livingInputs.insert(this);
}

SubstanceInput::~SubstanceInput() {
    if (owner) owner->livingInputs.erase(this);
}

void SubstanceInput::setLabel(const char* text) {
    label = kvString::IString(text, kvString::EncodingUtf8);
}

void SubstanceInput::setDescription(const char* text) {
    description = kvString::IString(text, kvString::EncodingUtf8);
}

int SubstanceInput::readInt(const IntOrFloat& values, int index) const {
    return holdsInts() ? slot<int>(values, index) : support::truncated(slot<float>(values, index));
}

float SubstanceInput::readFloat(const IntOrFloat& values, int index) const {
    return holdsInts() ? static_cast<float>(slot<int>(values, index)) : slot<float>(values, index);
}

int SubstanceInput::getValueI(int index) const {
    return readInt(value, index);
}
float SubstanceInput::getValueF(int index) const {
    return readFloat(value, index);
}
int SubstanceInput::getDefaultI(int index) const {
    return readInt(defaultValue, index);
}
float SubstanceInput::getDefaultF(int index) const {
    return readFloat(defaultValue, index);
}
int SubstanceInput::getMinI(int index) const {
    return readInt(minValue, index);
}
float SubstanceInput::getMinF(int index) const {
    return readFloat(minValue, index);
}
int SubstanceInput::getMaxI(int index) const {
    return readInt(maxValue, index);
}
float SubstanceInput::getMaxF(int index) const {
    return readFloat(maxValue, index);
}
int SubstanceInput::getStepI(int index) const {
    return readInt(stepValue, index);
}
float SubstanceInput::getStepF(int index) const {
    return readFloat(stepValue, index);
}

void SubstanceInput::setValueI(int v, int index) {
    if (store(value, index, v)) modified();
}

void SubstanceInput::setValueF(float v, int index) {
    if (store(value, index, v)) modified();
}

void SubstanceInput::setValue2I(int a, int b) {
    if (storeAll(value, {a, b})) modified();
}

void SubstanceInput::setValue3I(int a, int b, int c) {
    if (storeAll(value, {a, b, c})) modified();
}

// The fourth value is compared with its own slot but stored over the third: on purpose. Hosts' saved
// documents hold values that went through this call, and must come out of it as they always did.
void SubstanceInput::setValue4I(int a, int b, int c, int d) {
    bool changed = storeAll(value, {a, b, c});
    if (slot<int>(value, 3) != d) {
        store(value, 2, d);
        changed = true;
    }
    if (changed) modified();
}

void SubstanceInput::setValue2F(float a, float b) {
    if (storeAll(value, {a, b})) modified();
}

void SubstanceInput::setValue3F(float a, float b, float c) {
    if (storeAll(value, {a, b, c})) modified();
}

void SubstanceInput::setValue4F(float a, float b, float c, float d) {
    if (storeAll(value, {a, b, c, d})) modified();
}

void SubstanceInput::setDefault(IntOrFloat values, bool alsoSetValue) {
    defaultValue = values;
    defaultKnown = true;
    if (alsoSetValue) value = values;
}

// Integers too are compared as floats of the same bits, so that an input at -1, whose bits are a NaN, is
// never at its default. On purpose: hosts write out every input that is not, and their documents rely on
// these being written.
bool SubstanceInput::isDefaultValue() const {
    for (int k = 0; k < numComponents(); ++k) {
        if (!(slot<float>(value, k) == slot<float>(defaultValue, k))) return false;
    }
    return true;
}

// A listener may let go of the input between two components, hence the reference. An input that nobody holds
// must not be given one: it would die with it.
void SubstanceInput::reset() {
    const kv::Reference<SubstanceInput> keep(numReferences() > 0 ? this : nullptr);
    for (int k = 0; k < numComponents(); ++k) {
        if (holdsInts()) {
            setValueI(slot<int>(defaultValue, k), k);
        } else if (type & 0x10) {
            setValueF(slot<float>(defaultValue, k), k);
        }
    }
}

void SubstanceInput::setMin(IntOrFloat values) {
    minValue = values;
    minKnown = true;
}

void SubstanceInput::setMax(IntOrFloat values) {
    maxValue = values;
    maxKnown = true;
}

void SubstanceInput::setStep(IntOrFloat values) {
    stepValue = values;
    stepKnown = true;
}

void SubstanceInput::setWidget(Widget newWidget) {
    widget = newWidget;
    shown = true;
}

void SubstanceInput::setCombo(bool newCombo) {
    if (type == TypeInt1) combo = newCombo;
}

void SubstanceInput::addComboItem(kvString::IString item) {
    comboItems.push_back(std::move(item));
}

bool SubstanceInput::showsComponentsApart() const {
    return numComponents() > 1 && widget != WidgetColor && widget != WidgetImage;
}

kvString::IString SubstanceInput::getUniqueLabel(int index) const {
    kvString::IString unique = label;
    if (showsComponentsApart()) {
        kvString::CString suffix;
        suffix.format(" %d", index);
        unique.append(kvString::IString(suffix.asChar(), kvString::EncodingUtf8));
    }
    return unique;
}

kvString::CString SubstanceInput::getIndexIdentifier(int index) const {
    kvString::CString name;
    name.format("$substance$:%s:%s", owner ? owner->getPackageURL().asChar() : "", getIdentifier().asChar());
    if (showsComponentsApart()) {
        kvString::CString suffix;
        name.append(suffix.format("_%d", index));
    }
    return name;
}

} // namespace kvSubstance
