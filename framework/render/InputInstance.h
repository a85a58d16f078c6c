// The living inputs of a graph instance: values that the host edits and the renderer takes snapshots of.
#pragma once

#include "framework/description/InputDesc.h"
#include "platform/engine.h"

#include <boost/core/noncopyable.hpp>
#include <boost/shared_ptr.hpp>

#include <cstddef>
#include <string>

namespace SubstanceAir {

class GraphInstance;

// Edited on the host's thread. A real change marks the outputs that the input alters dirty, and tells the
// renderer when the input belongs to its graph's state key.
class InputInstanceBase : private boost::noncopyable {
public:
    virtual void reset() = 0; // to the description's default
    virtual ~InputInstanceBase() = default;

    // What is pushed into the engine: a number's address and size; for an image the address of the record
    // that begins with the pointer to be pushed, and the size of a pointer.
    virtual const void* rawData() const = 0;
    virtual size_t rawSize() const = 0;

    const InputDescBase& desc;
    GraphInstance& graph;
    const bool isUserInput; // not part of the state key
    const bool isStateKey;

protected:
    InputInstanceBase(const InputDescBase& description, GraphInstance& parent);

    // Runs the assignment of a new value between what has to happen before and after it.
    template <class Assign>
    void change(const Assign& assign);
};

class InputInstanceNumericalBase : public InputInstanceBase {
public:
    virtual std::string valueAsText() const = 0; // components separated by ","

    // False, and nothing changes, when the text is not one whole value of the type.
    virtual bool setValueFromText(const std::string& text) = 0;

protected:
    using InputInstanceBase::InputInstanceBase;
};

// T as in InputDescNumerical.
template <class T>
class InputInstanceNumerical final : public InputInstanceNumericalBase {
public:
    InputInstanceNumerical(const InputDescNumerical<T>& description, GraphInstance& parent);

    void reset() override;
    const void* rawData() const override { return &current; }
    size_t rawSize() const override { return sizeof(T); }
    std::string valueAsText() const override;
    bool setValueFromText(const std::string& text) override;

    const T& value() const { return current; }

    // Does nothing when the value equals the present one; a NaN equals nothing.
    void setValue(const T& newValue);

private:
    T current;
};

extern template class InputInstanceNumerical<float>;
extern template class InputInstanceNumerical<Math::Vector2<float>>;
extern template class InputInstanceNumerical<Math::Vector3<float>>;
extern template class InputInstanceNumerical<Math::Vector4<float>>;
extern template class InputInstanceNumerical<int>;
extern template class InputInstanceNumerical<Math::Vector2<int>>;
extern template class InputInstanceNumerical<Math::Vector3<int>>;
extern template class InputInstanceNumerical<Math::Vector4<int>>;

// An image for an image input.
class InputImage : private boost::noncopyable {
public:
    // Borrows the pixels, which live at least as long as this object.
    explicit InputImage(const SubstanceTextureInput& image);

    // The record begins with the pointer that the engine is given.
    struct TextureInputRecord {
        const SubstanceTextureInput* pushed;
    };
    const TextureInputRecord& record() const { return textureRecord; }

private:
    const SubstanceTextureInput texture;
    const TextureInputRecord textureRecord;
};

class InputInstanceImage final : public InputInstanceBase {
public:
    InputInstanceImage(const InputDescImage& description, GraphInstance& parent);

    void reset() override;
    const void* rawData() const override;
    size_t rawSize() const override { return sizeof(const SubstanceTextureInput*); }

    const boost::shared_ptr<InputImage>& image() const { return current; }
    void setImage(const boost::shared_ptr<InputImage>& newImage);

private:
    boost::shared_ptr<InputImage> current;
};

} // namespace SubstanceAir
