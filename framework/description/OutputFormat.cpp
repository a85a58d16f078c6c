#include "framework/description/OutputFormat.h"

namespace SubstanceAir {

namespace {

constexpr int FormatClassCount = 7;

struct FormatClass {
    int representative;
    int preferences[FormatClassCount - 1]; // the other classes, nearest first
};

constexpr FormatClass formatClasses[FormatClassCount] = {
    {0, {6, 5, 4, 2, 1, 3}},  // formats 0, 4, 8
    {12, {0, 4, 6, 5, 3, 2}}, // format 12
    {16, {0, 6, 5, 4, 3, 1}}, // formats 16, 20, 24
    {28, {2, 1, 0, 4, 6, 5}}, // format 28
    {1, {6, 5, 0, 2, 1, 3}},  // format 1
    {9, {6, 4, 0, 2, 1, 3}},  // formats 5, 9
    {17, {5, 4, 0, 2, 1, 3}}, // formats 13, 17
};

// -1 for formats that are never replaced.
int classOfFormat(int format) {
    switch (format) {
    case 0:
    case 4:
    case 8:
        return 0;
    case 12:
        return 1;
    case 16:
    case 20:
    case 24:
        return 2;
    case 28:
        return 3;
    case 1:
        return 4;
    case 5:
    case 9:
        return 5;
    case 13:
    case 17:
        return 6;
    default:
        return -1;
    }
}

} // namespace

int acceptableFormat(int format, unsigned int formatClassMask) {
    const auto isAcceptable = [formatClassMask](int index) { return (formatClassMask >> index & 1U) != 0; };

    const int ownClass = classOfFormat(format);
    if (ownClass < 0 || isAcceptable(ownClass)) return format;
    for (const int other : formatClasses[ownClass].preferences)
        if (isAcceptable(other)) return formatClasses[other].representative;
    return format;
}

} // namespace SubstanceAir
