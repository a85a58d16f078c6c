// Which pixel formats a consumer takes, and what to take instead of another.
#pragma once

namespace SubstanceAir {

struct OutputFormatOptions {
    unsigned int formatClassMask; // bit i: format class i, 0 to 6, is acceptable
    unsigned int mipmapMode;      // 0: mipmaps as described; 2: one level; any other: zero
};

// All seven format classes.
constexpr unsigned int AllFormatClasses = 127;

// The format itself when its class is acceptable, or when nothing better is known; else the representative of
// the acceptable class that comes nearest to it.
int acceptableFormat(int format, unsigned int formatClassMask);

} // namespace SubstanceAir
