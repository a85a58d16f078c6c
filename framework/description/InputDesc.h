// The inputs of a graph, as its package describes them.
#pragma once

#include "framework/description/InputType.h"
#include "framework/description/MathVectors.h"

#include <memory>
#include <string>
#include <vector>

class TiXmlElement;

namespace SubstanceAir {

class GraphInstance;
class InputInstanceBase;
struct OutputDesc;

// What all inputs have. Read-only once its package has been read; owned by its graph's description.
struct InputDescBase {
    std::string identifier; // the name inside the graph
    unsigned int uid = 0;
    unsigned int type = Float; // an InputType
    std::string label;
    std::vector<unsigned int>
        alteredOutputUids; // outputs of the same graph that this input alters, ascending
    bool isSystem = false; // the identifier begins with "$": part of a graph's state key
    std::string guiXml;    // the whole "inputgui" element, printed compactly; empty when there is none

    virtual ~InputDescBase() = default;
    virtual bool isNumerical() const { return false; }
    virtual bool isImage() const { return false; }
    virtual std::unique_ptr<InputDescBase> clone() const = 0;
    virtual std::unique_ptr<InputInstanceBase> instantiate(GraphInstance& parent) const = 0;

protected:
    InputDescBase() = default;
    InputDescBase(const InputDescBase&) = default;
    InputDescBase& operator=(const InputDescBase&) = default;
};

// T is float, int, or a Math::Vector2, 3 or 4 of either.
template <class T>
struct InputDescNumerical final : InputDescBase {
    T defaultValue{};
    T maxValue{};
    T minValue{};

    bool isNumerical() const override { return true; }
    std::unique_ptr<InputDescBase> clone() const override;
    std::unique_ptr<InputInstanceBase> instantiate(GraphInstance& parent) const override;
};

extern template struct InputDescNumerical<float>;
extern template struct InputDescNumerical<Math::Vector2<float>>;
extern template struct InputDescNumerical<Math::Vector3<float>>;
extern template struct InputDescNumerical<Math::Vector4<float>>;
extern template struct InputDescNumerical<int>;
extern template struct InputDescNumerical<Math::Vector2<int>>;
extern template struct InputDescNumerical<Math::Vector3<int>>;
extern template struct InputDescNumerical<Math::Vector4<int>>;

struct InputDescImage final : InputDescBase {
    bool isImage() const override { return true; }
    std::unique_ptr<InputDescBase> clone() const override;
    std::unique_ptr<InputInstanceBase> instantiate(GraphInstance& parent) const override;
};

// Builds a descriptor from an "input" element and enters it into the outputs that it alters. The outputs are
// the graph's, sorted by uid. Null for an input of an unsupported type.
std::unique_ptr<InputDescBase> parseInput(const TiXmlElement& element, std::vector<OutputDesc>& outputs);

// The first of the inputs, which are sorted by uid, that has the uid; null when there is none.
const InputDescBase* findInput(const std::vector<std::unique_ptr<InputDescBase>>& inputs, unsigned int uid);

} // namespace SubstanceAir
