// A material's values as text: Substance::getStateString and applyStateString.
#include "bridge/Synchronisation.h"
#include "material/Substance.h"
#include "support/Numbers.h"

#include <string>

namespace kvSubstance {

namespace {

// The field at a place of a line, an empty text when the line has fewer.
const char* field(const kv::vector<kvString::CString>& fields, size_t place) {
    return place < fields.size() ? fields[place].asChar() : "";
}

// The "d" behind the uid belongs to the format: saved documents have it.
std::string valueLine(const SubstanceInput& input) {
    const Type type = input.getType();
    const bool holdsInts = (type & 0x20) != 0;
    if (!holdsInts && !(type & 0x10)) return {};
    const int announced = type & 7;
    const int count = announced >= 2 && announced <= 4 ? announced : 1;
    std::string line =
        std::to_string(input.getUID()) + "d " + (holdsInts ? 'i' : 'f') + std::to_string(count);
    for (int k = 0; k < count; ++k) {
        line += ' ';
        line += holdsInts ? std::to_string(input.getValueI(k)) : support::toFixedText(input.getValueF(k));
    }
    return line + '\n';
}

void applyInts(SubstanceInput& input, int count, const kv::vector<kvString::CString>& fields) {
    const auto number = [&fields](size_t place) { return support::leadingInteger(field(fields, place)); };
    switch (count) {
    case 2:
        return input.setValue2I(number(2), number(3));
    case 3:
        return input.setValue3I(number(2), number(3), number(4));
    case 4:
        return input.setValue4I(number(2), number(3), number(4), number(5));
    default:
        return input.setValueI(number(2), 0);
    }
}

void applyFloats(SubstanceInput& input, int count, const kv::vector<kvString::CString>& fields) {
    const auto number = [&fields](size_t place) { return support::leadingFloat(field(fields, place)); };
    switch (count) {
    case 2:
        return input.setValue2F(number(2), number(3));
    case 3:
        return input.setValue3F(number(2), number(3), number(4));
    case 4:
        return input.setValue4F(number(2), number(3), number(4), number(5));
    default:
        return input.setValueF(number(2), 0);
    }
}

// The line's kind chooses the setter, whatever the input's type: on purpose, a document means what it says.
void applyLine(const kv::Reference<Substance>& material, const kvString::CString& line) {
    const kv::vector<kvString::CString> fields = kvUtil::split(line, ' ', true, false);
    const unsigned int uid = support::leadingUnsigned(field(fields, 0));
    const kv::Reference<SubstanceInput> input(dynamic_cast<SubstanceInput*>(material->getEntity(uid)));
    if (!input) return;
    const char* const kind = field(fields, 1);
    const int count = kind[0] ? kind[1] - '0' : 0;
    if (kind[0] == 'i') applyInts(*input, count, fields);
    if (kind[0] == 'f') applyFloats(*input, count, fields);
    syncValueFromSubstanceInputToInputInstanceBase(material, input.get());
}

} // namespace

kvString::CString Substance::getStateString() const {
    std::string state = packageURL.asChar();
    state += '\n';
    for (const auto& item : inputs) state += valueLine(*item.value);
    return kvString::CString(state.data(), state.size());
}

void Substance::applyStateString(const kvString::CString& state) {
    const kv::Reference<Substance> keep(this);
    const kv::vector<kvString::CString> lines = kvUtil::split(state, '\n', true, false);
    if (lines.empty() || lines.front() != packageURL) return;
    for (size_t place = 1; place < lines.size(); ++place) {
        if (!lines[place].empty()) applyLine(keep, lines[place]);
    }
}

} // namespace kvSubstance
