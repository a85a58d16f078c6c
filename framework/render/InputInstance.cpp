#include "framework/render/InputInstance.h"

#include "framework/description/ValueText.h"
#include "framework/render/GraphInstance.h"
#include "framework/render/Renderer.h"
#include "framework/render/RendererAccess.h"

#include <algorithm>

namespace SubstanceAir {

namespace {

// Kept: the output that stands where the uid belongs is marked, and whether it has that uid is not asked.
// Descriptions are trusted, and a foreign uid costs a needless render of a neighbour, never a missing one.
void markDirty(const GraphInstance& graph, unsigned int outputUid) {
    const std::vector<OutputDesc>& outputs = graph.desc.outputs;
    const auto hasLowerUid = [](const OutputDesc& output, unsigned int uid) { return output.uid < uid; };
    const auto found = std::lower_bound(outputs.begin(), outputs.end(), outputUid, hasLowerUid);
    if (found == outputs.end()) return;
    graph.outputs[static_cast<size_t>(found - outputs.begin())]->dirty = true;
}

void updateStateKey(const GraphInstance& graph, const std::vector<unsigned char>& oldBytes,
                    const std::vector<unsigned char>& newBytes) {
    if (oldBytes == newBytes) return;
    const RendererAccess renderer;
    if (renderer) renderer->updateStateKey(graph.identity, oldBytes, newBytes);
}

std::string textOf(float value) {
    return support::toText(value);
}
std::string textOf(int value) {
    return std::to_string(value);
}

template <class T>
std::string textOf(const Math::Vector2<T>& value) {
    return textOf(value.x) + "," + textOf(value.y);
}

template <class T>
std::string textOf(const Math::Vector3<T>& value) {
    return textOf(value.x) + "," + textOf(value.y) + "," + textOf(value.z);
}

template <class T>
std::string textOf(const Math::Vector4<T>& value) {
    return textOf(value.x) + "," + textOf(value.y) + "," + textOf(value.z) + "," + textOf(value.w);
}

// What the renderer reads for an image input without an image: no image to push.
constexpr InputImage::TextureInputRecord noImage{nullptr};

} // namespace

InputInstanceBase::InputInstanceBase(const InputDescBase& description, GraphInstance& parent)
    : desc(description)
    , graph(parent)
    , isUserInput(!description.isSystem)
    , isStateKey(description.isSystem) {}

template <class Assign>
void InputInstanceBase::change(const Assign& assign) {
    const std::vector<unsigned char> oldBytes = isStateKey ? graph.keyBytes() : std::vector<unsigned char>();
    std::vector<unsigned char> newBytes = oldBytes; // room for them: from here on memory cannot run out
    assign();
    for (const unsigned int uid : desc.alteredOutputUids) markDirty(graph, uid);
    if (!isStateKey) return;
    graph.writeKeyBytes(newBytes);
    updateStateKey(graph, oldBytes, newBytes);
}

template <class T>
InputInstanceNumerical<T>::InputInstanceNumerical(const InputDescNumerical<T>& description,
                                                  GraphInstance& parent)
    : InputInstanceNumericalBase(description, parent)
    , current(description.defaultValue) {}

template <class T>
void InputInstanceNumerical<T>::reset() {
    setValue(static_cast<const InputDescNumerical<T>&>(desc).defaultValue);
}

template <class T>
std::string InputInstanceNumerical<T>::valueAsText() const {
    return textOf(current);
}

template <class T>
bool InputInstanceNumerical<T>::setValueFromText(const std::string& text) {
    T parsed{};
    if (!valueFromText(text, parsed)) return false;
    setValue(parsed);
    return true;
}

// A NaN is a change, also over a NaN: on purpose, setters compare numbers and hosts count on what they tell.
template <class T>
void InputInstanceNumerical<T>::setValue(const T& newValue) {
    if (newValue == current) return;
    change([&] { current = newValue; });
}

template class InputInstanceNumerical<float>;
template class InputInstanceNumerical<Math::Vector2<float>>;
template class InputInstanceNumerical<Math::Vector3<float>>;
template class InputInstanceNumerical<Math::Vector4<float>>;
template class InputInstanceNumerical<int>;
template class InputInstanceNumerical<Math::Vector2<int>>;
template class InputInstanceNumerical<Math::Vector3<int>>;
template class InputInstanceNumerical<Math::Vector4<int>>;

InputImage::InputImage(const SubstanceTextureInput& image)
    : texture(image)
    , textureRecord{&texture} {}

InputInstanceImage::InputInstanceImage(const InputDescImage& description, GraphInstance& parent)
    : InputInstanceBase(description, parent) {}

void InputInstanceImage::reset() {
    setImage(nullptr);
}

const void* InputInstanceImage::rawData() const {
    return current ? &current->record() : &noImage;
}

void InputInstanceImage::setImage(const boost::shared_ptr<InputImage>& newImage) {
    if (newImage == current) return;
    change([&] { current = newImage; });
}

} // namespace SubstanceAir
