// One line of a state string: an input's uid and value.
#pragma once

#include "material/SubstanceInput.h"
#include "support/Numbers.h"

#include <cstddef>
#include <string_view>

namespace kvSubstance {

// Writes the line of an input of that type and value; nothing for a type without numbers. There must be room
// for longestStateLine characters. Returns the end.
constexpr size_t longestStateLine = 16 + 4 * (1 + support::longestFixedText); // uid, kind, line feed; numbers
char* writeStateLine(char* place, unsigned int uid, Type type, const SubstanceInput::IntOrFloat& value);

struct StateLine {
    unsigned int uid = 0;
    char kind = '\0'; // 'i' for ints and 'f' for floats; a line of any other has no numbers
    int count = 1;    // of numbers, 1 to 4
    SubstanceInput::IntOrFloat numbers{};
};

// Cuts the first line off the text, which is not empty, with its line feed. Any line can be read: what is
// missing or no number is 0, what follows is ignored, and a count that is not 2 to 4 is one.
StateLine takeStateLine(std::string_view& text);

// Cuts the piece before the first separator off, with the separator; without one, all of it.
std::string_view takePiece(std::string_view& text, char separator);

} // namespace kvSubstance
