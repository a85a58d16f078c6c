// Numbers written plainly - digits, with at most one minus and, in a decimal, one point - read quickly: many
// numbers in a row are read in the time that one general conversion takes to begin.
#pragma once

namespace support {

// Reads the number that a text begins with, as the leading... conversions of Numbers.h read the same
// characters, and returns its end. What follows is the caller's matter: an exponent, for instance. Null where
// the text begins with no such number, or with one of more than 15 digits, or beyond the type, for which the
// least int counts too; the value is then as it was.
const char* readPlain(const char* text, const char* end, unsigned int& value); // without a minus
const char* readPlain(const char* text, const char* end, int& value);
const char* readPlain(const char* text, const char* end, float& value);

} // namespace support
