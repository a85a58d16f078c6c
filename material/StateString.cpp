// A material's values as text: Substance::getStateString and applyStateString.
#include "bridge/InputInstances.h"
#include "bridge/Synchronisation.h"
#include "material/StateLine.h"
#include "material/Substance.h"

#include <array>
#include <string>
#include <string_view>
#include <typeinfo>

namespace kvSubstance {

namespace {

constexpr size_t UsualLine = 32;

std::string_view viewOf(const kvString::CString& text) {
    return {text.asChar(), text.length()};
}

void setInts(SubstanceInput& input, int count, const int* n) {
    switch (count) {
    case 2:
        return input.setValue2I(n[0], n[1]);
    case 3:
        return input.setValue3I(n[0], n[1], n[2]);
    case 4:
        return input.setValue4I(n[0], n[1], n[2], n[3]);
    default:
        return input.setValueI(n[0], 0);
    }
}

void setFloats(SubstanceInput& input, int count, const float* n) {
    switch (count) {
    case 2:
        return input.setValue2F(n[0], n[1]);
    case 3:
        return input.setValue3F(n[0], n[1], n[2]);
    case 4:
        return input.setValue4F(n[0], n[1], n[2], n[3]);
    default:
        return input.setValueF(n[0], 0);
    }
}

// The line's kind chooses the setter, whatever the input's type: on purpose, a document means what it says.
void applyLine(const kv::Reference<Substance>& material, const StateLine& line) {
    SubstanceEntity* const entity = material->getEntity(line.uid);
    if (!entity || typeid(*entity) != typeid(SubstanceInput)) return;
    const kv::Reference<SubstanceInput> input(static_cast<SubstanceInput*>(entity));
    if (line.kind == 'i') setInts(*input, line.count, line.numbers.i);
    if (line.kind == 'f') setFloats(*input, line.count, line.numbers.f);
    syncValueFromSubstanceInputToInputInstanceBase(input.get(), findInputInstance(*material, *input));
}

} // namespace

// The values of a few inputs are gathered before their lines are written: what is fetched from memory for one
// input then overlaps with what is fetched for the next, which in large materials takes longer than the
// writing.
kvString::CString Substance::getStateString() const {
    struct Value {
        unsigned int uid;
        Type type;
        SubstanceInput::IntOrFloat value;
    };
    constexpr size_t atOnce = 16;
    std::array<Value, atOnce> values;
    std::array<char, atOnce * longestStateLine> lines;

    std::string state;
    state.reserve(packageURL.length() + 1 + UsualLine * static_cast<size_t>(inputs.count()));
    state += packageURL.asChar();
    state += '\n';
    for (auto item = inputs.begin(); item != inputs.end();) {
        size_t gathered = 0;
        for (; gathered < atOnce && item != inputs.end(); ++item) {
            const SubstanceInput& input = *item->value;
            values[gathered++] = {input.getUID(), input.type, input.value};
        }
        char* end = lines.data();
        for (size_t k = 0; k < gathered; ++k)
            end = writeStateLine(end, values[k].uid, values[k].type, values[k].value);
        state.append(lines.data(), end);
    }
    return kvString::CString(state.data(), state.size());
}

// Pieces are cut as kvUtil::split cuts them that keeps empty ones and trims none, but without a copy of each.
// The whole text is copied, because a listener may change or drop the string that it came in.
void Substance::applyStateString(const kvString::CString& state) {
    const kv::Reference<Substance> keep(this);
    const std::string copy(viewOf(state));
    std::string_view rest = copy;
    if (rest.empty() || takePiece(rest, '\n') != viewOf(packageURL)) return;
    while (!rest.empty()) {
        if (rest.front() == '\n')
            rest.remove_prefix(1);
        else
            applyLine(keep, takeStateLine(rest));
    }
}

} // namespace kvSubstance
